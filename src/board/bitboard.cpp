#include "board/bitboard.h"

namespace zorvane {

namespace {

constexpr Bitboard StepSet(int square, const std::array<std::array<int, 2>, 8> &steps) {
  Bitboard set = 0;
  for (const auto &step : steps) {
    const int file = FileOf(square) + step[0];
    const int row = RowOf(square) + step[1];
    if (file >= 0 && file <= 7 && row >= 0 && row <= 7)
      set |= Bit(MakeSquare(file, row));
  }
  return set;
}

constexpr std::array<Bitboard, kSquares> StepTable(const std::array<std::array<int, 2>, 8> &steps) {
  std::array<Bitboard, kSquares> table{};
  for (int square = 0; square < kSquares; ++square)
    table[static_cast<unsigned>(square)] = StepSet(square, steps);
  return table;
}

constexpr std::array<std::array<int, 2>, 8> kKingSteps{
    {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}};
constexpr std::array<std::array<int, 2>, 8> kKnightSteps{
    {{-1, -2}, {1, -2}, {-2, -1}, {2, -1}, {-2, 1}, {2, 1}, {-1, 2}, {1, 2}}};

constexpr std::array<std::array<Bitboard, kSquares>, 2> PawnTable() {
  std::array<std::array<Bitboard, kSquares>, 2> table{};
  for (unsigned square = 0; square < kSquares; ++square) {
    table[kWhite][square] = PawnCaptures<kWhite>(Bit(static_cast<int>(square)));
    table[kBlack][square] = PawnCaptures<kBlack>(Bit(static_cast<int>(square)));
  }
  return table;
}

// The four lines through a square, without the square itself.
struct LineSet {
  Bitboard File;
  Bitboard Diagonal;
  Bitboard AntiDiagonal;
};

constexpr std::array<LineSet, kSquares> LineTable() {
  std::array<LineSet, kSquares> table{};
  for (int square = 0; square < kSquares; ++square) {
    LineSet &lines = table[static_cast<unsigned>(square)];
    for (int other = 0; other < kSquares; ++other) {
      const int files = FileOf(other) - FileOf(square);
      const int rows = RowOf(other) - RowOf(square);
      if (other == square)
        continue;
      if (files == 0)
        lines.File |= Bit(other);
      else if (files == rows)
        lines.Diagonal |= Bit(other);
      else if (files == -rows)
        lines.AntiDiagonal |= Bit(other);
    }
  }
  return table;
}

constexpr std::array<LineSet, kSquares> kLines = LineTable();

// Attacks along the lowest row for each file and each occupancy of the six inner squares.
constexpr std::array<std::array<std::uint8_t, 8>, 64> RowTable() {
  std::array<std::array<std::uint8_t, 8>, 64> table{};
  for (unsigned inner = 0; inner < 64; ++inner) {
    for (int file = 0; file < 8; ++file) {
      unsigned attacks = 0;
      for (const int step : {-1, 1}) {
        for (int other = file + step; other >= 0 && other <= 7; other += step) {
          attacks |= 1U << other;
          if (((inner << 1) >> other) & 1U)
            break;
        }
      }
      table[inner][static_cast<unsigned>(file)] = static_cast<std::uint8_t>(attacks);
    }
  }
  return table;
}

constexpr std::array<std::array<std::uint8_t, 8>, 64> kRowAttacks = RowTable();

// Subtracting the slider from the blockers borrows up to the first of them; mirrored, the same works downwards.
inline Bitboard LineAttacks(int square, Bitboard occupied, Bitboard line) {
  const Bitboard blockers = occupied & line;
  const Bitboard up = blockers - Bit(square);
  const Bitboard down = __builtin_bswap64(__builtin_bswap64(blockers) - __builtin_bswap64(Bit(square)));
  return (up ^ down) & line;
}

inline Bitboard ComputeRookAttacks(int square, Bitboard occupied) {
  const int shift = square & 56;
  const auto inner = (occupied >> (shift + 1)) & 63U;
  return (Bitboard{kRowAttacks[inner][static_cast<unsigned>(FileOf(square))]} << shift) |
         LineAttacks(square, occupied, kLines[static_cast<unsigned>(square)].File);
}

inline Bitboard ComputeBishopAttacks(int square, Bitboard occupied) {
  const LineSet &lines = kLines[static_cast<unsigned>(square)];
  return LineAttacks(square, occupied, lines.Diagonal) | LineAttacks(square, occupied, lines.AntiDiagonal);
}

void FillLines() {
  for (int from = 0; from < kSquares; ++from) {
    for (int to = 0; to < kSquares; ++to) {
      const auto attacks = Contains(ComputeRookAttacks(from, 0), to)     ? ComputeRookAttacks
                           : Contains(ComputeBishopAttacks(from, 0), to) ? ComputeBishopAttacks
                                                                         : nullptr;
      if (attacks == nullptr)
        continue;
      Between[static_cast<unsigned>(from)][static_cast<unsigned>(to)] = attacks(from, Bit(to)) & attacks(to, Bit(from));
      Line[static_cast<unsigned>(from)][static_cast<unsigned>(to)] =
          (attacks(from, 0) & attacks(to, 0)) | Bit(from) | Bit(to);
    }
  }
}

} // namespace

constexpr std::array<Bitboard, kSquares> KingAttacks = StepTable(kKingSteps);
constexpr std::array<Bitboard, kSquares> KnightAttacks = StepTable(kKnightSteps);
constexpr std::array<std::array<Bitboard, kSquares>, 2> PawnAttacks = PawnTable();

std::array<std::array<Bitboard, kSquares>, kSquares> Between;
std::array<std::array<Bitboard, kSquares>, kSquares> Line;

#if defined(__BMI2__)

std::array<SliderIndex, kSquares> SliderIndexes;

namespace {

// Sums over all squares of 2 to the number of inner squares that a slider sees on an empty board.
constexpr unsigned kRookEntries = 102400;
constexpr unsigned kBishopEntries = 5248;

std::array<Bitboard, kRookEntries + kBishopEntries> SliderTable;

// Blockers on the edge of the board cannot hide anything behind them, so they select nothing.
constexpr Bitboard InnerSquares(int square) {
  const Bitboard rows = (RowMask(0) | RowMask(7)) & ~RowMask(RowOf(square));
  const Bitboard files = (kFileA | kFileH) & ~FileMask(FileOf(square));
  return ~(rows | files);
}

template <typename Compute> Bitboard *FillSlider(Bitboard *next, int square, Bitboard mask, Compute compute) {
  const unsigned entries = 1U << CountSquares(mask);
  for (unsigned entry = 0; entry < entries; ++entry)
    *next++ = compute(square, _pdep_u64(entry, mask));
  return next;
}

} // namespace

void InitializeBitboards() {
  Bitboard *next = SliderTable.data();
  for (int square = 0; square < kSquares; ++square) {
    SliderIndex &index = SliderIndexes[static_cast<unsigned>(square)];
    index.RookMask = ComputeRookAttacks(square, 0) & InnerSquares(square);
    index.BishopMask = ComputeBishopAttacks(square, 0) & InnerSquares(square);
    index.Rook = next;
    next = FillSlider(next, square, index.RookMask, ComputeRookAttacks);
    index.Bishop = next;
    next = FillSlider(next, square, index.BishopMask, ComputeBishopAttacks);
  }
  FillLines();
}

#else

Bitboard RookAttacks(int square, Bitboard occupied) { return ComputeRookAttacks(square, occupied); }
Bitboard BishopAttacks(int square, Bitboard occupied) { return ComputeBishopAttacks(square, occupied); }

void InitializeBitboards() { FillLines(); }

#endif

} // namespace zorvane

#include "board/bitboard.h"

#include <cassert>
#include <initializer_list>

#include "base/array.h"
#include "board/magic_factors.h"

namespace zorvane {

namespace {

constexpr Bitboard StepSet(int square, const Array<Array<int, 2>, 8> &steps) {
  Bitboard set = 0;
  for (const auto &step : steps) {
    const int file = FileOf(square) + step[0];
    const int row = RowOf(square) + step[1];
    if (file >= 0 && file <= 7 && row >= 0 && row <= 7)
      set |= Bit(MakeSquare(file, row));
  }
  return set;
}

constexpr Array<Bitboard, kSquares> StepTable(const Array<Array<int, 2>, 8> &steps) {
  Array<Bitboard, kSquares> table{};
  for (int square = 0; square < kSquares; ++square)
    table[square] = StepSet(square, steps);
  return table;
}

constexpr Array<Array<int, 2>, 8> kKingSteps{{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}};
constexpr Array<Array<int, 2>, 8> kKnightSteps{
    {{-1, -2}, {1, -2}, {-2, -1}, {2, -1}, {-2, 1}, {2, 1}, {-1, 2}, {1, 2}}};

constexpr Array<Array<Bitboard, kSquares>, 2> PawnTable() {
  Array<Array<Bitboard, kSquares>, 2> table{};
  for (int square = 0; square < kSquares; ++square) {
    table[kWhite][square] = PawnCaptures<kWhite>(Bit(square));
    table[kBlack][square] = PawnCaptures<kBlack>(Bit(square));
  }
  return table;
}

// File and diagonals through a square, without the square itself; rows have their own table.
struct LineSet {
  Bitboard File;
  Bitboard Diagonal;
  Bitboard AntiDiagonal;
};

constexpr Array<LineSet, kSquares> LineTable() {
  Array<LineSet, kSquares> table{};
  for (int square = 0; square < kSquares; ++square) {
    LineSet &lines = table[square];
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

constexpr Array<LineSet, kSquares> kLines = LineTable();

// Attacks along a row, as bits of row 0, by the occupancy of its six inner squares and by file.
constexpr Array<Array<std::uint8_t, 8>, 64> RowTable() {
  Array<Array<std::uint8_t, 8>, 64> table{};
  for (int inner = 0; inner < 64; ++inner) {
    for (int file = 0; file < 8; ++file) {
      int attacks = 0;
      for (const int step : {-1, 1}) {
        for (int other = file + step; other >= 0 && other <= 7; other += step) {
          attacks |= 1 << other;
          if (((inner << 1) >> other) & 1)
            break;
        }
      }
      table[inner][file] = static_cast<std::uint8_t>(attacks);
    }
  }
  return table;
}

constexpr Array<Array<std::uint8_t, 8>, 64> kRowAttacks = RowTable();

// Hyperbola quintessence: o - 2r finds the first blocker above, and byte-swapped the first below. For lines with at
// most one square in each row.
inline Bitboard LineAttacks(int square, Bitboard occupied, Bitboard line) {
  const Bitboard blockers = occupied & line;
  const Bitboard up = blockers - Bit(square);
  const Bitboard down = __builtin_bswap64(__builtin_bswap64(blockers) - __builtin_bswap64(Bit(square)));
  return (up ^ down) & line;
}

inline Bitboard ComputeRookAttacks(int square, Bitboard occupied) {
  const int shift = 8 * RowOf(square);
  const auto inner = static_cast<int>((occupied >> (shift + 1)) & 63U);
  return (Bitboard{kRowAttacks[inner][FileOf(square)]} << shift) | LineAttacks(square, occupied, kLines[square].File);
}

inline Bitboard ComputeBishopAttacks(int square, Bitboard occupied) {
  const LineSet &lines = kLines[square];
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
      Between[from][to] = attacks(from, Bit(to)) & attacks(to, Bit(from));
      LineThrough[from][to] = (attacks(from, 0) & attacks(to, 0)) | Bit(from) | Bit(to);
    }
  }
}

} // namespace

constexpr Array<Bitboard, kSquares> kKingAttacks = StepTable(kKingSteps);
constexpr Array<Bitboard, kSquares> kKnightAttacks = StepTable(kKnightSteps);
constexpr Array<Array<Bitboard, kSquares>, 2> kPawnAttacks = PawnTable();

Array<Array<Bitboard, kSquares>, kSquares> Between;
Array<Array<Bitboard, kSquares>, kSquares> LineThrough;

Array<SliderPair, kSquares> SliderPairs;

namespace {

// The sums over all squares of 2 to the number of squares in Mask.
constexpr int kRookEntries = 102400;
constexpr int kBishopEntries = 5248;

Array<Bitboard, kRookEntries + kBishopEntries> SliderTable;

// A blocker on the edge of the board hides nothing, so edges are not part of a mask.
constexpr Bitboard InnerSquares(int square) {
  const Bitboard rows = (RowMask(0) | RowMask(7)) & ~RowMask(RowOf(square));
  const Bitboard files = (kFileA | kFileH) & ~FileMask(FileOf(square));
  return ~(rows | files);
}

// Fills the entry of a slider on square, with its sets in the table from next on; returns where the next one begins.
template <typename Compute>
Bitboard *FillSlider(SliderEntry &entry, int square, [[maybe_unused]] Bitboard factor, Compute compute,
                     Bitboard *next) {
  const Bitboard mask = compute(square, 0) & InnerSquares(square);
  const int squares = PopCount(mask);
  entry.Mask = mask;
  entry.Attacks = next;
#if !defined(ZORVANE_PEXT)
  entry.Factor = factor;
  entry.Shift = 64 - squares;
#endif
  // Carry-rippler: visits all subsets of the mask, beginning with the empty one.
  Bitboard occupied = 0;
  do {
    next[SliderIndex(entry, occupied)] = compute(square, occupied);
    occupied = (occupied - mask) & mask;
  } while (occupied != 0);
  return next + (1 << squares);
}

} // namespace

void InitializeBitboards() {
  Bitboard *next = SliderTable.begin();
  for (int square = 0; square < kSquares; ++square) {
    SliderPair &pair = SliderPairs[square];
    next = FillSlider(pair.Rook, square, kRookFactors[square], ComputeRookAttacks, next);
    next = FillSlider(pair.Bishop, square, kBishopFactors[square], ComputeBishopAttacks, next);
  }
  assert(next == SliderTable.end());
  FillLines();
}

} // namespace zorvane

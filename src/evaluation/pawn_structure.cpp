#include "evaluation/pawn_structure.h"

#include "base/array.h"
#include "base/hash_spread.h"
#include "base/memory_block.h"
#include "board/piece_square_terms.h"
#include "board/rules.h"

namespace zorvane {

namespace {

bool PawnCacheEnabled = true;

constexpr int kPawnCacheBits = 10;
constexpr std::size_t kPawnCacheSlots = std::size_t{1} << kPawnCacheBits;

// Centipawns.
constexpr int kDoubledPenalty = 12; // for each pawn after the first on a file
constexpr int kIsolatedPenalty = 15;
constexpr int kPassedPerSquaredRank = 2;
constexpr int kConnectedPassed = 8;
constexpr int kProtectedPassed = 10;
constexpr int kSupportedPerRank = 2; // added for a connected passed pawn, and again for a protected one

// The same four squares for both sides.
constexpr Bitboard kCentralSquares = (FileMask(3) | FileMask(4)) & (RowMask(3) | RowMask(4));

constexpr Bitboard Beside(Bitboard set) { return ShiftWest(set) | ShiftEast(set); }

constexpr Bitboard FillFiles(Bitboard set) {
  set |= set >> 8;
  set |= set >> 16;
  set |= set >> 32;
  return (set & kRow0) * kFileA;
}

template <Side Us> constexpr Bitboard FillBehind(Bitboard set) {
  set |= ShiftBackward<Us>(set);
  set |= ShiftBackward<Us>(ShiftBackward<Us>(set));
  return set | (Us == kWhite ? set << 32 : set >> 32);
}

template <Side Us> constexpr Bitboard ConnectedPawns(Bitboard pawns) {
  const Bitboard beside = Beside(pawns);
  return pawns & (beside | ShiftForward<Us>(beside) | ShiftBackward<Us>(beside));
}

template <Side Us> constexpr Bitboard ProtectedPawns(Bitboard pawns) { return pawns & PawnCaptures<Us>(pawns); }

// An enemy pawn on the same or a neighbouring file stops a pawn if it is ahead of it, not if it is level.
template <Side Us> constexpr Bitboard PassedPawns(Bitboard pawns, Bitboard enemyPawns) {
  const Bitboard stopped = FillBehind<Us>(ShiftBackward<Us>(enemyPawns));
  return pawns & ~(stopped | Beside(stopped));
}

// The penalty of a file, (n - 1) * 12, is spread evenly over its n pawns: (n - 1) * 12 / n each. For n of 1, 2, 3, 4
// and 6 that is a whole number, and for 8 it is 10.5, which is exact in binary: the sum is the same in any order.
// Fifths and sevenths are not exact. A game has at most six pawns on a file; seven can be loaded.
constexpr bool IsFractionalCount(int pawnsOnFile) { return pawnsOnFile == 5 || pawnsOnFile == 7; }
constexpr int kFewestFractional = 5; // so with fewer than four doubled pawns no file can be fractional

bool HasFractionalFile(Bitboard pawns) {
  for (int file = 0; file < 8; ++file)
    if (IsFractionalCount(PopCount(pawns & FileMask(file))))
      return true;
  return false;
}

// Fills in the fields about the pawns of Us and returns their terms beyond PieceSquareTerm.
template <Side Us> int AddSide(PawnStructure &structure) {
  const Bitboard pawns = structure.Pawns[Us];
  structure.Files[Us] = FillFiles(pawns);
  structure.Passed[Us] = PassedPawns<Us>(pawns, structure.Pawns[Opposite(Us)]);
  const Bitboard connected = ConnectedPawns<Us>(pawns);
  const Bitboard guarded = ProtectedPawns<Us>(pawns);

  const int doubled = PopCount(pawns) - PopCount(structure.Files[Us] & kRow0);
  int score = -kDoubledPenalty * doubled - kIsolatedPenalty * PopCount(pawns & ~Beside(structure.Files[Us]));
  for (Bitboard passed = structure.Passed[Us]; passed != 0;) {
    const int square = PopLsb(passed);
    const int rank = RelativeRank(Us, square);
    score += kPassedPerSquaredRank * rank * rank;
    score += Contains(connected, square) ? kConnectedPassed + kSupportedPerRank * rank : 0;
    score += Contains(guarded, square) ? kProtectedPassed + kSupportedPerRank * rank : 0;
  }
  if (doubled >= kFewestFractional - 1)
    structure.IsFractional |= HasFractionalFile(pawns);
  return score;
}

// The least and the most that phase and kings can add for the pawns of a side; a race term is at most kRaceLimit.
struct TermLimits {
  int Lowest;
  int Highest;
};

TermLimits PhaseTermLimits(const PawnStructure &structure, Side side) {
  TermLimits limits{0, kCentralPawn * PopCount(structure.Pawns[side] & kCentralSquares)};
  for (Bitboard rest = structure.Passed[side]; rest != 0;) {
    limits.Lowest -= kRaceLimit;
    limits.Highest += kRaceLimit + PassedEndgameLimit(RelativeRank(side, PopLsb(rest)));
  }
  return limits;
}

void WorkOut(PawnStructure &structure, Bitboard whitePawns, Bitboard blackPawns) {
  structure = {};
  structure.Pawns = {whitePawns, blackPawns};
  structure.Score = AddSide<kWhite>(structure) - AddSide<kBlack>(structure);
  structure.CentralPawns =
      static_cast<std::int16_t>(PopCount(whitePawns & kCentralSquares) - PopCount(blackPawns & kCentralSquares));
  const TermLimits white = PhaseTermLimits(structure, kWhite);
  const TermLimits black = PhaseTermLimits(structure, kBlack);
  structure.LowestPhaseTerms = static_cast<std::int16_t>(white.Lowest - black.Highest);
  structure.HighestPhaseTerms = static_cast<std::int16_t>(white.Highest - black.Lowest);
}

constexpr Array<Array<std::int8_t, kSquares>, kSquares> MakeDistanceTable() {
  Array<Array<std::int8_t, kSquares>, kSquares> table{};
  for (int from = 0; from < kSquares; ++from)
    for (int to = 0; to < kSquares; ++to)
      table[from][to] = static_cast<std::int8_t>(ManhattanDistance(from, to));
  return table;
}

constexpr Array<Array<std::int8_t, kSquares>, kSquares> kDistances = MakeDistanceTable();

int PassedEndgameTerm(const Phase &phase, Side side, int square) {
  return phase.PassedEndgameTerm[RelativeRank(side, square)];
}

// The bonus for being closer to a passed pawn with the own king than the enemy is with his.
int RaceTerm(const Phase &phase, int square, int ownKing, int enemyKing) {
  const int lead = kDistances[enemyKing][square] - kDistances[ownKing][square];
  return phase.RaceTerms[lead + kFarthestApart];
}

int PassedPhaseTerms(const PawnStructure &structure, const Phase &phase, Side side) {
  const int ownKing = FindKingSquare(side);
  const int enemyKing = FindKingSquare(Opposite(side));
  int score = 0;
  for (Bitboard passed = structure.Passed[side]; passed != 0;) {
    const int square = PopLsb(passed);
    score += PassedEndgameTerm(phase, side, square) + RaceTerm(phase, square, ownKing, enemyKing);
  }
  return score;
}

// The slot for the structure of these pawns: in the cache, or with the cache off an entry that is cleared each time.
PawnStructure &SlotFor(Bitboard whitePawns, Bitboard blackPawns) {
  static PawnStructure uncached;
  if (!PawnCacheEnabled)
    return uncached = {};
  if (BlockOf(kPawnCacheBlock).Length == 0) [[unlikely]]
    AllocateBlock(kPawnCacheBlock, kPawnCacheSlots * sizeof(PawnStructure));
  // A different odd factor for the second set; which one does not matter.
  const std::uint64_t hash = whitePawns * kHashSpread ^ blackPawns * 0xC2B2AE3D27D4EB4FU;
  return RecordAt<PawnStructure>(kPawnCacheBlock, (hash >> (64 - kPawnCacheBits)) * sizeof(PawnStructure));
}

} // namespace

void EnablePawnCache(bool enabled) { PawnCacheEnabled = enabled; }

const PawnStructure &CurrentPawnStructure() {
  const Bitboard whitePawns = Pieces(kWhite, kPawn);
  const Bitboard blackPawns = Pieces(kBlack, kPawn);
  PawnStructure &slot = SlotFor(whitePawns, blackPawns);
  if ((slot.Pawns[kWhite] ^ whitePawns) | (slot.Pawns[kBlack] ^ blackPawns))
    WorkOut(slot, whitePawns, blackPawns);
  return slot;
}

int PawnPhaseScore(const PawnStructure &structure, const Phase &phase) {
  return structure.CentralPawns * phase.CentralPawnBonus + PassedPhaseTerms(structure, phase, kWhite) -
         PassedPhaseTerms(structure, phase, kBlack);
}

// The order of additions matters: from the fraction of doubled pawns on, each one rounds.
double PawnTerm(const PawnStructure &structure, const Phase &phase, int square) {
  const Side side = SideOf(PieceOn(square));
  const Bitboard own = structure.Pawns[side];
  const int rank = RelativeRank(side, square);
  double term = PieceSquareTerm(side, kPawn, square);
  if (Contains(kCentralSquares, square))
    term += phase.CentralPawnBonus;
  const int sameFile = PopCount(own & FileMask(FileOf(square)));
  term += static_cast<double>((sameFile - 1) * -kDoubledPenalty) / sameFile;
  if ((own & Beside(FileMask(FileOf(square)))) == 0)
    term -= kIsolatedPenalty;
  if (!Contains(structure.Passed[side], square))
    return term;
  term += kPassedPerSquaredRank * rank * rank + PassedEndgameTerm(phase, side, square);
  if (Contains(side == kWhite ? ConnectedPawns<kWhite>(own) : ConnectedPawns<kBlack>(own), square))
    term += kConnectedPassed + kSupportedPerRank * rank;
  if (Contains(side == kWhite ? ProtectedPawns<kWhite>(own) : ProtectedPawns<kBlack>(own), square))
    term += kProtectedPassed + kSupportedPerRank * rank;
  return term + RaceTerm(phase, square, FindKingSquare(side), FindKingSquare(Opposite(side)));
}

} // namespace zorvane

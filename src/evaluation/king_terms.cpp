#include "evaluation/king_terms.h"

#include <algorithm>

#include "base/array.h"
#include "board/piece_square_terms.h"
#include "board/rules.h"

namespace zorvane {

namespace {

// Middlegame placement, centipawns.
constexpr int kShieldPawn = 12;   // for each pawn of the shield
constexpr int kCastledBonus = 35; // on the c and g files of the back rank
constexpr int kRankPenalty = 12;  // for each rank away from the back rank
constexpr int kFilePenalty = 3;   // for each point of file centrality

// Endgame placement, centipawns for each point of centrality.
constexpr int kCentralityBonus = 5;

// The attack on a king, in points that equal centipawns at full phase.
constexpr int kFullShield = 3;         // as many pawns cancel the linear part of an attack
constexpr int kCountedZoneSquares = 3; // so many zone squares count at most for each attacker
constexpr int kFewestAttackers = 2;    // a lone attacker is no attack
constexpr int kSquaredDivisor = 4;     // divides the squared points

// The weight of each attacked zone square, by PieceType of the attacker.
constexpr Array<int, kPieceTypes + 1> kAttackWeights{0, 1, 3, 2, 2, 5, 1};

// What a king's square gives it, and where its shield pawns and its attackers count.
struct KingSquare {
  std::int16_t Middlegame;
  std::int16_t Endgame;
  Bitboard Shield;         // squares of shield pawns
  Array<Bitboard, 2> Zone; // where attackers count: 0 with a shield pawn, 1 without, one row more
};

constexpr Bitboard WithNeighbours(int square) { return Bit(square) | ShiftWest(Bit(square)) | ShiftEast(Bit(square)); }

template <Side Us> constexpr KingSquare MakeKingSquare(int square) {
  const int rank = RelativeRank(Us, square);
  const bool castled = rank == 0 && (FileOf(square) == 2 || FileOf(square) == 6);
  const Bitboard row = WithNeighbours(square);
  const Bitboard first = ShiftForward<Us>(row);
  const Bitboard nearby = ShiftBackward<Us>(row) | row | first | ShiftForward<Us>(first);
  return {static_cast<std::int16_t>(-kRankPenalty * rank - kFilePenalty * FileCentrality(square) +
                                    (castled ? kCastledBonus : 0)),
          static_cast<std::int16_t>(kCentralityBonus * (FileCentrality(square) + RankCentrality(square))),
          first,
          {nearby, nearby | ShiftForward<Us>(ShiftForward<Us>(first))}};
}

template <Side Us> constexpr Array<KingSquare, kSquares> MakeKingSquares() {
  Array<KingSquare, kSquares> table{};
  for (int square = 0; square < kSquares; ++square)
    table[square] = MakeKingSquare<Us>(square);
  return table;
}

template <Side Us> constexpr Array<KingSquare, kSquares> kKingSquares = MakeKingSquares<Us>();

// A blend is between its middlegame and endgame values, so their extremes bound every king's term.
constexpr int KingPlacementSpread() {
  int lowest = 0;
  int highest = 0;
  for (const KingSquare &place : kKingSquares<kWhite>) {
    lowest = std::min<int>({lowest, place.Middlegame, place.Endgame});
    highest = std::max<int>({highest, place.Middlegame + kShieldPawn * PopCount(place.Shield), place.Endgame});
  }
  return highest - lowest;
}
static_assert(KingPlacementSpread() == kKingPlacementSpread);

// One sum holds both: the number of attackers in the upper 16 bits, their weighted squares in the lower ones.
constexpr int kOneAttacker = 1 << 16;
constexpr int kLargestZone = 15;

// What a piece adds to the sum, by type and number of attacked zone squares.
constexpr Array<Array<int, kLargestZone + 1>, kPieceTypes + 1> MakeZoneTerms() {
  Array<Array<int, kLargestZone + 1>, kPieceTypes + 1> table{};
  for (int type = kPawn; type <= kKing; ++type)
    for (int squares = 1; squares <= kLargestZone; ++squares)
      table[type][squares] = kOneAttacker + kAttackWeights[type] * std::min(squares, kCountedZoneSquares);
  return table;
}

constexpr Array<Array<int, kLargestZone + 1>, kPieceTypes + 1> kZoneTerms = MakeZoneTerms();

int ZoneTerm(PieceType type, Bitboard zoneSquares) { return kZoneTerms[type][PopCount(zoneSquares)]; }

// A pawn attacks at most two squares, fewer than count, so all pawns are counted at once.
template <Side Attacker> int PawnZoneTerms(Bitboard zone) {
  const Bitboard pawns = Pieces(Attacker, kPawn);
  const Bitboard towardsA = ShiftWest(ShiftForward<Attacker>(pawns)) & zone;
  const Bitboard towardsH = ShiftEast(ShiftForward<Attacker>(pawns)) & zone;
  return kOneAttacker * PopCount(ShiftBackward<Attacker>(ShiftEast(towardsA) | ShiftWest(towardsH))) +
         kAttackWeights[kPawn] * (PopCount(towardsA) + PopCount(towardsH));
}

// The attackers of a zone and their weighted squares.
template <Side Attacker> int ZoneSum(Bitboard zone) {
  const Bitboard occupied = Occupied();
  int sum = PawnZoneTerms<Attacker>(zone) + ZoneTerm(kKing, kKingAttacks[FindKingSquare(Attacker)] & zone);
  for (Bitboard rooks = Pieces(Attacker, kRook); rooks != 0;)
    sum += ZoneTerm(kRook, RookAttacks(PopLsb(rooks), occupied) & zone);
  for (Bitboard knights = Pieces(Attacker, kKnight); knights != 0;)
    sum += ZoneTerm(kKnight, kKnightAttacks[PopLsb(knights)] & zone);
  for (Bitboard bishops = Pieces(Attacker, kBishop); bishops != 0;)
    sum += ZoneTerm(kBishop, BishopAttacks(PopLsb(bishops), occupied) & zone);
  for (Bitboard queens = Pieces(Attacker, kQueen); queens != 0;)
    sum += ZoneTerm(kQueen, QueenAttacks(PopLsb(queens), occupied) & zone);
  return sum;
}

template <Side Us> const KingSquare &KingSquareOf() { return kKingSquares<Us>[FindKingSquare(Us)]; }

template <Side Us> int CountShield(const KingSquare &place) { return PopCount(place.Shield & Pieces(Us, kPawn)); }

} // namespace

template <Side Us> int KingPlacementTerm(const Phase &phase) {
  const KingSquare &place = KingSquareOf<Us>();
  const int middlegame = kShieldPawn * CountShield<Us>(place) + place.Middlegame;
  return (middlegame * phase.GamePhase + place.Endgame * phase.EndgameWeight) / kFullPhase;
}

template <Side Us> int KingAttackPenalty(const Phase &phase) {
  const KingSquare &place = KingSquareOf<Us>();
  const int shield = CountShield<Us>(place);
  const int sum = ZoneSum<Opposite(Us)>(place.Zone[shield > 0 ? 0 : 1]);
  if (sum < kFewestAttackers * kOneAttacker)
    return 0;
  const int weighted = sum % kOneAttacker;
  const int raw = (kFullShield - shield) * weighted + weighted * weighted / kSquaredDivisor;
  const int penalty = phase.GamePhase * std::min(raw, kHighestRawPenalty) / kFullPhase;
  return ScaleByQueen<Opposite(Us)>(penalty);
}

template int KingPlacementTerm<kWhite>(const Phase &phase);
template int KingPlacementTerm<kBlack>(const Phase &phase);
template int KingAttackPenalty<kWhite>(const Phase &phase);
template int KingAttackPenalty<kBlack>(const Phase &phase);

} // namespace zorvane

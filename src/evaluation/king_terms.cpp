#include "evaluation/king_terms.h"

#include <algorithm>

#include "board/piece_values.h"

namespace zorvane {

namespace {

constexpr int kShieldPawn = 12;
constexpr int kCastledBonus = 35;
constexpr int kRankWish = -12;
constexpr int kFileWish = -3;
constexpr int kCentreWish = 5;
constexpr int kFullShield = 3;
constexpr int kCountedZoneSquares = 3;

// What a piece of each type counts for each of up to three zone squares that it bears on, by PieceType.
constexpr std::array<int, kPieceTypes + 1> kAttackWeights{0, 1, 3, 2, 2, 5, 1};

// What a king's square gives it; everything but the shield and the attackers.
struct KingSquare {
  std::int16_t MiddleGame;
  std::int16_t EndGame;
  Bitboard Shield;              // where pawns shield it
  std::array<Bitboard, 2> Zone; // where attackers count: with a shield, without
};

constexpr Bitboard WithNeighbours(int square) { return Bit(square) | TowardsA(Bit(square)) | TowardsH(Bit(square)); }

template <Side Us> constexpr KingSquare MakeKingSquare(int square) {
  const int rank = RelativeRank(Us, square);
  const bool castled = rank == 0 && (FileOf(square) == 2 || FileOf(square) == 6);
  const Bitboard row = WithNeighbours(square);
  const Bitboard first = Ahead<Us>(row);
  const Bitboard near = Behind<Us>(row) | row | first | Ahead<Us>(first);
  return {
      static_cast<std::int16_t>(kRankWish * rank + kFileWish * FileCentrality(square) + (castled ? kCastledBonus : 0)),
      static_cast<std::int16_t>(kCentreWish * (FileCentrality(square) + RankCentrality(square))),
      first,
      {near, near | Ahead<Us>(Ahead<Us>(first))}};
}

template <Side Us> constexpr std::array<KingSquare, kSquares> MakeKingSquares() {
  std::array<KingSquare, kSquares> table{};
  for (int square = 0; square < kSquares; ++square)
    table[static_cast<unsigned>(square)] = MakeKingSquare<Us>(square);
  return table;
}

template <Side Us> constexpr std::array<KingSquare, kSquares> kKingSquares = MakeKingSquares<Us>();

// The blend lies between the two wishes, so the outermost of all wishes are the outermost terms.
constexpr int FindKingPlaceSpread() {
  int lowest = 0;
  int highest = 0;
  for (const KingSquare &place : kKingSquares<kWhite>) {
    lowest = std::min<int>({lowest, place.MiddleGame, place.EndGame});
    highest = std::max<int>({highest, place.MiddleGame + kShieldPawn * CountSquares(place.Shield), place.EndGame});
  }
  return highest - lowest;
}
static_assert(FindKingPlaceSpread() == kKingPlaceSpread);

// Attackers and their weighted squares stand in one sum, the attackers in the upper half.
constexpr int kOneAttacker = 1 << 16;
constexpr int kLargestZone = 15;

// What a piece adds to the sum, by type and number of zone squares that it bears on.
constexpr std::array<std::array<int, kLargestZone + 1>, kPieceTypes + 1> MakeZoneTerms() {
  std::array<std::array<int, kLargestZone + 1>, kPieceTypes + 1> table{};
  for (unsigned type = kPawn; type <= kKing; ++type)
    for (int squares = 1; squares <= kLargestZone; ++squares)
      table[type][static_cast<unsigned>(squares)] =
          kOneAttacker + kAttackWeights[type] * std::min(squares, kCountedZoneSquares);
  return table;
}

constexpr std::array<std::array<int, kLargestZone + 1>, kPieceTypes + 1> kZoneTerms = MakeZoneTerms();

int ZoneTerm(PieceType type, Bitboard zoneSquares) {
  return kZoneTerms[type][static_cast<unsigned>(CountSquares(zoneSquares))];
}

// A pawn bears on two squares at most, so all of a side's are counted at once.
template <Side Attacker> int PawnZoneTerms(Bitboard zone) {
  const Bitboard pawns = Pieces(Attacker, kPawn);
  const Bitboard towardsA = TowardsA(Ahead<Attacker>(pawns)) & zone;
  const Bitboard towardsH = TowardsH(Ahead<Attacker>(pawns)) & zone;
  return kOneAttacker * CountSquares(Behind<Attacker>(TowardsH(towardsA) | TowardsA(towardsH))) +
         kAttackWeights[kPawn] * (CountSquares(towardsA) + CountSquares(towardsH));
}

// The attackers of a zone and their weighted squares.
template <Side Attacker> int ZoneSum(Bitboard zone) {
  const Bitboard occupied = Occupied();
  int sum = PawnZoneTerms<Attacker>(zone) +
            ZoneTerm(kKing, KingAttacks[static_cast<unsigned>(FindKingSquare(Attacker))] & zone);
  for (Bitboard rooks = Pieces(Attacker, kRook); rooks != 0;)
    sum += ZoneTerm(kRook, RookAttacks(PopSquare(rooks), occupied) & zone);
  for (Bitboard knights = Pieces(Attacker, kKnight); knights != 0;)
    sum += ZoneTerm(kKnight, KnightAttacks[static_cast<unsigned>(PopSquare(knights))] & zone);
  for (Bitboard bishops = Pieces(Attacker, kBishop); bishops != 0;)
    sum += ZoneTerm(kBishop, BishopAttacks(PopSquare(bishops), occupied) & zone);
  for (Bitboard queens = Pieces(Attacker, kQueen); queens != 0;)
    sum += ZoneTerm(kQueen, QueenAttacks(PopSquare(queens), occupied) & zone);
  return sum;
}

template <Side Us> const KingSquare &PlaceOfKing() {
  return kKingSquares<Us>[static_cast<unsigned>(FindKingSquare(Us))];
}

template <Side Us> int CountShield(const KingSquare &place) { return CountSquares(place.Shield & Pieces(Us, kPawn)); }

} // namespace

template <Side Us> int KingPlaceTerm(const Phase &phase) {
  const KingSquare &place = PlaceOfKing<Us>();
  const int middleGame = kShieldPawn * CountShield<Us>(place) + place.MiddleGame;
  return (middleGame * phase.GamePhase + place.EndGame * phase.EndgameWeight) / kFullPhase;
}

template <Side Us> int KingAttackPenalty(const Phase &phase) {
  const KingSquare &place = PlaceOfKing<Us>();
  const int shield = CountShield<Us>(place);
  const int sum = ZoneSum<Opposite(Us)>(place.Zone[shield > 0 ? 0 : 1]);
  if (sum < 2 * kOneAttacker)
    return 0;
  const int weighted = sum % kOneAttacker;
  const int raw = (kFullShield - shield) * weighted + weighted * weighted / 4;
  const int penalty = phase.GamePhase * std::min(raw, kHighestRawPenalty) / kFullPhase;
  return ScaleByQueen<Opposite(Us)>(penalty);
}

template int KingPlaceTerm<kWhite>(const Phase &phase);
template int KingPlaceTerm<kBlack>(const Phase &phase);
template int KingAttackPenalty<kWhite>(const Phase &phase);
template int KingAttackPenalty<kBlack>(const Phase &phase);

} // namespace zorvane

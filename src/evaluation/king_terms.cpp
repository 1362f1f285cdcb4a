#include "evaluation/king_terms.h"

#include <algorithm>

#include "evaluation/piece_terms.h"

namespace zorvane {

namespace {

constexpr int kShieldPawn = 12;
constexpr int kCastledBonus = 35;
constexpr int kRankWish = -12;
constexpr int kFileWish = -3;
constexpr int kCentreWish = 5;
constexpr int kFullShield = 3;
constexpr int kCountedZoneSquares = 3;
constexpr int kHighestPenalty = 260;

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

// Attackers and their weighted squares in one sum, the attackers in the upper half.
constexpr int kAttackerShift = 16;
constexpr int kOneAttacker = 1 << kAttackerShift;
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

template <Side Attacker> int KingAttackPenalty(Bitboard zone, int shield, int gamePhase) {
  const Bitboard occupied = Occupied();
  int sum = PawnZoneTerms<Attacker>(zone) +
            ZoneTerm(kKing, KingAttacks[static_cast<unsigned>(FindKingSquare(Attacker))] & zone);
  for (Bitboard rooks = Pieces(Attacker, kRook); rooks != 0;)
    sum += ZoneTerm(kRook, RookAttacks(PopSquare(rooks), occupied) & zone);
  for (Bitboard knights = Pieces(Attacker, kKnight); knights != 0;)
    sum += ZoneTerm(kKnight, KnightAttacks[static_cast<unsigned>(PopSquare(knights))] & zone);
  for (Bitboard bishops = Pieces(Attacker, kBishop); bishops != 0;)
    sum += ZoneTerm(kBishop, BishopAttacks(PopSquare(bishops), occupied) & zone);
  const Bitboard queens = Pieces(Attacker, kQueen);
  for (Bitboard rest = queens; rest != 0;)
    sum += ZoneTerm(kQueen, QueenAttacks(PopSquare(rest), occupied) & zone);

  if (sum < 2 * kOneAttacker)
    return 0;
  const int weighted = sum % kOneAttacker;
  const int raw = (kFullShield - shield) * weighted + weighted * weighted / 4;
  const int penalty = gamePhase * std::min(raw, kHighestPenalty) / kFullPhase;
  return queens != 0 ? penalty : penalty / 4;
}

} // namespace

template <Side Us> int KingTerm(const Phase &phase) {
  const KingSquare &place = kKingSquares<Us>[static_cast<unsigned>(FindKingSquare(Us))];
  const int shield = CountSquares(place.Shield & Pieces(Us, kPawn));
  const int square =
      ((kShieldPawn * shield + place.MiddleGame) * phase.GamePhase + place.EndGame * phase.EndgameWeight) / kFullPhase;
  return square - KingAttackPenalty<Opposite(Us)>(place.Zone[shield > 0 ? 0 : 1], shield, phase.GamePhase);
}

template int KingTerm<kWhite>(const Phase &phase);
template int KingTerm<kBlack>(const Phase &phase);

} // namespace zorvane

// The worth of a king's place: shelter in the middle game, the centre in the end game, attackers around it.
#pragma once

#include "board/rules.h"
#include "evaluation/phase.h"

namespace zorvane {

// True when the piece on from bears on the square to.
inline bool PieceAttacksSquare(int from, int to) { return Contains(PieceAttacks(from), to); }

// No two kings are worth more than this apart by their places.
constexpr int kKingPlaceSpread = 167;

// What its square and the pawns in front of it give the king of Us, centipawns, unsigned for colour, without the
// constant that both kings have.
template <Side Us> int KingPlaceTerm(const Phase &phase);

// What the attackers around it cost the king of Us: 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// A penalty of 0 or more, of which attackers without a queen earn the fourth part.
template <Side Attacker> inline int WithoutQueenLess(int penalty) {
  return penalty >> (Pieces(Attacker, kQueen) == 0 ? 2 : 0);
}

// No attack on the king of Us costs more.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return WithoutQueenLess<Opposite(Us)>(phase.HighestAttackPenalty);
}

} // namespace zorvane

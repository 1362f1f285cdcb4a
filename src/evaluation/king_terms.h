// The worth of a king's place: shelter in the middle game, the centre in the end game, attackers around it.
#pragma once

#include "board/rules.h"
#include "evaluation/phase.h"

namespace zorvane {

// The most that two kings' places can differ in worth.
constexpr int kKingPlacementSpread = 167;

// What its square and the pawns in front of it give the king of Us, centipawns, unsigned for colour, without the
// constant that both kings have.
template <Side Us> int KingPlacementTerm(const Phase &phase);

// What the attackers around it cost the king of Us: 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// Attackers without a queen earn the fourth part of a penalty, which is 0 or more.
template <Side Attacker> inline int ScaleByQueen(int penalty) {
  return penalty >> (Pieces(Attacker, kQueen) == 0 ? 2 : 0);
}

// No attack on the king of Us costs more.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return ScaleByQueen<Opposite(Us)>(phase.HighestAttackPenalty);
}

} // namespace zorvane

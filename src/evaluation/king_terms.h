// The terms of a king: shelter in the middlegame, centralisation in the endgame, and the attack on its zone.
#pragma once

#include "board/rules.h"
#include "evaluation/phase.h"

namespace zorvane {

// The most that the placement terms of two kings can differ, centipawns.
constexpr int kKingPlacementSpread = 167;

// What its square and the pawns in front of it give the king of Us: centipawns, the more the better, either side. The
// constant that both kings have is left out.
template <Side Us> int KingPlacementTerm(const Phase &phase);

// What the attackers of its zone cost the king of Us: centipawns, 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// Attackers without a queen count a quarter. The penalty is 0 or more.
template <Side Attacker> inline int ScaleByQueen(int penalty) {
  return penalty >> (Pieces(Attacker, kQueen) == 0 ? 2 : 0);
}

// The most that any attack on the king of Us can cost in this phase.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return ScaleByQueen<Opposite(Us)>(phase.HighestAttackPenalty);
}

} // namespace zorvane

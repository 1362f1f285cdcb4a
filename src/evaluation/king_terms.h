// The terms of a king: shelter in the middlegame, centralisation in the endgame, and the attack on its zone.
#pragma once

#include "board/position.h"
#include "evaluation/phase.h"

namespace zorvane {

// The largest difference between any two values of KingPlacementTerm, centipawns; checked by a static_assert.
constexpr int kKingPlacementSpread = 167;

// What the king of Us gets for its square and the pawns in front of it: centipawns, positive is good for Us. Without
// the large constant of both kings, which is in evaluate.cpp.
template <Side Us> int KingPlacementTerm(const Phase &phase);

// The penalty for attacks on the zone of the king of Us: centipawns, 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// An attack without a queen counts a quarter. The penalty must be 0 or more.
template <Side Attacker> inline int ScaleByQueen(int penalty) {
  constexpr int quarter = 2; // as a shift
  return penalty >> (Pieces(Attacker, kQueen) == 0 ? quarter : 0);
}

// The highest possible KingAttackPenalty in this phase.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return ScaleByQueen<Opposite(Us)>(phase.HighestQueenAttack);
}

} // namespace zorvane

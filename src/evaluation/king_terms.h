// The terms of a king: shelter in the middlegame, centralisation in the endgame, and the attack on its zone.
#pragma once

#include "board/position.h"
#include "evaluation/phase.h"

namespace zorvane {

// The largest difference between any two values of KingPlacementTerm, centipawns; a static_assert holds it.
constexpr int kKingPlacementSpread = 167;

// What its square and the pawns in front of it give the king of Us: centipawns, positive is good for Us. The large
// constant that both kings have is evaluate.cpp's.
template <Side Us> int KingPlacementTerm(const Phase &phase);

// What the attackers of its zone cost the king of Us: centipawns, 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// An attack without a queen counts a quarter. The penalty must be 0 or more.
template <Side Attacker> inline int ScaleByQueen(int penalty) {
  constexpr int quarter = 2; // as a shift
  return penalty >> (Pieces(Attacker, kQueen) == 0 ? quarter : 0);
}

// The most that any attack on the king of Us can cost in this phase.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return ScaleByQueen<Opposite(Us)>(phase.HighestQueenAttack);
}

} // namespace zorvane

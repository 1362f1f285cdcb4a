// The worth of a king's place: shelter in the middle game, the centre in the end game, attackers around it.
#pragma once

#include "board/rules.h"
#include "evaluation/phase.h"

namespace zorvane {

// True when the piece on from bears on the square to.
inline bool PieceAttacksSquare(int from, int to) { return Contains(PieceAttacks(from), to); }

constexpr int kAttackShareWithoutQueen = 4; // the penalty is divided by it

// What its square and the pawns in front of it give the king of Us, centipawns, unsigned for colour, without the
// constant that both kings have.
template <Side Us> int KingPlaceTerm(const Phase &phase);

// What the attackers around it cost the king of Us: 0 to HighestAttackPenalty.
template <Side Us> int KingAttackPenalty(const Phase &phase);

// No attack on the king of Us costs more.
template <Side Us> inline int HighestAttackPenalty(const Phase &phase) {
  return Pieces(Opposite(Us), kQueen) != 0 ? phase.HighestAttackPenalty
                                           : phase.HighestAttackPenalty / kAttackShareWithoutQueen;
}

} // namespace zorvane

// The worth of a king's place: shelter in the middle game, the centre in the end game, attackers around it.
#pragma once

#include "board/rules.h"
#include "evaluation/phase.h"

namespace zorvane {

// True when the piece on from bears on the square to.
inline bool PieceAttacksSquare(int from, int to) { return Contains(PieceAttacks(from), to); }

// The term of the king of side, centipawns, unsigned for colour, without the constant that both kings have.
template <Side Us> int KingTerm(const Phase &phase);

} // namespace zorvane

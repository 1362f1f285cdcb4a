// The last part of every search line: captures, a limited number of quiet checks, pawn pushes that fork, and one bishop
// manoeuvre, within a budget of nodes for each entry from a level. docs/quiescence.md explains the words and the
// limits.
#pragma once

#include "board/types.h"
#include "evaluation/score.h"

namespace zorvane {

// Searches the position at ply, 1 to 8, with Us to move and returns its score: centipawns from White's view, as are
// alpha and beta. It may be outside the window; inside the range it is exact, outside only the side is guaranteed.
// After a stop it is meaningless and SearchAborted is set. The position is unchanged.
template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range);

} // namespace zorvane

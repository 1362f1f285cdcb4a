// The last stage of every search line: captures, a bounded number of quiet checks, fork pushes and one bishop
// manoeuvre, under a budget of nodes counted afresh for each entry from a level.
#pragma once

#include "board/types.h"
#include "evaluation/score.h"

namespace zorvane {

// Searches the position with Us to move from ply, 1 to 8, on and returns its score, centipawns from White's view; it
// may lie outside the window, and outside the range it is any score of the same end. After a stop the score means
// nothing and SearchAborted is set. The position is unchanged.
template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range);

} // namespace zorvane

// The last part of every search line: captures, a bounded number of quiet checks, pawn pushes that fork, and one bishop
// manoeuvre (tactical_moves.h), under a budget of nodes that each entry from a level has for itself.
#pragma once

#include "board/types.h"
#include "evaluation/score.h"

namespace zorvane {

// Searches the position with Us to move from ply, 1 to 8, on and returns its score: centipawns from White's view, as
// are alpha and beta. It may lie outside the window; at or beyond an end of the range it is any score on that side.
// After a stop it means nothing and SearchAborted is set. The position is unchanged.
template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range);

} // namespace zorvane

// The last stage of every search line: captures, a bounded number of quiet checks, fork pushes and one bishop
// manoeuvre, under a budget of nodes counted afresh for each entry from a level.
#pragma once

#include "board/types.h"
#include "evaluation/evaluate.h"

namespace zorvane {

// Scores that are no evaluations, from White's view.
constexpr int kInfinity = 1000000;     // start value of a best score
constexpr int kMateValue = 900000;     // less the ply of the mated side's node
constexpr int kMateThreshold = 800000; // from here on a score means mate

constexpr int MatedScore(Side side, int ply) { return side == kWhite ? ply - kMateValue : kMateValue - ply; }

// Searches the position with Us to move from ply, 1 to 8, on and returns its score, centipawns from White's view; it
// may lie outside the window, and outside the range it is any score of the same end. After a stop the score means
// nothing and SearchAborted is set. The position is unchanged.
template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range);

// Sets the node counters of the quiescence to 0, as each root pass does.
void ResetQuiescenceCounters();

} // namespace zorvane

// The full-width part of the tree: plies 1 to 7, between the root and quiescence.
//
// Fail-soft alpha-beta from White's view, without negation. No pruning but the cut-off, no reductions, no extensions;
// the table gives no cut-offs, only a first move.
#pragma once

#include "board/types.h"

namespace zorvane {

// Searches the position after a root move, with side to move: full width to depth, 1 to kDepthLimit, then quiescence.
// Returns the score in centipawns from White's view, as are alpha and beta. It may be outside the window; after a stop
// it is meaningless and SearchAborted is set. The position is unchanged.
int SearchLevels(Side side, int depth, int alpha, int beta);

} // namespace zorvane

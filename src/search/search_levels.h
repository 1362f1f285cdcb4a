// The full-width part of the tree: plies 1 to 7, between the root and quiescence.
//
// Fail-soft alpha-beta in White's view without negation. No pruning except the cut-off, no reductions, no extensions;
// the table gives no cut-offs, only a first move.
#pragma once

#include "board/types.h"

namespace zorvane {

// Searches the position after a root move, with side to move, down to CurrentDepth and through quiescence. Returns the
// score in centipawns from White's view, as alpha and beta are; it may lie outside the window; after a stop it means
// nothing and SearchAborted is set. The position is unchanged.
int SearchLevels(Side side, int alpha, int beta);

} // namespace zorvane

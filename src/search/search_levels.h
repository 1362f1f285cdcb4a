// The full-width part of the tree: plies 1 to 7, between the root and quiescence.
//
// Minimax alpha-beta in White's view without negation, fail-soft; no pruning but the cut, no extensions. The table
// gives no cut-offs, only a first move.
#pragma once

#include "board/types.h"

namespace zorvane {

// Searches the position of ply, 1 to 8, with side to move: its moves when ply is below CurrentDepth, else quiescence.
// Returns the score in centipawns from White's view, which may lie outside the window; after a stop it means
// nothing and SearchAborted is set. The position is unchanged.
int SearchLevel(Side side, int ply, int alpha, int beta);

// The same for the third iteration, whose levels neither ask nor change the table.
int ThirdIteration(Side side, int ply, int alpha, int beta);

} // namespace zorvane

// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move.
#pragma once

namespace zorvane {

// The evaluation of the position, remembered in the transposition table under SideToMove: a position found there is
// answered from its slot, any other takes the slot over.
int Evaluate();

// The same number, worked out.
int ComputeEvaluation();

} // namespace zorvane

// What root, levels and quiescence share of the iteration that runs.
#pragma once

#include <cstdint>

#include "board/position.h"

namespace zorvane {

// The depth of the running iteration, 1 to kDepthLimit. Valid from BeginIteration to the end of the search.
extern int CurrentDepth;

// Nodes of the running iteration: each move made at a level, each root move once however often it is searched, and each
// node of quiescence; so a move into quiescence counts twice.
extern std::int64_t Nodes;

// The side that the search is for. No search flips SideToMove, so it is that.
inline Side RootSide() { return SideToMove; }

// Starts an iteration: its depth holds from here on, and no node is counted yet.
void BeginIteration(int depth);

inline void CountNode() { ++Nodes; }

} // namespace zorvane

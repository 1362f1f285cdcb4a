// What root, levels and quiescence share of the iteration that runs.
#pragma once

#include <cstdint>

namespace zorvane {

// The depth of the running iteration, 1 to kDepthLimit. Valid from BeginIteration to the end of the search.
extern int CurrentDepth;

// Nodes of the running iteration: each move made at a level, each root move once however often it is searched, and each
// node of quiescence; so a move into quiescence counts twice.
extern std::int64_t Nodes;

// Starts an iteration: its depth holds from here on, and no node is counted yet.
void BeginIteration(int depth);

inline void CountNode() { ++Nodes; }

} // namespace zorvane

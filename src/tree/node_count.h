// The node count of a search.
#pragma once

#include <cstdint>

namespace zorvane {

// Nodes of the running search: each move made at a level, each root move once however often it is searched, and each
// quiescence node. A move into quiescence therefore counts twice.
extern std::int64_t Nodes;

void ResetNodes();

inline void CountNode() { ++Nodes; }

} // namespace zorvane

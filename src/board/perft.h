// Counting the legal move tree.
#pragma once

#include <cstdint>

namespace zorvane {

// The number of leaves of the legal move tree to a depth, 0 or more, with SideToMove to move. Each promotion counts as
// four moves. The position is unchanged.
std::uint64_t Perft(int depth);

} // namespace zorvane

// The count of the legal move tree.
#pragma once

#include <cstdint>

namespace zorvane {

// The leaves of the legal move tree of that depth, 0 or more, for SideToMove; each promotion counts four times. The
// position is unchanged afterwards.
std::uint64_t Perft(int depth);

} // namespace zorvane

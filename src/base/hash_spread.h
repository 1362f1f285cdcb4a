// The multiplier of the hash tables.
#pragma once

#include <cstdint>

namespace zorvane {

// An odd factor that spreads the bits of a hash over the upper bits of the product.
constexpr std::uint64_t kHashSpread = 0x9E3779B97F4A7C15U;

} // namespace zorvane

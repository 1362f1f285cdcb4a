#include "base/parse_integer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zorvane {

int ParseInteger(const char *text, const char **end) {
  char *after = nullptr;
  const long long number = std::strtoll(text, &after, 10);
  if (end != nullptr)
    *end = after;
  constexpr long long lowest = std::numeric_limits<int>::min();
  constexpr long long highest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(number, lowest, highest));
}

} // namespace zorvane

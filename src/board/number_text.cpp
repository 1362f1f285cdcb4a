#include "board/number_text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zorvane {

int ParseInteger(const char *text, const char **end) {
  char *behind = nullptr;
  const long long number = std::strtoll(text, &behind, 10);
  if (end != nullptr)
    *end = behind;
  constexpr long long lowest = std::numeric_limits<int>::min();
  constexpr long long highest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(number, lowest, highest));
}

} // namespace zorvane

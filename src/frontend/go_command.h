// The words of a "go" line.
#pragma once

#include "search/search_driver.h"

namespace zorvane {

struct GoCommand {
  SearchLimits Limits;
  bool IsInfinite; // the result is held back until a stop
};

// Reads depth, movetime, the clock of the side to move and infinite; other words have no meaning. Without any: depth 8,
// ten seconds. A depth is held to 1 to 8 and gives 300 s; movetime, or else the clock, replaces that time with a
// millisecond at least, and infinite replaces it with a day.
GoCommand ReadGoCommand(const char *line);

} // namespace zorvane

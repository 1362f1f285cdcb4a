// The words of a "go" line.
#pragma once

#include "search/search_driver.h"

namespace zorvane {

struct GoCommand {
  SearchLimits Limits;
  bool IsInfinite; // the result is held back until a stop
};

// Reads depth, movetime, the clock of the side to move and infinite; other words have no meaning. A time is at least a
// millisecond.
GoCommand ReadGoCommand(const char *line);

} // namespace zorvane

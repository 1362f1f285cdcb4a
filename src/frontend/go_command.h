// Parsing of the UCI "go" command.
#pragma once

#include "search/search_driver.h"

namespace zorvane {

struct GoCommand {
  SearchLimits Limits;
  bool IsInfinite; // the result is held back until stop
};

// Reads depth, movetime, the clock of the side to move and infinite; other words are ignored. The default is depth 8
// and ten seconds. depth is clamped to 1 to 8 and allows 300 s; movetime, or else the clock, replaces that time with at
// least one millisecond, and infinite replaces it with a day. On a system without threads infinite means a search to
// depth 8, or to the given depth.
GoCommand ReadGoCommand(const char *line);

} // namespace zorvane

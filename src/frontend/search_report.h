// The output of a search for a chess interface.
#pragma once

#include "search/search_driver.h"

namespace zorvane {

// Prints the info and bestmove lines of a search. There are no other info lines, and the pv is the best move alone.
void PrintSearchResult(const SearchResult &result);

} // namespace zorvane

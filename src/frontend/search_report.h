// What a search looks like to a chess interface.
#pragma once

namespace zorvane {

// Writes the info and bestmove lines of the last search to standard output. There are no others, and the line that info
// names is the best move alone.
void PrintSearchResult();

} // namespace zorvane

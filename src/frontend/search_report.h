// What a search looks like to a chess interface.
#pragma once

namespace zorvane {

// Writes the info and bestmove lines of the last search to standard output.
void PrintSearchResult();

} // namespace zorvane

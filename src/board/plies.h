// How deep a search goes, and the sizes of everything that is indexed by ply.
#pragma once

namespace zorvane {

constexpr int kDepthLimit = 8; // the deepest iteration: full width covers the root, ply 0, and the levels, plies 1 to 7
constexpr int kLastPly = 11;   // no line goes deeper: here quiescence returns the static evaluation

constexpr int kSearchPlies = kDepthLimit;     // plies that have move lists, killers and a best line of their own
constexpr int kUndoSlots = kLastPly + 2;      // snapshots by ply; a search uses 0 to 10, two spare ones catch a slip
constexpr int kBestLineLength = kLastPly + 1; // a response has a row for each ply; full width fills at most eight

} // namespace zorvane

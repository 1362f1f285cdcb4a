// How far the search goes, and so how large everything is that is kept by ply.
#pragma once

namespace zorvane {

constexpr int kDepthLimit = 8;               // iterations; full width is the root, ply 0, and the levels, plies 1 to 7
constexpr int kLastPly = 11;                 // quiescence ends every line here
constexpr int kSearchPlies = kDepthLimit;    // plies that have move lists, killers and a line of their own
constexpr int kUndoSlots = kLastPly + 2;     // snapshots, by ply
constexpr int kFinalPvLength = kLastPly + 1; // entries that hosts are shown; no line is longer than kSearchPlies

} // namespace zorvane

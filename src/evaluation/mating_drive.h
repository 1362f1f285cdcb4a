// The mop-up evaluation: what drives a bare king to the edge.
#pragma once

#include "board/position.h"

namespace zorvane {

// True when the side has nothing but its king.
inline bool IsBare(Side side) { return !MoreThanOne(Position.BySide[side]); }

// The drive of a position in which a side is bare: centipawns from White's view.
int DriveAgainstBareKing();

// Centipawns, positive when White has a rook or queen against Black's bare king, negative the other way round, 0
// when neither holds.
inline int MatingDrive() { return IsBare(kWhite) || IsBare(kBlack) ? DriveAgainstBareKing() : 0; }

} // namespace zorvane

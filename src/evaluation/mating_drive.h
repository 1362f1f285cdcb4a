// The mop-up evaluation, which drives a bare king to the edge.
#pragma once

#include "board/position.h"

namespace zorvane {

// True if the side has only its king.
inline bool IsBare(Side side) { return !MoreThanOne(Board.BySide[side]); }

// The drive in a position where a side is bare: centipawns from White's view.
int DriveAgainstBareKing();

// Centipawns: positive if White has a rook or queen against Black's bare king, negative the other way round, else 0.
inline int MatingDrive() { return IsBare(kWhite) || IsBare(kBlack) ? DriveAgainstBareKing() : 0; }

} // namespace zorvane

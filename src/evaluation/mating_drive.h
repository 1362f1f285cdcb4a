// What drives a bare king to the edge.
#pragma once

#include "board/position.h"

namespace zorvane {

// The drive of a position in which a side has nothing but its king.
int DriveAgainstBareKing();

// Centipawns, positive when White has a rook or queen against Black's bare king, negative the other way round, 0
// when neither holds.
inline int MatingDrive() {
  const bool bare = !HasSeveral(Position.BySide[kWhite]) || !HasSeveral(Position.BySide[kBlack]);
  return bare ? DriveAgainstBareKing() : 0;
}

} // namespace zorvane

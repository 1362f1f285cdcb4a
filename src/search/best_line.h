// The best line of the running iteration, collected in the triangular manner, and that of the last finished one.
#pragma once

#include "board/array.h"
#include "board/plies.h"
#include "board/position_key.h"

namespace zorvane {

struct PvEntry {
  PositionKey Key; // the position before the move, with the side to move there
  PackedMove Move;
  Piece Mover;
  bool Valid;
};

// The line of the last finished iteration, by ply. Written by FinalPvClear and FinalPvCopy.
extern Array<PvEntry, kFinalPvLength> FinalPv;

// Empties the line of a ply, 0 to kSearchPlies.
void PvClearFrom(int ply);

// Makes the move, with the line of the next ply behind it, the line of ply, 0 to 7. The position is the one before the
// move.
void PvStore(int ply, Side side, int from, int to);

// The first move of the ply's line, which must not be empty.
PackedMove PvBestMove(int ply);

// Empties the final line. Hosts are shown the coordinates that an entry held before, so its move stays: only Valid
// tells whether it counts.
void FinalPvClear();

// Makes the root's line the final one. Comes after FinalPvClear.
void FinalPvCopy();

// The move of FinalPv at ply, 1 to 7, when the search stands in that very position with side to move, else kNoMove.
PackedMove PvMoveAtPly(int ply, Side side);

} // namespace zorvane

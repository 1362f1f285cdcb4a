// The triangular table of the running iteration's best line, and the line of the last finished iteration.
#pragma once

#include "board/array.h"
#include "board/plies.h"
#include "board/position_key.h"

namespace zorvane {

// An entry that is not valid still shows hosts the coordinates of the move that it last held.
struct PvEntry {
  PositionKey Key; // the position before the move, with the side to move there
  PackedMove Move;
  Piece Mover; // kNoPiece when not valid
  bool Valid;  // the entry belongs to the line
};

// The line of the last finished iteration, by ply. A response has a row for each of its twelve entries.
extern Array<PvEntry, kFinalPvLength> FinalPv;

// Empties the line of a ply, 0 to kSearchPlies.
void PvClearFrom(int ply);

// Sets the line of ply, 0 to 7: this move and then the line of the next ply. Comes before the move is made, or after it
// was taken back.
void PvStore(int ply, Side side, int from, int to);

// The first move of the ply's line, which must not be empty.
PackedMove PvBestMove(int ply);

// Empties the final line; the moves in its entries stay.
void FinalPvClear();

// Copies the root's line to the final one. Comes after FinalPvClear.
void FinalPvCopy();

// The move of FinalPv at ply, 1 to 7, when the search stands in that very position with side to move, else kNoMove.
PackedMove PvMoveAtPly(int ply, Side side);

} // namespace zorvane

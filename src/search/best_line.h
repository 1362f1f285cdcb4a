// The best line: the triangular table of the running iteration, and the line of the last finished one.
#pragma once

#include "base/array.h"
#include "board/plies.h"
#include "board/types.h"

namespace zorvane {

// An entry that is not valid keeps the move that it last had in this search: hosts see its coordinates.
struct LineEntry {
  PackedMove Move;
  Piece Mover; // kNoPiece when the line has ended
  bool Valid;  // the entry belongs to the line
};

// By ply. A response has a row for each of its twelve entries.
using BestLine = Array<LineEntry, kBestLineLength>;

// Empties the line of a ply, 0 to kSearchPlies.
void ClearLine(int ply);

// Sets the line of ply, 0 to 7, to this move followed by the line of the next ply. Call it before the move is made or
// after it has been taken back.
void StoreLine(Side side, int ply, int from, int to);

// The first move of the ply's line, which must not be empty.
PackedMove FirstOfLine(int ply);

// Forgets the line of the last search.
void ForgetKeptLine();

// Keeps the root's line, at the end of an iteration.
void KeepLine();

// The line of the last finished iteration.
BestLine KeptLine();

// The kept line's move at ply, 1 to 7, if the search is in exactly that position with side to move, else kNoMove.
PackedMove KeptMove(Side side, int ply);

} // namespace zorvane

// Moves as text, and ApplyUciMove, the only way in which a move of the game is made; a search uses MakeMove.
#pragma once

#include "board/bounded_string.h"
#include "board/types.h"

namespace zorvane {

// Plays the move that text names in coordinate notation, such as "e2e4" or "e7e8n", on the game's position: the side
// to move, GamePly and the game history follow. False, with nothing changed, when the text is no legal move.
bool ApplyUciMove(const char *text);

// Plays moves separated by blanks. False at the first that is refused: those before it stay played. Writes terminators
// over the blanks.
bool ApplyMoveList(char *moves);

// Coordinate notation of the move of a piece; "q" follows for a pawn that reaches the last row.
void MoveText(BoundedString &out, Piece piece, int from, int to);

// The move as digits: from file, from row, to file, to row with row 0 the eighth rank, and 5 for a pawn that reaches
// the last row, else 0.
void MoveIdTextForPiece(BoundedString &out, Piece piece, int from, int to);

} // namespace zorvane

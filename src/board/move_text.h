// Moves as text, and the one way in which a move of the game is made.
#pragma once

#include "board/bounded_string.h"
#include "board/position.h"

namespace zorvane {

// Plays the move that text names in coordinate notation, such as "e2e4" or "e7e8n", on the game's position: the side
// to move, GamePly and the game history follow. False, with nothing changed, when the text is no legal move.
bool ApplyUciMove(const char *text);

// Plays the moves of a list, separated by blanks, up to the first that is refused. False when there was one. The text
// is cut in the course of it.
bool ApplyMoveList(char *moves);

// Coordinate notation; "q" follows for a pawn that reaches the last row.
void MoveText(BoundedString &out, Piece piece, int from, int to);

// The digits of from file, from row, to file, to row and promotion, 5 for a pawn that reaches the last row, else 0.
void MoveIdTextForPiece(BoundedString &out, Piece piece, int from, int to);

} // namespace zorvane

// Moves as text, and ApplyUciMove, the only way to make a move of the game; a search uses MakeMove.
#pragma once

#include <array>

#include "board/types.h"

namespace zorvane {

// Plays a move in coordinate notation, such as "e2e4" or "e7e8n", in the game: side to move, GamePly and game history
// are updated. False, with nothing changed, if the text is not a legal move.
bool ApplyUciMove(const char *text);

// Plays moves separated by blanks. False at the first that is not legal; those before it stay played. Overwrites the
// blanks with terminators.
bool ApplyMoveList(char *moves);

// A move of at most five characters as a zero-terminated text.
using MoveChars = std::array<char, 6>;

// The move of a piece in coordinate notation, followed by "q" if a pawn reaches the last row.
MoveChars MoveText(Piece piece, int from, int to);

// The move as digits: from file, from row, to file, to row (row 0 is the eighth rank), and 5 if a pawn reaches the last
// row, else 0.
MoveChars HintDigits(Piece piece, int from, int to);

} // namespace zorvane

// The draws that the search recognises. None changes the position.
#pragma once

#include "board/legal_moves.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kFiftyMoveLimit = 100; // half-moves without a capture or pawn move

// True if the position, with side to move, has occurred at least twice before, in the game or at earlier plies of the
// search line, and side has a legal move: mate and stalemate take precedence.
inline bool IsRepetitionDraw(Side side, int ply) { return CountRepetitions(side, ply, 2) >= 2 && HasLegalMove(side); }

// For positions without pawns, rooks and queens: true with at most one minor piece, or with one bishop on each side,
// both on squares of the same colour.
bool IsDeadMinorEnding();

// True if neither side has enough material to mate. Two knights count as enough.
inline bool IsInsufficientMaterial() { return (Pieces(kPawn, kRook) | Pieces(kQueen)) == 0 && IsDeadMinorEnding(); }

// The fifty-move rule and dead material. Mate and stalemate take precedence; the caller must check for them.
inline bool IsMaterialOrClockDraw() { return Board.HalfmoveClock >= kFiftyMoveLimit || IsInsufficientMaterial(); }

} // namespace zorvane

// The draws that the search recognises. None changes the position.
#pragma once

#include "board/legal_moves.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kFiftyMoveLimit = 100; // half-moves without a capture or pawn move

// True when the position, with side to move, has occurred at least twice before, in the game or at earlier plies of the
// search line, and side has a legal move: mate and stalemate go before.
inline bool IsRepetitionDraw(Side side, int ply) { return CountRepetitions(side, ply, 2) >= 2 && HasLegalMove(side); }

// For positions with no pawns, rooks and queens: true with at most one minor piece, or with one bishop each, both on
// squares of one colour.
bool IsDeadMinorEnding();

// True when neither side has the material to mate. Two knights are thought to have it.
inline bool IsInsufficientMaterial() { return (Pieces(kPawn, kRook) | Pieces(kQueen)) == 0 && IsDeadMinorEnding(); }

// The fifty-move rule and the material. Whether it is mate or stalemate, which go before, is for the caller to ask.
inline bool IsMaterialOrClockDraw() { return Position.HalfmoveClock >= kFiftyMoveLimit || IsInsufficientMaterial(); }

} // namespace zorvane

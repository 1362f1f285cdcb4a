// The draws that the search recognises. None changes the position.
#pragma once

#include "board/legal_moves.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kFiftyMoveLimit = 100; // half-moves without a capture or pawn move

// True when the position, with side to move, has come up twice before in the game and on the line above ply, and side
// has a legal move.
inline bool IsRepetitionDraw(Side side, int ply) { return CountRepetitions(side, ply, 2) >= 2 && HasLegalMove(side); }

// Of positions with kings, knights and bishops alone: true when there is no more than one minor piece in all, or a
// bishop each on squares of one colour.
bool IsDeadMinorEnding();

// True when the material that is left is not enough for either side to mate.
inline bool IsInsufficientMaterial() { return (Pieces(kPawn, kRook) | Pieces(kQueen)) == 0 && IsDeadMinorEnding(); }

// True when the position is drawn by the fifty-move rule or by its material, unless it is mate or stalemate.
inline bool IsMaterialOrClockDraw() { return Position.HalfmoveClock >= kFiftyMoveLimit || IsInsufficientMaterial(); }

} // namespace zorvane

// The tactical questions of quiescence. None changes the position.
#pragma once

#include "board/position.h"

namespace zorvane {

// The squares from which a pawn of Us would attack two enemy rooks, knights, bishops or queens.
template <Side Us> inline Bitboard PawnForkSquares() {
  const Bitboard pieces = Position.BySide[Opposite(Us)] & ~Pieces(kPawn, kKing);
  return ShiftWest(ShiftBackward<Us>(pieces)) & ShiftEast(ShiftBackward<Us>(pieces));
}

// True when Us has a legal pawn push to one of PawnForkSquares.
template <Side Us> bool HasPawnForkPush();

// True when a knight of a side on a square where UndoStack slot ply - 1 had none can legally capture one of two or more
// enemy rooks, knights, bishops or queens, a rook or queen among them. ply is 1 or more.
bool HasFreshKnightFork(Side us, int ply);

// The square of the first enemy knight or bishop in scan order that the side's last queen in scan order can legally
// capture, kNoSquare for none. First and last are arbitrary, but part of what the engine answers.
int FindQueenTarget(Side us);

} // namespace zorvane

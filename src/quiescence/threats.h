// The tactical threats that quiescence looks for. None of these changes the position.
#pragma once

#include "board/position.h"

namespace zorvane {

// The squares from which a pawn of Us would attack two enemy rooks, knights, bishops or queens.
template <Side Us> inline Bitboard PawnForkSquares() {
  const Bitboard pieces = Board.BySide[Opposite(Us)] & ~Pieces(kPawn, kKing);
  return ShiftWest(ShiftBackward<Us>(pieces)) & ShiftEast(ShiftBackward<Us>(pieces));
}

// True if Us has a legal pawn push to one of PawnForkSquares.
template <Side Us> bool HasPawnForkPush();

// True if a knight of us that was not on its square before the last move can legally capture two or more enemy rooks,
// knights, bishops or queens, at least one of them a rook or queen. ply, 1 or more; UndoStack holds the ply before.
bool HasFreshKnightFork(Side us, int ply);

// The square of the first enemy knight or bishop in scan order that the side's last queen in scan order can legally
// capture, kNoSquare for none. First and last are arbitrary but affect the engine's answers.
int FindQueenTarget(Side us);

} // namespace zorvane

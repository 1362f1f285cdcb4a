// The tactical questions of quiescence. None changes the position.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

// True when side has a legal pawn push onto a square from which the pawn would attack two enemy pieces,
// pawns and king not counted.
template <Side Us> bool HasPawnForkPush();

// The squares from which a pawn of Us would attack two enemy rooks, knights, bishops or queens.
template <Side Us> inline Bitboard PawnForkSquares() {
  const Bitboard pieces = Position.BySide[Opposite(Us)] & ~Pieces(kPawn, kKing);
  return ShiftWest(ShiftBackward<Us>(pieces)) & ShiftEast(ShiftBackward<Us>(pieces));
}

// True when a knight of Us that has just moved (it stands elsewhere in the UndoStack slot of ply - 1) can take one of
// two or more enemy pieces, a rook or queen among them; pawns and king not counted.
template <Side Us> bool HasFreshKnightFork(int ply);

// The square of the first enemy knight or bishop, in scan order, that the last queen of Us in scan order can take;
// kNoSquare for none.
template <Side Us> int FindQueenTarget();

} // namespace zorvane

#include "board/position.h"

#include "board/array.h"

namespace zorvane {

BoardState Position;
Side SideToMove;
std::int64_t GamePly;
Array<BoardState, kUndoSlots> UndoStack;

void PutPiece(int square, Piece piece) {
  const SquareTerm &term = kSquareTerms[piece][square];
  Position.BySide[SideOf(piece)] |= Bit(square);
  Position.ByType[TypeOf(piece) - 1] |= Bit(square);
  Position.Board[square] = piece;
  Position.Sum.Hash += term.Hash;
  Position.Sum.Scores += term.Scores;
}

void RemovePiece(int square) {
  const Piece piece = PieceOn(square);
  const SquareTerm &term = kSquareTerms[piece][square];
  Position.BySide[SideOf(piece)] &= ~Bit(square);
  Position.ByType[TypeOf(piece) - 1] &= ~Bit(square);
  Position.Board[square] = kNoPiece;
  Position.Sum.Hash -= term.Hash;
  Position.Sum.Scores -= term.Scores;
}

void StartGame(const BoardState &state, Side side, std::int64_t ply) {
  Position = state;
  SideToMove = side;
  GamePly = ply;
}

void PassTurn() {
  SideToMove = Opposite(SideToMove);
  ++GamePly;
}

} // namespace zorvane

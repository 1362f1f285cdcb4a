#include "board/position.h"

#include <cassert>

#include "base/array.h"

namespace zorvane {

BoardState Board;
Side SideToMove;
std::int64_t GamePly;
Array<BoardState, kUndoSlots> UndoStack;

bool PositionIsOk() {
  BoardState expected{};
  SquareTerm sum{};
  for (int square = 0; square < kSquares; ++square) {
    const Piece piece = PieceOn(square);
    if (piece == kNoPiece)
      continue;
    expected.BySide[SideOf(piece)] |= Bit(square);
    expected.ByType[TypeOf(piece) - 1] |= Bit(square);
    sum.Hash += kSquareTerms[piece][square].Hash;
    sum.Scores += kSquareTerms[piece][square].Scores;
  }
  for (const Side side : kSides)
    if (Board.BySide[side] != expected.BySide[side] || PopCount(Pieces(side, kKing)) != 1)
      return false;
  for (int type = kPawn; type <= kKing; ++type)
    if (Board.ByType[type - 1] != expected.ByType[type - 1])
      return false;
  return Board.Sum.Hash == sum.Hash && Board.Sum.Scores == sum.Scores && Board.HalfmoveClock >= 0 &&
         Board.EnPassantSquare <= kNoSquare;
}

void PutPiece(int square, Piece piece) {
  assert(piece != kNoPiece && PieceOn(square) == kNoPiece);
  const SquareTerm &term = kSquareTerms[piece][square];
  Board.BySide[SideOf(piece)] |= Bit(square);
  Board.ByType[TypeOf(piece) - 1] |= Bit(square);
  Board.Squares[square] = piece;
  Board.Sum.Hash += term.Hash;
  Board.Sum.Scores += term.Scores;
}

void RemovePiece(int square) {
  const Piece piece = PieceOn(square);
  assert(piece != kNoPiece);
  const SquareTerm &term = kSquareTerms[piece][square];
  Board.BySide[SideOf(piece)] &= ~Bit(square);
  Board.ByType[TypeOf(piece) - 1] &= ~Bit(square);
  Board.Squares[square] = kNoPiece;
  Board.Sum.Hash -= term.Hash;
  Board.Sum.Scores -= term.Scores;
}

void StartGame(const BoardState &state, Side side, std::int64_t ply) {
  Board = state;
  SideToMove = side;
  GamePly = ply;
}

void EndTurn() {
  SideToMove = Opposite(SideToMove);
  ++GamePly;
}

} // namespace zorvane

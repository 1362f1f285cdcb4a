#include "board/position.h"

#include <cassert>

#include "board/array.h"

namespace zorvane {

BoardState Position;
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
    if (Position.BySide[side] != expected.BySide[side] || PopCount(Pieces(side, kKing)) != 1)
      return false;
  for (int type = kPawn; type <= kKing; ++type)
    if (Position.ByType[type - 1] != expected.ByType[type - 1])
      return false;
  return Position.Sum.Hash == sum.Hash && Position.Sum.Scores == sum.Scores && Position.HalfmoveClock >= 0 &&
         Position.EnPassantSquare <= kNoSquare;
}

void PutPiece(int square, Piece piece) {
  assert(piece != kNoPiece && PieceOn(square) == kNoPiece);
  const SquareTerm &term = kSquareTerms[piece][square];
  Position.BySide[SideOf(piece)] |= Bit(square);
  Position.ByType[TypeOf(piece) - 1] |= Bit(square);
  Position.Board[square] = piece;
  Position.Sum.Hash += term.Hash;
  Position.Sum.Scores += term.Scores;
}

void RemovePiece(int square) {
  const Piece piece = PieceOn(square);
  assert(piece != kNoPiece);
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

void EndTurn() {
  SideToMove = Opposite(SideToMove);
  ++GamePly;
}

} // namespace zorvane

// The one position of the process and its snapshots.
#pragma once

#include <cstdint>

#include "board/array.h"
#include "board/bitboard.h"
#include "board/plies.h"
#include "board/square_terms.h"
#include "board/types.h"

namespace zorvane {

// Castling rights already lost. A rook's bit is set when the rook of that corner moved or was captured; LoadFen sets it
// for each right that is missing, and the king's bit when a side has neither right.
enum MovedFlag : std::uint8_t {
  kWhiteKingMoved = 1,
  kBlackKingMoved = 2,
  kWhiteRookAMoved = 4,
  kWhiteRookHMoved = 8,
  kBlackRookAMoved = 16,
  kBlackRookHMoved = 32
};

// All that making a move changes; the side to move and the game history are not among it. A snapshot is one copy of 160
// bytes, in whole vector registers by the alignment.
struct alignas(32) BoardState {
  Array<Bitboard, 2> BySide;
  Array<Bitboard, kPieceTypes> ByType; // both sides, at PieceType - 1
  Array<Piece, kSquares> Board;        // by square
  SquareTerm Sum;                      // of the terms of all pieces; BoardHash reduces the hash
  std::int32_t HalfmoveClock;          // half-moves since the last capture or pawn move
  std::uint8_t MovedFlags;
  std::uint8_t EnPassantSquare; // where a capturing pawn lands, kNoSquare for none
};

// The one position of the process. Besides this module only MakeMove changes it.
extern BoardState Position;

// Of the game. A search leaves both as they are and hands the side to move down as an argument, so that during a search
// SideToMove is the root's side.
extern Side SideToMove;
extern std::int64_t GamePly; // half-moves since the game began; after LoadFen by the FEN's move number

// Snapshots by ply. SaveState writes them.
extern Array<BoardState, kUndoSlots> UndoStack;

inline Piece PieceOn(int square) { return Position.Board[square]; }
inline Bitboard Occupied() { return Position.BySide[kWhite] | Position.BySide[kBlack]; }
inline Bitboard EnPassantSet() { return Position.EnPassantSquare == kNoSquare ? 0 : Bit(Position.EnPassantSquare); }
inline Bitboard Pieces(PieceType type) { return Position.ByType[type - 1]; }
inline Bitboard Pieces(PieceType first, PieceType second) { return Pieces(first) | Pieces(second); }
inline Bitboard Pieces(Side side, PieceType type) { return Position.BySide[side] & Pieces(type); }
inline Bitboard Pieces(Side side, PieceType first, PieceType second) {
  return Position.BySide[side] & Pieces(first, second);
}

// The polynomial hash of all squares, below 2^31 - 1.
inline std::uint32_t BoardHash() { return ReduceHash(kEmptyBoardHash + Position.Sum.Hash); }

// The sum of PieceSquareTerm, White's minus Black's; and that of MaterialValue, which leaves pawns and kings out, of
// both sides together.
inline int PieceSquareScore() { return UnpackPieceSquare(Position.Sum.Scores); }
inline int MaterialSum() { return UnpackMaterial(Position.Sum.Scores); }

// Puts a piece on an empty square, or takes one off; sums and sets follow.
void PutPiece(int square, Piece piece);
void RemovePiece(int square);

// Puts an earlier or other position on the board; the game's side and ply stay.
inline void SetPosition(const BoardState &state) { Position = state; }

// Copies the position to the slot of a ply in UndoStack, 0 to 12, and back.
inline void SaveState(int ply) { UndoStack[ply] = Position; }
inline void RestoreState(int ply) { SetPosition(UndoStack[ply]); }

// True when the board, its sets by side and type, the sums and the kings agree. Slow; for assertions.
bool PositionIsOk();

// Puts a position on the board, with its side to move and ply of the game. LoadFen begins with an empty board.
void StartGame(const BoardState &state, Side side, std::int64_t ply);

// After a move of the game: the other side is to move, one half-move later.
void EndTurn();

} // namespace zorvane

// The one position of the process and its snapshots.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "board/bitboard.h"
#include "board/plies.h"
#include "board/square_terms.h"
#include "board/types.h"

namespace zorvane {

// Castling rights already lost. A rook's bit is set when the rook of that corner has moved or been captured. LoadFen
// sets it for each missing right, and the king's bit if a side has neither right.
enum MovedFlag : std::uint8_t {
  kWhiteKingMoved = 1,
  kBlackKingMoved = 2,
  kWhiteRookAMoved = 4,
  kWhiteRookHMoved = 8,
  kBlackRookAMoved = 16,
  kBlackRookHMoved = 32
};

// Everything that making a move changes, which excludes the side to move and the game history. A snapshot is one copy
// of 160 bytes; the alignment lets it use whole vector registers.
struct alignas(32) BoardState {
  Array<Bitboard, 2> BySide;
  Array<Bitboard, kPieceTypes> ByType; // both sides, at PieceType - 1
  Array<Piece, kSquares> Squares;      // the piece on each square
  SquareTerm Sum;                      // of the terms of all pieces; the hash is reduced by BoardHash
  std::int32_t HalfmoveClock;          // half-moves since the last capture or pawn move
  std::uint8_t MovedFlags;
  std::uint8_t EnPassantSquare; // where a capturing pawn lands, kNoSquare for none
};

// The one position of the process. Only this module and MakeMove change it.
extern BoardState Board;

// Both belong to the game. A search leaves them alone and passes the side to move down as an argument, so during a
// search SideToMove is the root's side.
extern Side SideToMove;
extern std::int64_t GamePly; // half-moves since the game began; after LoadFen by the FEN's move number

// Snapshots by ply. SaveState writes them.
extern Array<BoardState, kUndoSlots> UndoStack;

inline Piece PieceOn(int square) { return Board.Squares[square]; }
inline Bitboard Occupied() { return Board.BySide[kWhite] | Board.BySide[kBlack]; }
inline Bitboard EnPassantSet() { return Board.EnPassantSquare == kNoSquare ? 0 : Bit(Board.EnPassantSquare); }
inline Bitboard Pieces(PieceType type) { return Board.ByType[type - 1]; }
inline Bitboard Pieces(PieceType first, PieceType second) { return Pieces(first) | Pieces(second); }
inline Bitboard Pieces(Side side, PieceType type) { return Board.BySide[side] & Pieces(type); }
inline Bitboard Pieces(Side side, PieceType first, PieceType second) {
  return Board.BySide[side] & Pieces(first, second);
}

// The polynomial hash of all squares, below 2^31 - 1.
inline std::uint32_t BoardHash() { return ReduceHash(kEmptyBoardHash + Board.Sum.Hash); }

// The sum of PieceSquareTerm, White's minus Black's, and the sum of NonPawnValue over both sides, centipawns.
inline int PieceSquareScore() { return UnpackPieceSquare(Board.Sum.Scores); }
inline int NonPawnMaterial() { return UnpackNonPawn(Board.Sum.Scores); }

// Puts a piece on an empty square or removes one, and updates sets and sums.
void PutPiece(int square, Piece piece);
void RemovePiece(int square);

// Copies the position to the slot of a ply in UndoStack, 0 to 12.
inline void SaveState(int ply) { UndoStack[ply] = Board; }

// Takes moves back by restoring an earlier position, a copy or the slot of a ply. The game's side and ply stay.
inline void RestoreState(const BoardState &saved) { Board = saved; }
inline void RestoreState(int ply) { RestoreState(UndoStack[ply]); }

// True if squares, sets by side and type, sums and kings agree. Slow; for assertions.
bool PositionIsOk();

// Sets the position, its side to move and the ply of the game. LoadFen begins with an empty board.
void StartGame(const BoardState &state, Side side, std::int64_t ply);

// Ends a move of the game: the other side is to move, one half-move later.
void EndTurn();

} // namespace zorvane

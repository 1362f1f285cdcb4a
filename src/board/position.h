// The one position of the process, its snapshots, and FEN as the way in.
#pragma once

#include <array>
#include <cstdint>

#include "board/bitboard.h"
#include "board/square_terms.h"
#include "board/types.h"

namespace zorvane {

// What is lost of castling, one bit each. A corner's bit says that the rook that started there is gone.
enum MovedFlag : std::uint8_t {
  kWhiteKingMoved = 1,
  kBlackKingMoved = 2,
  kWhiteRookAMoved = 4,
  kWhiteRookHMoved = 8,
  kBlackRookAMoved = 16,
  kBlackRookHMoved = 32
};

// All that a move changes. MakeMove keeps every field in step; a snapshot is one copy of 160 bytes.
struct alignas(32) BoardState {
  std::array<Bitboard, 2> BySide;
  std::array<Bitboard, kPieceTypes> ByType; // both sides, at PieceType - 1
  std::array<Piece, kSquares> Board;
  SquareTerm Sum;             // of the terms of all pieces, the hash not reduced
  std::int32_t HalfmoveClock; // half-moves since the last capture or pawn move
  std::uint8_t MovedFlags;
  std::uint8_t EnPassantSquare; // where a capturing pawn lands, kNoSquare for none
};

constexpr int kUndoLevels = 13;

// Written by LoadFen, ApplyUciMove, MakeMove and RestoreState. SideToMove and GamePly do not follow a search,
// which hands the side down as an argument.
extern BoardState Position;
extern Side SideToMove;
extern Side RootSide;        // the side that the next search is for
extern std::int64_t GamePly; // half-moves of the game
extern std::array<BoardState, kUndoLevels> UndoStack;

inline constexpr char StartFen[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

inline Piece PieceOn(int square) { return Position.Board[static_cast<unsigned>(square)]; }
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

// The sum of PlacementTerm, White's minus Black's, and the worth of the rooks, knights, bishops and queens of both.
inline int PlacementScore() { return PlacementOf(Position.Sum.Scores); }
inline int MaterialSum() { return MaterialOf(Position.Sum.Scores); }

// Puts a piece on an empty square, or takes it off; every sum follows.
void PutPiece(int square, Piece piece);
void RemovePiece(int square);

// Copies the position to slot level of UndoStack, 0 to 12, and back.
inline void SaveState(int level) { UndoStack[static_cast<unsigned>(level)] = Position; }
inline void RestoreState(int level) { Position = UndoStack[static_cast<unsigned>(level)]; }

// Takes over the position of a FEN text and starts a new game history with it. False, with nothing changed,
// when the text is no position. Accepts more than chess allows: pawns on the last ranks, any number of pieces,
// a side to move that could take the king.
bool LoadFen(const char *text);

} // namespace zorvane

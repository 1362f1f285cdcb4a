// The small vocabulary of the whole engine: sides, pieces, squares, moves.
#pragma once

#include <cstdint>

namespace zorvane {

using Bitboard = std::uint64_t;

enum Side : int { kWhite, kBlack };

inline constexpr Side kSides[] = {kWhite, kBlack};

constexpr Side Opposite(Side side) { return static_cast<Side>(side ^ 1); }

// Rook before knight: the order of PieceCode, which hosts and the board hash depend on. A host is a program that starts
// the engine with a request file (frontend/request_file.h).
enum PieceType : int { kNoType, kPawn, kRook, kKnight, kBishop, kQueen, kKing };

constexpr int kPieceTypes = 6; // without kNoType

// A piece in four bits: its type, plus 8 for Black; 0 is an empty square.
using Piece = std::uint8_t;

constexpr Piece kNoPiece = 0;
constexpr int kPieceLimit = 16; // size of a table indexed by Piece

constexpr Piece MakePiece(Side side, PieceType type) { return static_cast<Piece>(type | (side << 3)); }
constexpr PieceType TypeOf(Piece piece) { return static_cast<PieceType>(piece & 7); }
// Meaningless for kNoPiece.
constexpr Side SideOf(Piece piece) { return static_cast<Side>(piece >> 3); }

// The number of a piece for hosts and the board hash: 1 to 6 for White, 11 to 16 for Black, 0 for none.
constexpr int PieceCode(Piece piece) { return (piece & 7) + 10 * (piece >> 3); }

// Squares are row * 8 + file; row 0 is the eighth rank, so a8 is 0 and White moves to smaller numbers.
constexpr int kSquares = 64;
constexpr int kNoSquare = 64; // not an index of tables by square

constexpr int MakeSquare(int file, int row) { return row * 8 + file; }
constexpr int FileOf(int square) { return square & 7; }
constexpr int RowOf(int square) { return square >> 3; }

// A move as one number, from * 64 + to, 0 to 4095. Promotion is always to a queen; castling is the king's move of two
// squares.
using PackedMove = std::int16_t;

constexpr PackedMove kNoMove = -1;
constexpr int kPackedMoves = kSquares * kSquares;

constexpr PackedMove PackMove(int from, int to) { return static_cast<PackedMove>(from * kSquares + to); }
constexpr int FromOf(PackedMove move) { return move >> 6; }
constexpr int ToOf(PackedMove move) { return move & (kSquares - 1); }

constexpr int Absolute(int value) { return value < 0 ? -value : value; }

// The Manhattan distance of two squares.
constexpr int ManhattanDistance(int from, int to) {
  return Absolute(FileOf(from) - FileOf(to)) + Absolute(RowOf(from) - RowOf(to));
}
constexpr int kFarthestApart = 14; // from corner to corner

} // namespace zorvane

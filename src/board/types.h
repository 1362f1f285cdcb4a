// The small vocabulary of the whole engine: sides, pieces, squares, moves.
#pragma once

#include <cstdint>

namespace zorvane {

using Bitboard = std::uint64_t;

enum Side : int { kWhite, kBlack };

inline constexpr Side kSides[] = {kWhite, kBlack};

constexpr Side Opposite(Side side) { return static_cast<Side>(side ^ 1); }

// Rook stands before knight, everywhere in the program.
enum PieceType : int { kNoType, kPawn, kRook, kKnight, kBishop, kQueen, kKing };

constexpr int kPieceTypes = 6;

// A piece in four bits: its type, plus 8 for Black; 0 is an empty square.
using Piece = std::uint8_t;

constexpr Piece kNoPiece = 0;
constexpr int kPieceLimit = 16;

constexpr Piece MakePiece(Side side, PieceType type) { return static_cast<Piece>(type | (side << 3)); }
constexpr PieceType TypeOf(Piece piece) { return static_cast<PieceType>(piece & 7); }
constexpr Side SideOf(Piece piece) { return static_cast<Side>(piece >> 3); }

// The number that hosts and hashes know a piece by: 1 to 6 for White, 11 to 16 for Black, 0 for none.
constexpr int PieceCode(Piece piece) { return (piece & 7) + 10 * (piece >> 3); }

// Squares are row * 8 + file; row 0 is the eighth rank, so a8 is 0 and White moves to smaller numbers.
constexpr int kSquares = 64;
constexpr int kNoSquare = 64;

constexpr int MakeSquare(int file, int row) { return row * 8 + file; }
constexpr int FileOf(int square) { return square & 7; }
constexpr int RowOf(int square) { return square >> 3; }

// A move as one number, from * 64 + to, 0 to 4095; promotion is always to a queen, castling is the king's step.
using PackedMove = std::int16_t;

constexpr PackedMove kNoMove = -1;
constexpr int kPackedMoves = 4096;

constexpr PackedMove PackMove(int from, int to) { return static_cast<PackedMove>(from * 64 + to); }
constexpr int FromOf(PackedMove move) { return move >> 6; }
constexpr int ToOf(PackedMove move) { return move & 63; }

constexpr int Absolute(int value) { return value < 0 ? -value : value; }

// Steps between two squares by file and row, the Manhattan distance, and the most that they can be.
constexpr int Distance(int from, int to) {
  return Absolute(FileOf(from) - FileOf(to)) + Absolute(RowOf(from) - RowOf(to));
}
constexpr int kFarthestApart = 14;

} // namespace zorvane

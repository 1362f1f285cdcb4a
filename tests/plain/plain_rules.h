// The plain counterpart of the board: the same answers by the shortest road, with no code of the engine. A mailbox of
// ints, every square looked at, positions compared as texts, everything worked out afresh.
#pragma once

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

namespace plain {

enum Type { kPawn = 1, kRook, kKnight, kBishop, kQueen, kKing };

// A bounds-tested array addressed by int.
template <class T, size_t n> struct Row : std::array<T, n> {
  T &operator[](int i) { return this->at(static_cast<size_t>(i)); }
};

struct Square {
  int X = -1; // file, 0 is a
  int Y = -1; // row, 0 is the eighth rank
  bool operator==(const Square &) const = default;
};

struct Move {
  Square From;
  Square To;
  bool operator==(const Move &) const = default;
};

// Sides are 1 White, 2 Black and 0 for no piece.
struct BoardState {
  int Board[8][8] = {}; // [file][row]; 0 empty, 1 to 6 white PRNBQK, 11 to 16 black
  int Moved[6] = {};    // white king, black king, white rook a, h, black rook a, h
  Square EnPassant;
  int Clock = 0; // half-moves since the last pawn move or capture
  bool operator==(const BoardState &) const = default;
};

extern BoardState Position;
extern const std::vector<Square> kSquares; // row by row, the order of every walk over the board

inline int &At(Square s) { return Position.Board[s.X][s.Y]; }
inline Square operator+(Square a, Square b) { return {a.X + b.X, a.Y + b.Y}; }
inline bool OnBoard(Square s) { return s.X >= 0 && s.X < 8 && s.Y >= 0 && s.Y < 8; }
inline int Distance(Square a, Square b) { return std::abs(a.X - b.X) + std::abs(a.Y - b.Y); }
inline int PieceSide(int code) { return code == 0 ? 0 : code < 11 ? 1 : 2; }
inline int PieceType(int code) { return code < 11 ? code : code - 10; }
inline int Code(int side, int type) { return side == 1 ? type : type + 10; }
inline int Forward(int side) { return side == 1 ? -1 : 1; }
inline bool IsOfficer(int code) { return PieceType(code) >= kRook && PieceType(code) <= kQueen; }
inline bool IsMinor(int code) { return PieceType(code) == kKnight || PieceType(code) == kBishop; }
inline bool IsPromotion(Move m) { return PieceType(At(m.From)) == kPawn && (m.To.Y == 0 || m.To.Y == 7); }

// The mover is the side of the piece on the from-square, whoever is to move.
Square Direction(Square from, Square to);
bool IsClear(Square from, Square to);
bool IsEnPassant(Move m);
bool IsCapture(Move m);
bool PieceAttacksSquare(Move m);
bool IsSquareAttacked(Square s, int bySide);
Square FindKing(int side);
bool IsInCheck(int side);
bool IsPseudoLegalMove(Move m);
bool IsLegalMove(Move m);
void MakeMove(Move m);
bool MoveGivesCheck(Move m);
std::vector<Move> LegalMoves(int side);

// The identity of the position as text, and its hash.
std::string PositionKey(int side);
long long BoardHash();

} // namespace plain

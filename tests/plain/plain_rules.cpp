#include "plain_rules.h"

#include <algorithm>
#include <utility>

namespace plain {

BoardState Position;

const std::vector<Square> kSquares = [] {
  std::vector<Square> squares;
  squares.reserve(64);
  for (int i = 0; i < 64; ++i)
    squares.push_back({i % 8, i / 8});
  return squares;
}();

Square Direction(Square from, Square to) {
  const auto sign = [](int v) { return (v > 0) - (v < 0); };
  return {sign(to.X - from.X), sign(to.Y - from.Y)};
}

// Are the squares strictly between the ends of a straight or diagonal line empty?
bool IsClear(Square from, Square to) {
  const Square step = Direction(from, to);
  for (Square s = from + step; s != to; s = s + step)
    if (At(s) != 0)
      return false;
  return true;
}

bool IsEnPassant(Move m) {
  return PieceType(At(m.From)) == kPawn && At(m.To) == 0 && m.From.X != m.To.X && m.To == Position.EnPassant;
}

bool IsCapture(Move m) { return At(m.To) != 0 || IsEnPassant(m); }

bool PieceAttacksSquare(Move m) {
  const int type = PieceType(At(m.From));
  const int dx = std::abs(m.To.X - m.From.X);
  const int dy = std::abs(m.To.Y - m.From.Y);
  if (type == kPawn)
    return dx == 1 && m.To.Y - m.From.Y == Forward(PieceSide(At(m.From)));
  if (type == kKnight)
    return dx * dy == 2;
  if (type == kKing)
    return std::max(dx, dy) == 1;
  const bool straight = (dx == 0) != (dy == 0) && (type == kRook || type == kQueen);
  const bool diagonal = dx == dy && dx != 0 && (type == kBishop || type == kQueen);
  return (straight || diagonal) && IsClear(m.From, m.To);
}

bool IsSquareAttacked(Square s, int bySide) {
  return std::any_of(kSquares.begin(), kSquares.end(), [&](Square from) {
    return PieceSide(At(from)) == bySide && PieceAttacksSquare({from, s});
  });
}

Square FindKing(int side) {
  const auto found =
      std::find_if(kSquares.begin(), kSquares.end(), [&](Square s) { return At(s) == Code(side, kKing); });
  return found == kSquares.end() ? Square{} : *found;
}

bool IsInCheck(int side) {
  const Square king = FindKing(side);
  return OnBoard(king) && IsSquareAttacked(king, 3 - side);
}

static bool CanCastle(Move m) {
  const int side = PieceSide(At(m.From));
  const int row = side == 1 ? 7 : 0;
  const bool wing = m.To.X == 6; // the king's
  const Square corner = {wing ? 7 : 0, row};
  const Square crossed = {wing ? 5 : 3, row};
  return PieceType(At(m.From)) == kKing && m.From == Square{4, row} &&
         (m.To == Square{6, row} || m.To == Square{2, row}) && !Position.Moved[side - 1] &&
         !Position.Moved[2 * side + wing] && At(corner) == Code(side, kRook) && IsClear(m.From, corner) &&
         !IsSquareAttacked(m.From, 3 - side) && !IsSquareAttacked(crossed, 3 - side) &&
         !IsSquareAttacked(m.To, 3 - side);
}

static bool IsPseudoLegalPawnMove(Move m) {
  const int side = PieceSide(At(m.From));
  const int dy = m.To.Y - m.From.Y;
  if (PieceAttacksSquare(m))
    return At(m.To) != 0 || (m.To == Position.EnPassant && At({m.To.X, m.From.Y}) == Code(3 - side, kPawn));
  const bool first = m.From.Y == (side == 1 ? 6 : 1);
  return m.To.X == m.From.X && At(m.To) == 0 &&
         (dy == Forward(side) || (first && dy == 2 * Forward(side) && IsClear(m.From, m.To)));
}

bool IsPseudoLegalMove(Move m) {
  const int piece = At(m.From);
  if (piece == 0 || PieceSide(piece) == PieceSide(At(m.To)) || PieceType(At(m.To)) == kKing)
    return false;
  return PieceType(piece) == kPawn ? IsPseudoLegalPawnMove(m) : PieceAttacksSquare(m) || CanCastle(m);
}

// Moves the men, a castling rook too, without promotion. Returns what was taken.
static int MoveMen(Move m) {
  int captured = At(m.To);
  if (IsEnPassant(m))
    std::swap(captured, At({m.To.X, m.From.Y}));
  At(m.To) = At(m.From);
  At(m.From) = 0;
  if (PieceType(At(m.To)) == kKing && std::abs(m.To.X - m.From.X) == 2) {
    const bool wing = m.To.X > m.From.X;
    std::swap(At({wing ? 7 : 0, m.From.Y}), At({wing ? 5 : 3, m.From.Y}));
  }
  return captured;
}

bool IsLegalMove(Move m) {
  if (!IsPseudoLegalMove(m))
    return false;
  const BoardState before = Position;
  const int side = PieceSide(At(m.From));
  MoveMen(m);
  const bool exposed = IsInCheck(side);
  Position = before;
  return !exposed;
}

// A rook of this code left its square or was taken on it.
static void MarkRook(int code, Square s) {
  const Square corners[] = {{0, 7}, {7, 7}, {0, 0}, {7, 0}};
  for (int i = 0; i < 4; ++i)
    if (s == corners[i] && code == Code(i < 2 ? 1 : 2, kRook))
      Position.Moved[2 + i] = 1;
}

void MakeMove(Move m) {
  const int piece = At(m.From);
  const bool promotes = IsPromotion(m);
  const int captured = MoveMen(m);
  const bool pawn = PieceType(piece) == kPawn;
  Position.Clock = pawn || captured != 0 ? 0 : Position.Clock + 1;
  if (PieceType(piece) == kKing)
    Position.Moved[PieceSide(piece) - 1] = 1;
  MarkRook(piece, m.From);
  MarkRook(captured, m.To);
  const bool doubleStep = pawn && std::abs(m.To.Y - m.From.Y) == 2;
  Position.EnPassant = doubleStep ? Square{m.From.X, (m.From.Y + m.To.Y) / 2} : Square{};
  if (promotes)
    At(m.To) = Code(PieceSide(piece), kQueen);
}

bool MoveGivesCheck(Move m) {
  const BoardState before = Position;
  const int side = PieceSide(At(m.From));
  MakeMove(m);
  const bool check = IsInCheck(3 - side);
  Position = before;
  return check;
}

std::vector<Move> LegalMoves(int side) {
  std::vector<Move> moves;
  for (const Square from : kSquares) {
    if (PieceSide(At(from)) != side)
      continue;
    for (const Square to : kSquares)
      if (IsLegalMove({from, to}))
        moves.push_back({from, to});
  }
  return moves;
}

// The target counts only when a pawn of `side` can really capture on it.
static std::string EnPassantKeyText(int side) {
  const Square to = Position.EnPassant;
  for (const int dx : {-1, 1}) {
    const Square from = {to.X + dx, to.Y - Forward(side)};
    if (to.X >= 0 && OnBoard(from) && At(from) == Code(side, kPawn) && IsLegalMove({from, to}))
      return std::to_string(to.X) + "," + std::to_string(to.Y);
  }
  return "-";
}

std::string PositionKey(int side) {
  std::string key;
  for (const Square s : kSquares)
    key += std::to_string(At(s)) + ",";
  key += "P" + std::to_string(side) + "K";
  for (int i = 0; i < 6; ++i)
    key += (i == 2 ? "R" : "") + std::to_string(Position.Moved[i]);
  return key + "E" + EnPassantKeyText(side);
}

long long BoardHash() {
  long long hash = 0;
  for (const Square s : kSquares)
    hash = (hash * 131 + At(s) + 1) % 2147483647;
  return hash;
}

} // namespace plain

#include "plain_predicates.h"

#include <algorithm>

namespace plain {

bool IsInsufficientMaterial() {
  int minors[3] = {};
  int bishops[2] = {}; // by the colour of the square
  for (const Square s : kSquares) {
    const int type = PieceType(At(s));
    if (type == kPawn || type == kRook || type == kQueen)
      return false;
    minors[PieceSide(At(s))] += IsMinor(At(s));
    bishops[(s.X + s.Y) % 2] += type == kBishop;
  }
  return minors[1] + minors[2] <= 1 || (minors[1] == 1 && minors[2] == 1 && std::max(bishops[0], bishops[1]) == 2);
}

bool MayDiscoverCheck(Square s, Square king, int side) {
  const int dx = std::abs(s.X - king.X);
  const int dy = std::abs(s.Y - king.Y);
  const bool straight = (dx == 0) != (dy == 0);
  if ((!straight && (dx != dy || dx == 0)) || !IsClear(king, s))
    return false;
  const Square step = Direction(king, s);
  Square behind = s + step;
  while (OnBoard(behind) && At(behind) == 0)
    behind = behind + step;
  const int type = OnBoard(behind) && PieceSide(At(behind)) == side ? PieceType(At(behind)) : 0;
  return type == kQueen || type == (straight ? kRook : kBishop);
}

bool IsPawnForkSquare(int side, Square s) {
  const auto isEnemy = [&](Square t) { return OnBoard(t) && IsOfficer(At(t)) && PieceSide(At(t)) == 3 - side; };
  return isEnemy(s + Square{-1, Forward(side)}) && isEnemy(s + Square{1, Forward(side)});
}

bool HasPawnForkPush(int side) {
  const std::vector<Move> moves = LegalMoves(side);
  return std::any_of(moves.begin(), moves.end(), [&](Move m) {
    return PieceType(At(m.From)) == kPawn && m.From.Y >= 1 && m.From.Y <= 6 && m.From.X == m.To.X &&
           IsPawnForkSquare(side, m.To);
  });
}

bool HasFreshKnightFork(int side, const BoardState &before) {
  const int knight = Code(side, kKnight);
  for (const Square from : kSquares) {
    if (At(from) != knight || before.Board[from.X][from.Y] == knight)
      continue;
    int forked = 0;
    bool heavy = false;
    for (const Square to : kSquares) {
      if (IsOfficer(At(to)) && IsLegalMove({from, to})) {
        ++forked;
        heavy = heavy || !IsMinor(At(to));
      }
    }
    if (forked >= 2 && heavy)
      return true;
  }
  return false;
}

Square FindQueenTarget(int side) {
  const auto queen =
      std::find_if(kSquares.rbegin(), kSquares.rend(), [&](Square s) { return At(s) == Code(side, kQueen); });
  if (queen == kSquares.rend())
    return {};
  const auto target = std::find_if(kSquares.begin(), kSquares.end(), [&](Square s) {
    return IsMinor(At(s)) && IsLegalMove({*queen, s});
  });
  return target == kSquares.end() ? Square{} : *target;
}

static int PieceValue(int code) {
  constexpr int kValues[] = {0, 100, 500, 320, 330, 900, 1000};
  return kValues[PieceType(code)];
}

// Falling scores; of equal ones the earlier stays ahead. A full list takes no further move.
static void Insert(std::vector<ScoredMove> &list, ScoredMove entry) {
  const auto place = std::find_if(list.begin(), list.end(), [&](const ScoredMove &e) { return e.Score < entry.Score; });
  if (list.size() < 256)
    list.insert(place, entry);
}

static int CaptureScore(Move m) { return 100 * PieceValue(IsEnPassant(m) ? kPawn : At(m.To)) - PieceValue(At(m.From)); }

LevelLists GenerateMoves(int side, const std::function<int(Move)> &history) {
  LevelLists lists;
  std::vector<Move> checks;
  for (const Move m : LegalMoves(side))
    if (IsCapture(m))
      Insert(lists.Captures, {m, CaptureScore(m)});
    else if (MoveGivesCheck(m))
      checks.push_back(m);
    else
      Insert(lists.Quiets, {m, history(m)});
  for (const Move m : checks)
    Insert(lists.Captures, {m, -1000000});
  return lists;
}

} // namespace plain

#include "plain_quiescence.h"

#include <algorithm>

#include "plain_evaluation.h"
#include "plain_predicates.h"

namespace plain {

SearchLine Line;

int CountRepetitions(int side, int ply) {
  const std::string key = PositionKey(side);
  Line.PathKeys[ply] = key;
  auto count = std::count(Line.GameHistory.begin(), Line.GameHistory.end(), key);
  for (int i = 1; i < ply; ++i)
    count += Line.PathKeys[i] == key;
  return static_cast<int>(count);
}

namespace {

constexpr int kInfinite = 1000000;
constexpr int kMateBase = 900000;
constexpr int kBudget = 32;  // quiet line nodes up to which new quiet checks are played
constexpr int kNodeCap = 64; // nodes of a kind of line from which further ones work with depth 1

// Nodes of this tree, on lines with and without a quiet tactical move, and such moves on the running line.
int QuietLineNodes;
int PlainLineNodes;
int QuietLineDepth;

int StartScore(int side) { return side == 1 ? -kInfinite : kInfinite; }

// Score of a side without a legal move.
int NoMoveScore(int side, int ply) {
  const int mated = side == 1 ? ply - kMateBase : kMateBase - ply;
  return IsInCheck(side) ? mated : 0;
}

// Takes a score into `best` and the window; true when the window has closed.
bool Improve(int side, int score, int &best, int &alpha, int &beta) {
  best = side == 1 ? std::max(best, score) : std::min(best, score);
  alpha = side == 1 ? std::max(alpha, best) : alpha;
  beta = side == 2 ? std::min(beta, best) : beta;
  return alpha >= beta;
}

enum class Kind { kNone, kOrdinary, kQuietCheck, kForkPush, kBishopMove };

struct Node {
  // Given by the parent; Depth and ForcedReply change at the node.
  int Side;
  int Depth;
  int Ply;
  int Alpha;
  int Beta;
  int QuietCredit;
  int ForcedReply;
  int FloorPlies;
  // Worked out at the node.
  bool InCheck = false;
  int ExtraChecks = 0; // quiet checks still allowed beyond the budget
  int BishopMoves = 0;
  int Pass = 0;
  Square Target = {}; // of the bishop manoeuvre
  Square EnemyKing = {};

  bool Forced() const { return InCheck || ForcedReply != 0; }
};

// Forks that the enemy threatens or has just set up: they forbid to stand pat.
void LookForThreats(Node &n) {
  const int enemy = 3 - n.Side;
  if (n.Forced() || n.Ply >= 8 || n.Depth < 2)
    return;
  if (n.QuietCredit >= 2 && QuietLineNodes < kBudget && HasPawnForkPush(enemy))
    n.ForcedReply = 2;
  else if (n.Ply >= 2 && n.QuietCredit == 3 && n.Ply == Line.CurrentDepth &&
           HasFreshKnightFork(enemy, Line.Undo[n.Ply - 1]))
    n.ForcedReply = 1;
}

void SetAllowances(Node &n) {
  const bool behindQuietMove = n.Ply == Line.CurrentDepth + 2 && QuietLineDepth > 0;
  if (n.Forced())
    return;
  if (n.QuietCredit == 3 && n.Ply == Line.CurrentDepth)
    n.ExtraChecks = 2;
  if (n.QuietCredit == 2 && n.Ply < 9 && behindQuietMove && QuietLineNodes >= kBudget)
    n.ExtraChecks = 1;
  if (n.QuietCredit >= 2 && n.Ply < 7 && behindQuietMove && (n.Depth >= 2 || n.FloorPlies > 0))
    n.Target = FindQueenTarget(n.Side);
}

// Does the bishop, after the move, bear on a target that it did not bear on before?
bool IsBishopManoeuvre(const Node &n, Move m) {
  if (!OnBoard(n.Target) || n.BishopMoves >= 2 || PieceAttacksSquare({m.From, n.Target}))
    return false;
  const BoardState before = Position;
  MakeMove(m);
  const bool bears = IsLegalMove({m.To, n.Target});
  Position = before;
  return bears;
}

// Misses promotions and castlings that give check only by the new queen or the rook.
bool PassesCheckFilter(const Node &n, Move m) {
  const int type = PieceType(At(m.From));
  const int dx = std::abs(m.To.X - n.EnemyKing.X);
  const int dy = std::abs(m.To.Y - n.EnemyKing.Y);
  return ((type == kRook || type == kQueen) && (dx == 0 || dy == 0)) ||
         ((type == kBishop || type == kQueen) && dx == dy) || (type == kKnight && dx * dy == 2) ||
         (type == kPawn && dx == 1 && n.EnemyKing.Y == m.To.Y + Forward(n.Side)) ||
         MayDiscoverCheck(m.From, n.EnemyKing, n.Side);
}

bool GivesCheck(const Node &n, Move m) { return n.Ply < 10 && PassesCheckFilter(n, m) && MoveGivesCheck(m); }

// What a legal move is to this node in its present pass.
Kind KindOfMove(const Node &n, Move m) {
  const int type = PieceType(At(m.From));
  const bool takes = At(m.To) != 0;
  const bool retakes = takes && PieceSide(Line.Undo[n.Ply - 1].Board[m.To.X][m.To.Y]) == n.Side;
  const bool pawnExtra = type == kPawn && (IsPromotion(m) || m.To == Position.EnPassant);
  if (n.Forced() || retakes || ((takes || pawnExtra) && n.Depth > 0))
    return n.Pass == 0 ? Kind::kOrdinary : Kind::kNone;
  if (n.Pass == 1) {
    const bool mayCheck = n.QuietCredit > 0 && (QuietLineNodes < kBudget || n.ExtraChecks > 0);
    return !takes && mayCheck && GivesCheck(n, m) ? Kind::kQuietCheck : Kind::kNone;
  }
  if (takes)
    return GivesCheck(n, m) ? Kind::kOrdinary : Kind::kNone;
  if (type == kPawn && m.To.X == m.From.X && n.QuietCredit > 0 && n.Depth > 0 && n.Ply < 9 &&
      IsPawnForkSquare(n.Side, m.To))
    return Kind::kForkPush;
  return type == kBishop && IsBishopManoeuvre(n, m) ? Kind::kBishopMove : Kind::kNone;
}

int SearchNode(Node n);

int SearchMove(Node &n, Move m, Kind kind) {
  const bool quiet = kind != Kind::kOrdinary;
  const bool overBudget = kind == Kind::kQuietCheck && QuietLineNodes >= kBudget;
  const bool keepsFloor = overBudget || kind == Kind::kBishopMove;
  const int cost = quiet || n.ForcedReply == 2 ? 1 : 0;
  n.ExtraChecks -= overBudget;
  n.BishopMoves += kind == Kind::kBishopMove;
  QuietLineDepth += quiet;
  Line.Undo[n.Ply] = Position;
  MakeMove(m);
  const int score = SearchNode({3 - n.Side, quiet ? n.Depth + 1 : n.Depth - 1, n.Ply + 1, n.Alpha, n.Beta,
                                n.QuietCredit - cost, kind == Kind::kForkPush || kind == Kind::kBishopMove,
                                keepsFloor ? 2 : std::max(n.FloorPlies - 1, 0)});
  Position = Line.Undo[n.Ply];
  QuietLineDepth -= quiet;
  return score;
}

int SearchMoves(Node &n, const std::vector<Move> &moves) {
  int best = StartScore(n.Side);
  if (!n.Forced() && Improve(n.Side, ComputeEvaluation(), best, n.Alpha, n.Beta))
    return best;
  for (n.Pass = 0; n.Pass <= (n.Forced() ? 0 : 1); ++n.Pass) {
    const bool spent = QuietLineNodes >= kBudget && n.ExtraChecks <= 0;
    if (n.Pass == 1 && (n.QuietCredit <= 0 || n.Ply >= 10 || spent))
      break;
    for (const Move m : moves) {
      const Kind kind = KindOfMove(n, m);
      if (kind != Kind::kNone && Improve(n.Side, SearchMove(n, m, kind), best, n.Alpha, n.Beta))
        return best;
    }
  }
  return best;
}

int SearchNode(Node n) {
  if (CountRepetitions(n.Side, n.Ply) >= 2 && !LegalMoves(n.Side).empty())
    return 0;
  n.Depth = std::min(11 - n.Ply, n.Depth);
  n.InCheck = IsInCheck(n.Side);
  n.EnemyKing = FindKing(3 - n.Side);
  LookForThreats(n);
  SetAllowances(n);
  const std::vector<Move> moves = LegalMoves(n.Side);
  if (moves.empty())
    return NoMoveScore(n.Side, n.Ply);
  int &counter = QuietLineDepth > 0 ? QuietLineNodes : PlainLineNodes;
  if (counter++ >= kNodeCap)
    n.Depth = std::min(n.Depth, 1);
  ++Line.Nodes;
  if (Position.Clock >= 100 || IsInsufficientMaterial())
    return 0;
  if (n.Ply >= 11)
    return ComputeEvaluation();
  if (n.FloorPlies > 0 || n.InCheck)
    n.Depth = std::max(n.Depth, 1);
  return SearchMoves(n, moves);
}

} // namespace

int EnterQuiescence(int side, int ply, int alpha, int beta) {
  PlainLineNodes = QuietLineNodes = QuietLineDepth = 0;
  return SearchNode({side, 4, ply, alpha, beta, 3, 0, 0});
}

} // namespace plain

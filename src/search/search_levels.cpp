#include "search/search_levels.h"

#include <algorithm>
#include <cassert>

#include "base/array.h"
#include "board/draw_rules.h"
#include "quiescence/quiescence_search.h"
#include "search/best_line.h"
#include "search/killers_history.h"
#include "search/move_lists.h"
#include "tree/node_count.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kFirstLevel = 1;

// In this iteration the levels neither read nor change the table: their first moves come from the last best line alone.
// It gains nothing and is part of the fixed tree. The root and evaluations use the table as always.
constexpr int kIterationWithoutTable = 3;

// The locals of a node.
struct LevelNode {
  int Ply;
  int Depth; // of the iteration
  int Alpha;
  int Beta;
  ScoreRange Range; // what the callers can tell apart of the node's score
  int Best;
  bool Searched;
  PackedMove FirstMove; // kNoMove for none
};

template <Side Us> int SearchLevel(int ply, int depth, int alpha, int beta, ScoreRange range);

bool IsTableInUse(int depth) { return depth != kIterationWithoutTable; }

void StoreBestMove(const LevelNode &node) {
  if (IsTableInUse(node.Depth))
    StoreTransposition(node.Ply, FirstOfLine(node.Ply));
}

// The move to try first: that of the last iteration's best line, or else the table's. The table is probed in any case,
// since that prepares the node's store.
PackedMove ChooseFirstMove(Side side, int ply, int depth) {
  const PackedMove remembered = IsTableInUse(depth) ? ProbeTransposition(side, ply) : kNoMove;
  const PackedMove onLine = KeptMove(side, ply);
  return onLine != kNoMove ? onLine : remembered;
}

// For White: a child's score at or below the best so far has no effect, so Best is the floor. It is not raised to the
// node's own floor: callers cannot tell scores below that apart, but such scores choose this node's best line and its
// move for the table. Any score at or above the node's ceiling cuts at once. For Black it is the other way round.
template <Side Us> ScoreRange ChildRange(const LevelNode &node) {
  if constexpr (Us == kWhite)
    return {node.Best, node.Range.Ceiling};
  else
    return {node.Range.Floor, node.Best};
}

// Searches one legal move and updates the node with its score; true if the node is cut or the search stopped.
template <Side Us> bool SearchMove(LevelNode &node, PackedMove move) {
  const int from = FromOf(move);
  const int to = ToOf(move);

  // Make the move, search, take it back.
  CountNode();
  MakeMove<Us>(from, to);
  const int score = SearchLevel<Opposite(Us)>(node.Ply + 1, node.Depth, node.Alpha, node.Beta, ChildRange<Us>(node));
  RestoreState(node.Ply);
  if (SearchAborted)
    return true;

  // A better score makes the best line and moves the window.
  if (Us == kWhite ? score > node.Best : score < node.Best) {
    StoreLine(Us, node.Ply, from, to);
    node.Best = score;
  }
  if constexpr (Us == kWhite)
    node.Alpha = std::max(node.Alpha, node.Best);
  else
    node.Beta = std::min(node.Beta, node.Best);
  node.Searched = true;
  if (node.Alpha < node.Beta)
    return false;

  // A cut: quiet moves that caused one are tried earlier elsewhere.
  if (!IsCaptureMove(from, to)) {
    StoreKiller(node.Ply, move);
    AddHistory(Us, node.Ply, move);
  }
  StoreBestMove(node);
  return true;
}

// A killer comes from another position: it is tried if it is legal here and not among the captures and checks.
template <Side Us> bool IsKillerToTry(const LevelNode &node, PackedMove killer) {
  return killer != kNoMove && killer != node.FirstMove && !IsInCaptureList(node.Ply, killer) &&
         IsLegalMoveFor(Us, killer);
}

// Tries the moves in stages: first move, captures and quiet checks, killers, other quiet moves. True if the node is cut
// or the search stopped.
template <Side Us> bool SearchMoves(LevelNode &node) {
  const auto search = [&node](PackedMove move) { return SearchMove<Us>(node, move); };
  const LevelMoveList &captures = CaptureList[node.Ply];
  const QuietMoveList &quiets = QuietList[node.Ply];
  const Array<PackedMove, 2> &killers = KillerTable[node.Ply];

  if (node.FirstMove != kNoMove && search(node.FirstMove))
    return true;
  for (int i = 0; i < captures.Count; ++i) {
    const PackedMove move = captures.Moves[i].Move;
    if (move != node.FirstMove && search(move))
      return true;
  }
  for (const PackedMove killer : killers)
    if (IsKillerToTry<Us>(node, killer) && search(killer))
      return true;
  QuietKey key = 0;
  for (int i = 0; i < quiets.Count; ++i) {
    key = NextQuietKey(quiets, key);
    const PackedMove move = MoveOf(key);
    if (move != node.FirstMove && move != killers[0] && move != killers[1] && search(move))
      return true;
  }
  return false;
}

template <Side Us> int ScoreWithoutMoves(int ply) { return IsInCheck(Us) ? MatedScore(Us, ply) : 0; }

template <Side Us> int SearchLevel(int ply, int depth, int alpha, int beta, ScoreRange range) {
  assert(ply >= kFirstLevel && ply <= kSearchPlies && alpha < beta && PositionIsOk());

  // 1. Beyond full width, quiescence checks for stops, repetitions, the fifty-move rule and material itself.
  ClearLine(ply);
  if (depth <= ply)
    return EnterQuiescence<Us>(ply, alpha, beta, range);

  // 2. Stops and draws.
  if (PollStop() || IsRepetitionDraw(Us, ply))
    return 0;
  if (IsMaterialOrClockDraw())
    return HasLegalMove(Us) ? 0 : ScoreWithoutMoves<Us>(ply);

  // 3. Generate moves. Their history scores are those of this moment, before anything below is searched.
  GenerateMoves<Us>(ply);
  LevelNode node{
      ply, depth, alpha, beta, range, Us == kWhite ? -kInfinity : kInfinity, false, ChooseFirstMove(Us, ply, depth)};

  // 4. Search them until one cuts.
  SaveState(ply);
  if (SearchMoves<Us>(node))
    return node.Best;
  if (!node.Searched)
    return ScoreWithoutMoves<Us>(ply);
  StoreBestMove(node);
  return node.Best;
}

} // namespace

int SearchLevels(Side side, int depth, int alpha, int beta) {
  return side == kWhite ? SearchLevel<kWhite>(kFirstLevel, depth, alpha, beta, kAllScores)
                        : SearchLevel<kBlack>(kFirstLevel, depth, alpha, beta, kAllScores);
}

} // namespace zorvane

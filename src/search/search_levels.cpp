#include "search/search_levels.h"

#include <algorithm>
#include <cassert>

#include "board/array.h"
#include "board/draw_rules.h"
#include "quiescence/killers_history.h"
#include "quiescence/move_lists.h"
#include "quiescence/quiescence_search.h"
#include "search/best_line.h"
#include "search/search_state.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kFirstLevel = 1;

// In this iteration the levels neither ask nor change the table: their first moves come from the last best line alone.
// It is so by definition of the tree; the root and evaluations use the table as ever.
constexpr int kIterationWithoutTable = 3;

// The locals of a node.
struct LevelNode {
  int Ply;
  int Alpha;
  int Beta;
  ScoreRange Range; // what the callers can tell apart of the node's score
  int Best;
  bool Searched;
  PackedMove FirstMove; // kNoMove for none
};

enum class Outcome { kGoOn, kFinished };

template <Side Us> int SearchLevel(int ply, int alpha, int beta, ScoreRange range);

bool IsTableInUse() { return CurrentDepth != kIterationWithoutTable; }

void StoreBestMove(int ply) {
  if (IsTableInUse())
    StoreTransposition(ply, PvBestMove(ply));
}

// The move to try first: that of the last iteration's best line, else the table's. The table is probed in either case,
// as that prepares the node's store.
PackedMove ProbeHashMove(int ply, Side side) {
  const PackedMove remembered = IsTableInUse() ? ProbeTransposition(ply, side) : kNoMove;
  const PackedMove onLine = PvMoveAtPly(ply, side);
  return onLine != kNoMove ? onLine : remembered;
}

// For White: a child's score at or below the best so far leaves no trace, so Best is the floor. It is not raised to the
// node's own floor: the callers cannot tell scores below that apart, but such scores choose this node's best line and
// its move for the table. From the node's ceiling on, any score cuts at once. For Black the other way round.
template <Side Us> ScoreRange ChildRange(const LevelNode &node) {
  if constexpr (Us == kWhite)
    return {node.Best, node.Range.Ceiling};
  else
    return {node.Range.Floor, node.Best};
}

// Searches one legal move and takes its score in. Finished when the node is cut or the search stopped.
template <Side Us> Outcome SearchMove(LevelNode &node, PackedMove move) {
  const int from = FromOf(move);
  const int to = ToOf(move);

  // Make the move, search, take it back.
  CountNode();
  MakeMoveOf<Us>(from, to);
  const int score = SearchLevel<Opposite(Us)>(node.Ply + 1, node.Alpha, node.Beta, ChildRange<Us>(node));
  RestoreState(node.Ply);
  if (SearchAborted)
    return Outcome::kFinished;

  // A better score makes the best line and moves the window.
  if (Us == kWhite ? score > node.Best : score < node.Best) {
    PvStore(node.Ply, Us, from, to);
    node.Best = score;
  }
  if constexpr (Us == kWhite)
    node.Alpha = std::max(node.Alpha, node.Best);
  else
    node.Beta = std::min(node.Beta, node.Best);
  node.Searched = true;
  if (node.Alpha < node.Beta)
    return Outcome::kGoOn;

  // A cut: quiet moves that caused one are tried earlier elsewhere.
  if (!IsCaptureMove(from, to)) {
    StoreKiller(node.Ply, move);
    AddHistory(Us, node.Ply, move);
  }
  StoreBestMove(node.Ply);
  return Outcome::kFinished;
}

// A killer comes from another position: it has its turn when it is legal here and not among the captures and checks.
template <Side Us> bool IsKillerToTry(const LevelNode &node, PackedMove killer) {
  return killer != kNoMove && killer != node.FirstMove && !IsInCaptureList(node.Ply, killer) &&
         IsLegalMoveOf(Us, killer);
}

// Walks the stages: first move, captures and quiet checks, killers, other quiet moves.
template <Side Us> Outcome SearchMoves(LevelNode &node) {
  const auto search = [&node](PackedMove move) { return SearchMove<Us>(node, move) == Outcome::kFinished; };
  const LevelMoveList &captures = CaptureList[node.Ply];
  LevelMoveList &quiets = QuietList[node.Ply];
  const Array<PackedMove, 2> &killers = KillerTable[node.Ply];

  if (node.FirstMove != kNoMove && search(node.FirstMove))
    return Outcome::kFinished;
  for (int i = 0; i < captures.Count; ++i) {
    const PackedMove move = captures.Moves[i].Move;
    if (move != node.FirstMove && search(move))
      return Outcome::kFinished;
  }
  for (const PackedMove killer : killers)
    if (IsKillerToTry<Us>(node, killer) && search(killer))
      return Outcome::kFinished;
  for (int i = 0; i < quiets.Count; ++i) {
    const PackedMove move = NextQuietMove(quiets, i);
    if (move != node.FirstMove && move != killers[0] && move != killers[1] && search(move))
      return Outcome::kFinished;
  }
  return Outcome::kGoOn;
}

template <Side Us> int ScoreWithoutMoves(int ply) { return IsInCheck(Us) ? MatedScore(Us, ply) : 0; }

template <Side Us> int SearchLevel(int ply, int alpha, int beta, ScoreRange range) {
  assert(ply >= kFirstLevel && ply <= kSearchPlies && alpha < beta && PositionIsOk());

  // 1. Where full width ends, quiescence takes care of stops, repetitions, the fifty-move rule and material.
  PvClearFrom(ply);
  if (CurrentDepth <= ply)
    return EnterQuiescence<Us>(ply, alpha, beta, range);

  // 2. Stops and draws.
  if (PollStop() || IsRepetitionDraw(Us, ply))
    return 0;
  if (IsMaterialOrClockDraw())
    return HasLegalMove(Us) ? 0 : ScoreWithoutMoves<Us>(ply);

  // 3. Moves in order. Their history scores are those of this moment, before anything below is searched.
  GenerateMoves<Us>(ply);
  LevelNode node{ply, alpha, beta, range, Us == kWhite ? -kInfinity : kInfinity, false, ProbeHashMove(ply, Us)};

  // 4. Search them until one cuts.
  SaveState(ply);
  if (SearchMoves<Us>(node) == Outcome::kFinished)
    return node.Best;
  if (!node.Searched)
    return ScoreWithoutMoves<Us>(ply);
  StoreBestMove(ply);
  return node.Best;
}

} // namespace

int SearchLevels(Side side, int alpha, int beta) {
  return side == kWhite ? SearchLevel<kWhite>(kFirstLevel, alpha, beta, kAllScores)
                        : SearchLevel<kBlack>(kFirstLevel, alpha, beta, kAllScores);
}

} // namespace zorvane

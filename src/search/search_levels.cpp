#include "search/search_levels.h"

#include <algorithm>
#include <array>

#include "board/legal_moves.h"
#include "quiescence/killers_history.h"
#include "quiescence/move_lists.h"
#include "quiescence/predicates.h"
#include "quiescence/quiescence_search.h"
#include "search/best_line.h"
#include "search/search_driver.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

// The third iteration leaves the table out.
enum class TableUse { kAsked, kLeftOut };

// The locals of a node.
struct Node {
  int Ply;
  int Alpha;
  int Beta;
  ScoreRange Range; // what the callers can tell apart of the node's score
  int Best;
  bool Searched;
  PackedMove FirstMove; // kNoMove for none
};

constexpr int kFirstLevel = 1;

enum class Outcome { kGoOn, kFinished };

template <Side Us, TableUse Table> int SearchLevel(int ply, int alpha, int beta, ScoreRange range);

template <TableUse Table> void StoreBestMove(int ply) {
  if constexpr (Table == TableUse::kAsked)
    StoreTransposition(ply);
}

// The move to try first: that of the last iteration's best line, else the table's.
template <Side Us, TableUse Table> PackedMove FindFirstMove(int ply) {
  if constexpr (Table == TableUse::kAsked)
    return ProbeHashMove(ply, Us);
  return PvMoveAtPly(ply, Us) ? FinalPv[static_cast<unsigned>(ply)].Move : kNoMove;
}

// A child's score that is no better than the best so far leaves no trace. Beyond the other end of the node's own range
// any score cuts the node at once. The range's near end does not count: scores there choose the best line and the move
// for the table, though the callers cannot tell them apart.
template <Side Us> ScoreRange ChildRange(const Node &node) {
  if constexpr (Us == kWhite)
    return {node.Best, node.Range.Ceiling};
  else
    return {node.Range.Floor, node.Best};
}

// Searches one legal move and takes its score in. Finished when the node is cut or the search stopped.
template <Side Us, TableUse Table> Outcome SearchMove(Node &node, PackedMove move) {
  const int from = FromOf(move);
  const int to = ToOf(move);
  ++Nodes;
  MakeMoveOf<Us>(from, to);
  const int score = SearchLevel<Opposite(Us), Table>(node.Ply + 1, node.Alpha, node.Beta, ChildRange<Us>(node));
  RestoreState(node.Ply);
  if (SearchAborted)
    return Outcome::kFinished;

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
  if (!IsCaptureMove(from, to)) {
    StoreKiller(node.Ply, move);
    AddHistory(Us, node.Ply, move);
  }
  StoreBestMove<Table>(node.Ply);
  return Outcome::kFinished;
}

// A killer comes from another position: it has its turn when it is legal here and not among the captures and checks.
template <Side Us> bool IsKillerToTry(const Node &node, PackedMove killer) {
  return killer != kNoMove && killer != node.FirstMove && !IsInCaptureList(node.Ply, killer) &&
         IsLegalMoveOf(Us, killer);
}

// Walks the stages: first move, captures and quiet checks, killers, other quiet moves.
template <Side Us, TableUse Table> Outcome SearchMoves(Node &node) {
  const auto row = static_cast<unsigned>(node.Ply);
  const auto search = [&node](PackedMove move) { return SearchMove<Us, Table>(node, move) == Outcome::kFinished; };
  const MoveList &captures = CaptureList[row];
  MoveList &quiets = QuietList[row];
  const std::array<PackedMove, 2> &killers = KillerTable[row];

  if (node.FirstMove != kNoMove && search(node.FirstMove))
    return Outcome::kFinished;
  for (int i = 0; i < captures.Count; ++i) {
    const PackedMove move = captures.Moves[static_cast<unsigned>(i)].Move;
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

template <Side Us, TableUse Table> int SearchLevel(int ply, int alpha, int beta, ScoreRange range) {
  PvClearFrom(ply);
  // At the horizon quiescence takes care of stops, repetitions, the fifty-move rule and material.
  if (CurrentDepth <= ply)
    return EnterQuiescence<Us>(ply, alpha, beta, range);
  if (PollStop() || IsRepetitionDraw(Us, ply))
    return 0;
  if (Position.HalfmoveClock >= kFiftyMoveLimit || IsInsufficientMaterial())
    return HasLegalMove(Us) ? 0 : ScoreWithoutMoves<Us>(ply);

  GenerateMoves<Us>(ply);
  Node node{ply, alpha, beta, range, Us == kWhite ? -kInfinity : kInfinity, false, FindFirstMove<Us, Table>(ply)};
  SaveState(ply);
  if (SearchMoves<Us, Table>(node) == Outcome::kFinished)
    return node.Best;
  if (!node.Searched)
    return ScoreWithoutMoves<Us>(ply);
  StoreBestMove<Table>(ply);
  return node.Best;
}

} // namespace

int SearchLevels(Side side, int alpha, int beta) {
  return side == kWhite ? SearchLevel<kWhite, TableUse::kAsked>(kFirstLevel, alpha, beta, kAllScores)
                        : SearchLevel<kBlack, TableUse::kAsked>(kFirstLevel, alpha, beta, kAllScores);
}

int ThirdIteration(Side side, int alpha, int beta) {
  return side == kWhite ? SearchLevel<kWhite, TableUse::kLeftOut>(kFirstLevel, alpha, beta, kAllScores)
                        : SearchLevel<kBlack, TableUse::kLeftOut>(kFirstLevel, alpha, beta, kAllScores);
}

} // namespace zorvane

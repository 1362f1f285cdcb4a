#include "search/search_driver.h"

#include <cassert>

#include "base/program_clock.h"
#include "board/legal_moves.h"
#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "search/killers_history.h"
#include "search/root_moves.h"
#include "tree/node_count.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

// Clears what lasts for one search only. The table outlives it, and so does the pawn cache, which changes no score.
void ClearSearchMemory() {
  ResetNodes();
  ClearRootResults();
  ForgetKeptLine();
  ClearHistory();
}

// The first legal move in scan order with the static evaluation: the answer if nothing is searched.
RootChoice DefaultChoice(const MoveSets &moves) {
  const int from = Lsb(moves.Froms);
  const int to = Lsb(moves.Targets[from]);
  DisplaceOtherPosition();
  return {PackMove(from, to), Evaluate(), MoveReason::kScore};
}

// The answer for a position without a legal move.
RootChoice ChoiceWithoutMoves() {
  // A pass would evaluate the root before it finds no moves, and evaluating displaces a move from the table.
  if (!ShouldStop())
    DisplaceOtherPosition();
  return {kNoMove, IsInCheck(RootSide()) ? MatedScore(RootSide(), 0) : 0, MoveReason::kScore};
}

RootHints ChooseHints(const SearchOptions &options) {
  if (options.Hints == nullptr)
    return {HintMode::kNone, nullptr};
  return {ChooseHintMode(options.UseEndgameHints), options.Hints};
}

// Deepens until a limit, a stop or a mate. best holds the default answer and is replaced by that of each finished
// iteration, or by the best move so far if the first one is stopped. Returns the depth of the last finished iteration,
// 0 for none.
int Iterate(int maxDepth, const RootHints &hints, RootChoice &best) {
  PackedMove previousBestMove = kNoMove;
  int completed = 0;
  while (completed < maxDepth && !ShouldStop()) {
    const int depth = completed + 1;
    ClearKillers();
    RootChoice found;
    const bool finished = SearchRoot(depth, previousBestMove, hints, found);
    if (finished || (depth == 1 && found.Move != kNoMove))
      best = found;
    if (!finished)
      break;
    completed = depth;
    KeepRootResults();
    KeepLine();
    if (IsMateScore(best.Score))
      break;
    previousBestMove = best.Move;
  }
  return completed;
}

} // namespace

SearchResult RunSearch(const SearchLimits &limits, const SearchOptions &options) {
  assert(limits.MaxDepth >= 1 && limits.MaxDepth <= kDepthLimit && PositionIsOk());
  EnableTranspositionMoves(options.UseTranspositionMoves);
  EnablePawnCache(options.PawnCacheEnabled);
  ResetStopControl();
  ClearSearchMemory();
  const double start = ProgramClock();
  SearchResult result{};
  result.RootSide = RootSide();

  MoveSets moves;
  GenerateLegalMoves(moves, RootSide());
  result.LegalMoveCount = CountMoves(moves);
  RootChoice best;
  if (result.LegalMoveCount == 0) {
    best = ChoiceWithoutMoves();
  } else {
    best = DefaultChoice(moves);
    ArmDeadline(start + limits.TimeMs);
    result.CompletedDepth = Iterate(limits.MaxDepth, ChooseHints(options), best);
    DisarmDeadline();
    result.BestMover = PieceOn(FromOf(best.Move));
  }
  result.BestMove = best.Move;
  result.BestScore = best.Score;
  result.BestMoveReason = best.Reason;
  result.Nodes = Nodes;
  result.Line = KeptLine();
  result.ElapsedMs = ProgramClock() - start;
  return result;
}

} // namespace zorvane

#include "search/search_driver.h"

#include <cassert>

#include "board/legal_moves.h"
#include "board/move_text.h"
#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "quiescence/killers_history.h"
#include "search/best_line.h"
#include "search/root_moves.h"
#include "search/search_state.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

SearchResult LastResult;

// Clears what lives for one search. The table outlives it, and the pawn cache, which never changes a value.
void ClearSearchMemory() {
  ClearRootResults();
  FinalPvClear();
  ClearHistory();
}

// The first legal move in scan order with the static evaluation: the answer when nothing was searched.
RootChoice DefaultChoice(const MoveSets &moves) {
  const int from = Lsb(moves.Froms);
  const int to = Lsb(moves.Targets[from]);
  DisplaceOtherPosition();
  return {PackMove(from, to), Evaluate(), MoveReason::kScore};
}

// The answer of a position without a legal move. Not left to SearchRoot, which answers nothing when it is stopped.
RootChoice ChoiceWithoutMoves() {
  return {kNoMove, IsInCheck(RootSide()) ? MatedScore(RootSide(), 0) : 0, MoveReason::kScore};
}

// Deepens until a limit, a stop or a mate. best holds the default answer and takes that of each finished iteration, or
// the best found so far when the first one is cut off.
void Iterate(int maxDepth, HintMode hints, RootChoice &best, SearchResult &result) {
  PackedMove previousBestMove = kNoMove;
  for (int depth = 1; depth <= maxDepth && !ShouldStop(); ++depth) {
    BeginIteration(depth);
    ClearKillers();
    RootChoice found;
    const bool finished = SearchRoot(previousBestMove, hints, found);
    result.Nodes += Nodes;
    if (finished || (depth == 1 && found.Move != kNoMove))
      best = found;
    if (!finished)
      return;
    result.CompletedDepth = depth;
    KeepRootResults();
    FinalPvClear();
    FinalPvCopy();
    if (IsMateScore(best.Score))
      return;
    previousBestMove = best.Move;
  }
}

void Publish(SearchResult &result, const RootChoice &best) {
  result.BestMove = best.Move;
  result.BestScore = best.Score;
  result.BestMoveReason = best.Reason;
  if (best.Move != kNoMove)
    MoveText(result.BestMoveText, PieceOn(FromOf(best.Move)), FromOf(best.Move), ToOf(best.Move));
  else
    BoundedStringFromText(result.BestMoveText, "---");
}

} // namespace

void RunSearch(const SearchLimits &limits, const SearchOptions &options) {
  assert(limits.MaxDepth >= 1 && limits.MaxDepth <= kDepthLimit && PositionIsOk());
  EnableTranspositionMoves(options.UseTranspositionMoves);
  EnablePawnCache(options.PawnCacheEnabled);
  const HintMode hints = ChooseHintMode(options.UseHints, options.UseEndgameHints);
  ResetStopControl();
  ClearSearchMemory();
  const double start = ProgramClock();
  SearchResult result{};

  MoveSets moves;
  GenerateLegalMoves(moves, RootSide());
  result.LegalMoveCount = CountMoves(moves);
  RootChoice best;
  if (result.LegalMoveCount == 0) {
    best = ChoiceWithoutMoves();
    RootChoice none;
    BeginIteration(1);
    SearchRoot(kNoMove, hints, none); // evaluating the root displaces a slot of the table
  } else {
    best = DefaultChoice(moves);
    ArmDeadline(start + limits.TimeLimitSeconds * 1000.0);
    Iterate(limits.MaxDepth, hints, best, result);
    DisarmDeadline();
  }
  Publish(result, best);
  result.ElapsedMs = ProgramClock() - start;
  LastResult = result;
}

const SearchResult &Result() { return LastResult; }

} // namespace zorvane

#include "search/search_driver.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "board/legal_moves.h"
#include "board/move_text.h"
#include "evaluation/evaluate.h"
#include "quiescence/killers_history.h"
#include "quiescence/quiescence_search.h"
#include "search/best_line.h"
#include "search/root_search.h"
#include "search/stop_control.h"

namespace zorvane {

int MaxDepth;
double TimeLimitSeconds;
int CurrentDepth;
std::int64_t Nodes;
PackedMove PreviousBestMove;
SearchResult Result;
int CompletedDepth;
double ElapsedMs;
int LegalMoveCount;
SearchResult FallbackBest;
bool HaveFallbackBest;

namespace {

// The first legal move in scan order with the static evaluation: the answer when nothing was searched. False when
// there is no legal move.
template <Side Us> bool FindDefaultMove(SearchResult &found) {
  MoveSets moves;
  SetLegalMoves<Us>(moves, FindKingDanger<Us>());
  if (moves.Froms == 0)
    return false;
  const int from = LowestSquare(moves.Froms);
  const int to = LowestSquare(moves.Targets[static_cast<unsigned>(from)]);
  found.BestMove = PackMove(from, to);
  MoveText(found.BestMoveText, PieceOn(from), from, to);
  return true;
}

void BeginSearch() {
  RootResults.Count = PreviousRootResults.Count = 0;
  HaveFallbackBest = false;
  Result.BestMoveReason = 0;
  PreviousBestMove = kNoMove;
  DeadlineArmed = SearchAborted = false;
  CompletedDepth = 0;
  ElapsedMs = 0;
  NodesToStopTest = 0;
  FinalPvClear();
  ClearKillers();
  ClearHistory();
}

// The answer of a position without a legal move: mate or a draw. It holds also when a stop leaves no pass over the root.
void SetResultWithoutMoves() {
  Result.BestMove = kNoMove;
  Result.BestScore = IsInCheck(RootSide) ? MatedScore(RootSide, 0) : 0;
  BoundedStringFromText(Result.BestMoveText, "---");
  Nodes = 0;
  LegalMoveCount = 0;
}

// Deepens until a limit, a stop or a mate; kept takes the result of each finished iteration. Returns all nodes.
std::int64_t Iterate(SearchResult &kept) {
  std::int64_t total = 0;
  for (CurrentDepth = 1; CurrentDepth <= MaxDepth; ++CurrentDepth) {
    if (ShouldStop())
      break;
    Nodes = 0;
    ClearKillers();
    SearchRoot();
    total += Nodes;
    if (SearchAborted)
      break;
    CompletedDepth = CurrentDepth;
    PreviousRootResults = RootResults;
    kept = Result;
    FinalPvClear();
    FinalPvCopy();
    PreviousBestMove = Result.BestMove;
    if (Absolute(kept.BestScore) >= kMateThreshold) {
      SearchAborted = true;
      break;
    }
  }
  return total;
}

// The score from the mover's view.
std::array<char, 64> ScoreText() {
  std::array<char, 64> text{};
  const int score = RootSide == kWhite ? Result.BestScore : -Result.BestScore;
  const int mateMoves = (std::max(kMateValue - Absolute(score), 0) + 1) / 2;
  if (Absolute(score) >= kMateThreshold)
    std::snprintf(text.data(), text.size(), "mate %d", score < 0 ? -mateMoves : mateMoves);
  else
    std::snprintf(text.data(), text.size(), "cp %d", score);
  return text;
}

} // namespace

void ResetSearchState() {
  MaxDepth = kDepthLimit;
  TimeLimitSeconds = kDefaultTimeLimitSeconds;
  CurrentDepth = 1;
  Nodes = 0;
  PreviousBestMove = kNoMove;
  Result = {};
  Result.BestMove = kNoMove;
  BoundedStringFromText(Result.BestMoveText, "---");
  FallbackBest = Result;
  HaveFallbackBest = false;
  CompletedDepth = 0;
  ElapsedMs = 0;
  LegalMoveCount = 0;
}

void RunSearch() {
  BeginSearch();
  const double start = ProgramClock();
  Deadline = start + TimeLimitSeconds * 1000.0;
  SearchResult kept{};
  if (!(RootSide == kWhite ? FindDefaultMove<kWhite>(kept) : FindDefaultMove<kBlack>(kept))) {
    SetResultWithoutMoves();
    CurrentDepth = 1;
    SearchRoot();
    ElapsedMs = ProgramClock() - start;
    return;
  }
  LegalMoveCount = CountLegalMoves(RootSide);
  kept.BestScore = Evaluate();
  DeadlineArmed = true;
  const std::int64_t total = Iterate(kept);
  if (CompletedDepth == 0 && HaveFallbackBest)
    kept = FallbackBest;
  PreviousBestMove = kNoMove;
  DeadlineArmed = false;
  Result = kept;
  Nodes = total;
  ElapsedMs = ProgramClock() - start;
}

void PrintSearchResult() {
  const bool hasMove = Result.BestMove != kNoMove;
  const char *move = Result.BestMoveText.Text.data();
  const double rate = static_cast<double>(Nodes) * 1000.0 / (ElapsedMs > 0 ? ElapsedMs : 1.0);
  std::printf("info depth %d score %s nodes %lld time %d nps %lld pv %s\n", CompletedDepth, ScoreText().data(),
              static_cast<long long>(Nodes), static_cast<int>(ElapsedMs), static_cast<long long>(rate),
              hasMove ? move : "");
  std::printf("bestmove %s\n", hasMove ? move : "0000");
  std::fflush(stdout);
}

} // namespace zorvane

#include "frontend/search_report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "evaluation/score.h"
#include "search/search_driver.h"
#include "search/search_state.h"

namespace zorvane {

namespace {

// The score as UCI wants it: from the mover's view, mates in moves.
std::array<char, 64> ScoreText(int bestScore) {
  std::array<char, 64> text{};
  const int score = RootSide() == kWhite ? bestScore : -bestScore;
  const int mateMoves = (std::max(kMateValue - Absolute(score), 0) + 1) / 2;
  if (IsMateScore(score))
    std::snprintf(text.data(), text.size(), "mate %d", score < 0 ? -mateMoves : mateMoves);
  else
    std::snprintf(text.data(), text.size(), "cp %d", score);
  return text;
}

} // namespace

void PrintSearchResult() {
  const SearchResult &result = Result();
  const bool hasMove = result.BestMove != kNoMove;
  const char *move = result.BestMoveText.Text.data();
  const double rate = static_cast<double>(result.Nodes) * 1000.0 / (result.ElapsedMs > 0 ? result.ElapsedMs : 1.0);
  std::printf("info depth %d score %s nodes %lld time %d nps %lld pv %s\n", result.CompletedDepth,
              ScoreText(result.BestScore).data(), static_cast<long long>(result.Nodes),
              static_cast<int>(result.ElapsedMs), static_cast<long long>(rate), hasMove ? move : "");
  std::printf("bestmove %s\n", hasMove ? move : "0000");
  std::fflush(stdout);
}

} // namespace zorvane

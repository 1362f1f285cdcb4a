#include "frontend/search_report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "board/move_text.h"
#include "evaluation/score.h"

namespace zorvane {

namespace {

// The score in UCI form: from the mover's view, mates in moves.
std::array<char, 64> ScoreText(const SearchResult &result) {
  std::array<char, 64> text{};
  const int score = result.RootSide == kWhite ? result.BestScore : -result.BestScore;
  const int mateMoves = (std::max(kMateValue - Absolute(score), 0) + 1) / 2;
  if (IsMateScore(score))
    std::snprintf(text.data(), text.size(), "mate %d", score < 0 ? -mateMoves : mateMoves);
  else
    std::snprintf(text.data(), text.size(), "cp %d", score);
  return text;
}

} // namespace

void PrintSearchResult(const SearchResult &result) {
  const bool hasMove = result.BestMove != kNoMove;
  const MoveChars move =
      hasMove ? MoveText(result.BestMover, FromOf(result.BestMove), ToOf(result.BestMove)) : MoveChars{};
  const double rate = static_cast<double>(result.Nodes) * 1000.0 / (result.ElapsedMs > 0 ? result.ElapsedMs : 1.0);
  std::printf("info depth %d score %s nodes %lld time %d nps %lld pv %s\n", result.CompletedDepth,
              ScoreText(result).data(), static_cast<long long>(result.Nodes), static_cast<int>(result.ElapsedMs),
              static_cast<long long>(rate), move.data());
  std::printf("bestmove %s\n", hasMove ? move.data() : "0000");
  std::fflush(stdout);
}

} // namespace zorvane

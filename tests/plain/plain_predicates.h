// The plain counterparts of the questions that the search puts to the board, and of its move lists.
#pragma once

#include <functional>

#include "plain_rules.h"

namespace plain {

bool IsInsufficientMaterial();
bool MayDiscoverCheck(Square s, Square king, int side);
bool IsPawnForkSquare(int side, Square s);
bool HasPawnForkPush(int side);
// `before` is the position before the last move.
bool HasFreshKnightFork(int side, const BoardState &before);
// Off the board for none.
Square FindQueenTarget(int side);

struct ScoredMove {
  Move Candidate;
  int Score = 0;
};

struct LevelLists {
  std::vector<ScoredMove> Captures; // and behind them the quiet checks
  std::vector<ScoredMove> Quiets;
};

LevelLists GenerateMoves(int side, const std::function<int(Move)> &history);

} // namespace plain

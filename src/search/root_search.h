// One pass over the moves of the root position.
#pragma once

#include <array>

#include "board/types.h"

namespace zorvane {

constexpr int kRootMoveLimit = 257;
constexpr int kHintLimit = 256;

// A searched root move and its score, from RootSide's view.
struct RootResult {
  PackedMove Move;
  int Score;
};

struct RootResultList {
  int Count;
  std::array<RootResult, kRootMoveLimit> Moves;
};

// A host's wish for a root move: decides between moves of equal score.
struct Hint {
  std::array<char, 8> Text;
  double Bonus;
  double Penalty;
};

struct HintCollection {
  int Count;
  std::array<Hint, kHintLimit> Hints;
};

extern RootResultList RootResults;         // in the order of search
extern RootResultList PreviousRootResults; // of the last finished iteration; written by RunSearch

// Written by the request reader alone.
extern HintCollection HintList;
extern bool UseHints;
extern bool UseEndgameHints;

// Searches all root moves at CurrentDepth and leaves the best in Result, the line in row 0 of the best-line table and
// all scores in RootResults. Cut off by a stop it leaves a void pass, with SearchAborted set.
void SearchRoot();

// The number of legal moves of side.
int CountLegalMoves(Side side);

} // namespace zorvane

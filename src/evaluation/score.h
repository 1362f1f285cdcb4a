// The scale of scores, centipawns from White's view throughout the search, and the range of scores that a caller of the
// evaluation can tell apart.
#pragma once

#include <limits>

#include "board/types.h"

namespace zorvane {

constexpr int kInfinity = 1000000;     // beyond every score: the initial best score of a node
constexpr int kMateValue = 900000;     // less the ply of the mated side's node
constexpr int kMateThreshold = 800000; // scores of this size or more are mates

// The score of a node at which side is mated.
constexpr int MatedScore(Side side, int ply) { return side == kWhite ? ply - kMateValue : kMateValue - ply; }

constexpr bool IsMateScore(int score) { return Absolute(score) >= kMateThreshold; }

// The scores that a caller can tell apart: those strictly between Floor and Ceiling. In place of a score at or beyond
// an end, any other at or beyond that end may be returned. This is not the alpha-beta window: scores outside the window
// still choose best lines and order the next iteration's root moves, so a range contains the window and often more.
struct ScoreRange {
  int Floor;
  int Ceiling;
};

// For callers that need the exact score.
constexpr ScoreRange kAllScores{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

} // namespace zorvane

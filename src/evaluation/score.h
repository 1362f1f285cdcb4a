// The scale of scores, centipawns from White's view throughout the search, and the range of scores that a caller of
// the evaluation can tell apart.
#pragma once

#include <limits>

#include "board/types.h"

namespace zorvane {

constexpr int kInfinity = 1000000;     // beyond every score: the start value of a best score
constexpr int kMateValue = 900000;     // a mate is this less the ply of the mated side's node
constexpr int kMateThreshold = 800000; // a score of this size or more is a mate

// The score of a node at ply whose side to move is mated.
constexpr int MatedScore(Side side, int ply) { return side == kWhite ? ply - kMateValue : kMateValue - ply; }

constexpr bool IsMateScore(int score) { return Absolute(score) >= kMateThreshold; }

// What a caller can tell apart: scores strictly between Floor and Ceiling. Whoever gives a score in a range may give,
// for one at or beyond an end, any other at or beyond that end. This is not the alpha-beta window: scores outside the
// window still choose best lines and order the next iteration's root moves, so a range holds the window and often more.
struct ScoreRange {
  int Floor;
  int Ceiling;
};

// The caller learns the very number.
constexpr ScoreRange kAllScores{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

} // namespace zorvane

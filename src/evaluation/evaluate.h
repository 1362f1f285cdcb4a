// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move.
#pragma once

#include <limits>

namespace zorvane {

// The evaluation of the position. The position, with SideToMove, takes its slot of the transposition table over.
int Evaluate();

// The scores that a caller can tell apart: all up to Floor are one to it, and all from Ceiling on. Floor is the
// smaller.
struct ScoreRange {
  int Floor;
  int Ceiling;
};

// A caller with this range learns the very number.
constexpr ScoreRange kAllScores{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

// Evaluate for such a caller, which leaves out what cannot lift the score out of its end of the range. The table's slot
// is taken over all the same.
int EvaluateWithin(ScoreRange range);

// The same number, worked out.
int ComputeEvaluation();

} // namespace zorvane

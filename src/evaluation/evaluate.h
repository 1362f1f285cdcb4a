// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move.
#pragma once

#include <limits>

namespace zorvane {

// The evaluation of the position. The position, with SideToMove, takes its slot of the transposition table over.
int Evaluate();

// The evaluation alone, without the effect on the table.
int ComputeEvaluation();

// The scores that a caller can tell apart: all up to Floor are one to it, and all from Ceiling on. In a search the
// range holds the whole window of the node, and more: scores outside the window still reach callers, order the next
// iteration's root moves and choose best lines.
struct ScoreRange {
  int Floor;
  int Ceiling;
};

// A caller with this range learns the very number.
constexpr ScoreRange kAllScores{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

// Evaluate for such a caller: the number, or outside the range any score of the same end, for which what cannot lift
// the score out of that end is left out.
int EvaluateWithin(ScoreRange range);

} // namespace zorvane

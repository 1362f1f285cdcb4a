// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move.
#pragma once

#include "evaluation/score.h"

namespace zorvane {

// The evaluation of the current position; changes nothing. With a range it is lazy: exact inside, and outside any score
// on the same side, for which terms that cannot bring the score back into the range are left out.
int Evaluate(ScoreRange range = kAllScores);

} // namespace zorvane

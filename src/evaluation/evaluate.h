// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move.
#pragma once

#include "evaluation/score.h"

namespace zorvane {

// The evaluation of the current position; changes nothing but the pawn cache. With a range it is lazy: exact inside;
// outside any score on that side, for which terms that cannot bring the score back into the range are left out.
int Evaluate(ScoreRange range = kAllScores);

} // namespace zorvane

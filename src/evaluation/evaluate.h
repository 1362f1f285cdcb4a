// The static evaluation: how good the position is, in centipawns from White's view, whoever is to move. The values of
// pieces and of their squares are in board/piece_square_terms.h, because MakeMove keeps their sum up to date.
#pragma once

#include "evaluation/score.h"

namespace zorvane {

// Evaluates the current position; changes nothing but the pawn cache. Inside the range the score is exact; outside,
// only the side is guaranteed, because terms that cannot bring the score back into the range are left out.
int Evaluate(ScoreRange range = kAllScores);

// The same evaluation, exact in every position, by adding the whole term of each piece square by square. Slow: Evaluate
// uses it only where the order of summation counts, which is with fractional pawn terms.
int EvaluateInScanOrder();

} // namespace zorvane

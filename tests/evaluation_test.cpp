// The evaluation against its plain counterpart, with and without pawn cache and table.
#include <algorithm>

#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "plain/plain_evaluation.h"
#include "random_positions.h"
#include "search/transposition_table.h"

using namespace zorvane;

namespace {

class EvaluationTest : public EngineTest {};

void CompareEvaluations() {
  const int expected = plain::ComputeEvaluation();
  for (const bool cached : {true, false, true}) {
    PawnCacheEnabled = cached;
    EXPECT_EQ(ComputeEvaluation(), expected);
  }
  for (int i = 0; i < 6; ++i) {
    const int floor = expected - 400 + RandomBelow(700);
    const ScoreRange range{floor, floor + 1 + RandomBelow(300)};
    const int score = EvaluateWithin(range);
    EXPECT_EQ(std::clamp(score, range.Floor, range.Ceiling), std::clamp(expected, range.Floor, range.Ceiling));
  }
  for (const Side asked : {kWhite, kBlack, kBlack, kWhite}) {
    SideToMove = asked;
    EXPECT_EQ(Evaluate(), expected);
  }
}

TEST_F(EvaluationTest, AgreesWithThePlainOneWhateverIsRemembered) {
  for (const int sizeKb : {0, 512, 1024}) {
    ResizeTransposition(sizeKb);
    ForRandomPositions(3000, CompareEvaluations);
  }
}

} // namespace

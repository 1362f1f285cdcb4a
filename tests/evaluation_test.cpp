// What recorded evaluations cannot show: caches and bounds change nothing, and neither side is favoured.
#include <algorithm>

#include "board/fen.h"
#include "engine_test.h"
#include "evaluation/evaluate.h"
#include "evaluation/king_terms.h"
#include "evaluation/pawn_structure.h"

using namespace zorvane;

namespace {

class EvaluationTest : public EngineTest {};

TEST_F(EvaluationTest, CacheAndRangeChangeNothing) {
  ForEachPosition([] {
    EnablePawnCache(false);
    const int exact = Evaluate();
    EnablePawnCache(true);
    EXPECT_EQ(Evaluate(), exact);
    EXPECT_EQ(Evaluate(), exact);
    for (int i = 0; i < 12; ++i) {
      const int floor = exact - 400 + RandomBelow(700);
      const ScoreRange range{floor, floor + 1 + RandomBelow(300)};
      EXPECT_EQ(std::clamp(Evaluate(range), range.Floor, range.Ceiling), std::clamp(exact, range.Floor, range.Ceiling));
    }
  });
}

// Pawn terms are computed in two ways: for all pawns at once, and pawn by pawn.
TEST_F(EvaluationTest, TermByTermItIsTheSame) {
  ForEachPosition([] { EXPECT_EQ(EvaluateInScanOrder(), Evaluate()); });
}

TEST_F(EvaluationTest, TheMirroredPositionIsWorthTheOpposite) {
  ForEachPosition([] {
    const bool fractional = CurrentPawnStructure().IsFractional; // the order of summation decides the last unit
    const int score = Evaluate();
    ASSERT_TRUE(LoadFen(MirroredFen().c_str()));
    EXPECT_LE(Absolute(Evaluate() + score), fractional ? 1 : 0);
  });
}

TEST_F(EvaluationTest, TermsKeepTheirLimits) {
  ForEachPosition([] {
    const Phase &phase = CurrentPhase();
    const PawnStructure &pawns = CurrentPawnStructure();
    const int pawnTerms = PawnPhaseScore(pawns, phase);
    EXPECT_TRUE(pawnTerms >= pawns.LowestPhaseTerms && pawnTerms <= pawns.HighestPhaseTerms);
    EXPECT_LE(Absolute(KingPlacementTerm<kWhite>(phase) - KingPlacementTerm<kBlack>(phase)), kKingPlacementSpread);
    EXPECT_LE(KingAttackPenalty<kWhite>(phase), HighestAttackPenalty<kWhite>(phase));
    EXPECT_LE(KingAttackPenalty<kBlack>(phase), HighestAttackPenalty<kBlack>(phase));
  });
}

} // namespace

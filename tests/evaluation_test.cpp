// The evaluation against its plain counterpart, its own mirror and itself without its memories.
#include <algorithm>

#include "board/memory_block.h"
#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "plain/plain_evaluation.h"
#include "random_positions.h"
#include "search/transposition_table.h"

using namespace zorvane;

namespace {

class EvaluationTest : public EngineTest {};

TEST_F(EvaluationTest, AgreesWithThePlainOneWhateverIsRemembered) {
  ForRandomPositions(4000, [] {
    const int expected = plain::ComputeEvaluation();
    for (const bool cached : {true, false, true}) {
      PawnCacheEnabled = cached;
      EXPECT_EQ(ComputeEvaluation(), expected);
    }
    const Side side = SideToMove;
    for (const Side asked : {kWhite, kBlack, kBlack, kWhite}) { // both sides and many boards share a slot
      SideToMove = asked;
      EXPECT_EQ(Evaluate(), expected);
    }
    SideToMove = side;
  });
}

TEST_F(EvaluationTest, WithinARangeItIsTheNumberElseTheSameEnd) {
  ForRandomPositions(2000, [] {
    const int expected = plain::ComputeEvaluation();
    for (int i = 0; i < 6; ++i) { // the later ones meet what the earlier ones left in the table
      const int floor = expected - 400 + RandomBelow(700);
      const ScoreRange range{floor, floor + 1 + RandomBelow(300)};
      const int score = EvaluateWithin(range);
      EXPECT_EQ(std::clamp(score, range.Floor, range.Ceiling), std::clamp(expected, range.Floor, range.Ceiling));
    }
    EXPECT_EQ(Evaluate(), expected);
  });
}

void MirrorPosition() {
  const BoardState kept = Position;
  Position = {};
  for (int square = 0; square < kSquares; ++square)
    if (const Piece piece = kept.Board[static_cast<unsigned>(square)]; piece != kNoPiece)
      PutPiece(MakeSquare(FileOf(square), 7 - RowOf(square)), MakePiece(Opposite(SideOf(piece)), TypeOf(piece)));
  Position.EnPassantSquare = kNoSquare;
}

TEST_F(EvaluationTest, TheMirrorIsTheNegative) {
  ForRandomPositions(4000, [] {
    const bool fractional = CurrentPawnStructure().IsFractional;
    const BoardState kept = Position;
    const int score = ComputeEvaluation();
    MirrorPosition();
    if (!fractional) {
      EXPECT_EQ(ComputeEvaluation(), -score);
    }
    SetPlainPosition();
    EXPECT_EQ(ComputeEvaluation(), plain::ComputeEvaluation());
    Position = kept;
  });
}

TEST_F(EvaluationTest, WorkedExamples) {
  struct {
    const char *Fen;
    int Score;
  } const cases[] = {
      {StartFen, 0},
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - 0 1", 0},
      {"8/8/8/8/8/8/8/K6k w - -", 0},
      {"4k3/8/8/8/8/8/P7/4K3 w - -", 115},
      {"6k1/5ppp/8/8/8/8/P4PPP/6K1 w - -", 115},
      {"4k3/8/8/8/8/8/8/4K2R w - -", 801},
      {"4k2r/8/8/8/8/8/8/4K3 b - -", -801},
      {"2kr4/ppp5/8/8/8/8/8/2KR4 w - -", -421},
      {"r3k2r/pppq1ppp/2n5/3Pp3/8/2N5/PPP2PPP/R2QK2R w KQkq - 0 1", 3},
      {"7k/8/5K2/6Q1/8/8/8/8 w - -", 1345},
      {"7k/5Q2/6K1/8/8/8/8/8 b - -", 1369},
  };
  for (const auto &row : cases) {
    ASSERT_TRUE(LoadFen(row.Fen));
    for (const int sizeKb : {1024, 512, 0}) {
      ResizeTransposition(sizeKb);
      EXPECT_EQ(Evaluate(), row.Score) << row.Fen;
    }
  }
}

TEST_F(EvaluationTest, NoPawnCacheForWhoeverSwitchesItOff) {
  AllocateBlock(kPawnCacheBlock, 0);
  PawnCacheEnabled = false;
  ComputeEvaluation();
  EXPECT_EQ(BlockOf(kPawnCacheBlock).Length, 0U);
  PawnCacheEnabled = true;
  ComputeEvaluation();
  EXPECT_GT(BlockOf(kPawnCacheBlock).Length, 0U);
}

} // namespace

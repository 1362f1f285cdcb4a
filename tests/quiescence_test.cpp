// The last stage of a search line against its plain counterpart, rule by rule and at random, and the predicates and
// lists of a level.
#include <algorithm>

#include "board/legal_moves.h"
#include "evaluation/evaluate.h"
#include "plain/plain_predicates.h"
#include "plain/plain_quiescence.h"
#include "quiescence/move_lists.h"
#include "quiescence/predicates.h"
#include "quiescence/quiescence_search.h"
#include "random_positions.h"
#include "search/search_driver.h"

using namespace zorvane;

namespace {

class QuiescenceTest : public EngineTest {};

int Enter(int ply, int alpha, int beta, ScoreRange range) {
  return SideToMove == kWhite ? EnterQuiescence<kWhite>(ply, alpha, beta, range)
                              : EnterQuiescence<kBlack>(ply, alpha, beta, range);
}

// Enters from the line's end with both programs; ours may leave out what the range cannot tell apart. Returns the
// score.
int CompareEntry(int alpha, int beta, ScoreRange range = kAllScores) {
  const BoardState before = Position;
  const int ply = plain::Line.CurrentDepth = CurrentDepth;
  plain::Line.Nodes = Nodes = 0;
  const int score = Enter(ply, alpha, beta, range);
  const int plainScore = plain::EnterQuiescence(PlainSide(SideToMove), ply, alpha, beta);
  EXPECT_EQ(std::clamp(score, range.Floor, range.Ceiling), std::clamp(plainScore, range.Floor, range.Ceiling));
  EXPECT_EQ(Nodes, plain::Line.Nodes);
  EXPECT_TRUE(Position.Board == before.Board);
  return score;
}

TEST_F(QuiescenceTest, ScoresAndNodesOfRandomLines) {
  ForRandomPositions(600, [] {
    BeginLine();
    for (const int plies = 1 + RandomBelow(8); CurrentDepth < plies;) {
      const PackedMove move = RandomMove();
      if (move == kNoMove)
        break;
      Descend(move);
    }
    if (CurrentDepth > 0) {
      const int score = CompareEntry(-kInfinity, kInfinity);
      const int alpha = std::min(score, ComputeEvaluation()) + RandomBelow(300) - 150;
      const int beta = alpha + 1 + RandomBelow(200);
      CompareEntry(alpha, beta);
      CompareEntry(alpha, beta, {alpha - RandomBelow(200), beta + RandomBelow(200)});
    }
  });
}

TEST_F(QuiescenceTest, EachRuleOnItsPosition) {
  for (const auto &row : ReadTable("quiescence.tsv")) {
    SCOPED_TRACE(row[3] + ": " + row[0]);
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    BeginLine();
    CurrentDepth = row[2][0] - '1';
    const std::string &move = row[1];
    const PackedMove packed =
        PackMove(MakeSquare(move[0] - 'a', '8' - move[1]), MakeSquare(move[2] - 'a', '8' - move[3]));
    ASSERT_TRUE(IsLegalMove(FromOf(packed), ToOf(packed)));
    Descend(packed);
    CompareEntry(-kInfinity, kInfinity);
  }
}

TEST_F(QuiescenceTest, ThePositionsOfTheGameAndTheLineCount) {
  ASSERT_TRUE(LoadFen("7k/8/8/8/8/8/r7/R6K w - -"));
  BeginLine();
  for (const char *move : {"h1g1", "h8g8", "g1h1", "g8h8"})
    PlayInGame(move);
  for (const PackedMove move : {PackMove(63, 62), PackMove(7, 6), PackMove(62, 63), PackMove(6, 7), PackMove(63, 62)}) {
    Descend(move);
    const bool third = CurrentDepth >= 4; // twice in the game or on the line above
    EXPECT_EQ(CompareEntry(-kInfinity, kInfinity) == 0, third) << CurrentDepth;
    EXPECT_EQ(Nodes == 0, third) << CurrentDepth;
  }
}

TEST_F(QuiescenceTest, PredicatesOnRandomPositions) {
  const auto compareKnightForks = [](const plain::BoardState &before) {
    EXPECT_EQ(HasFreshKnightFork<kWhite>(1), plain::HasFreshKnightFork(1, before));
    EXPECT_EQ(HasFreshKnightFork<kBlack>(1), plain::HasFreshKnightFork(2, before));
  };
  ForRandomPositions(4000, [&] {
    EXPECT_EQ(IsInsufficientMaterial(), plain::IsInsufficientMaterial());
    EXPECT_EQ(HasPawnForkPush<kWhite>(), plain::HasPawnForkPush(1));
    EXPECT_EQ(HasPawnForkPush<kBlack>(), plain::HasPawnForkPush(2));
    EXPECT_EQ(FindQueenTarget<kWhite>(), EngineSquare(plain::FindQueenTarget(1)));
    EXPECT_EQ(FindQueenTarget<kBlack>(), EngineSquare(plain::FindQueenTarget(2)));
    UndoStack[0] = {}; // all knights are fresh
    compareKnightForks({});
    const PackedMove move = RandomMove();
    if (move == kNoMove)
      return;
    BeginLine();
    Descend(move);
    compareKnightForks(plain::Line.Undo[0]);
  });
}

TEST_F(QuiescenceTest, MoveLists) {
  for (auto &scores : HistoryTable)
    for (std::int32_t &score : scores)
      score = RandomBelow(4);
  ForRandomPositions(3000, [] {
    const int ply = 1 + RandomBelow(7);
    if (IsInCheck(Opposite(SideToMove)))
      return; // no position of a search
    const Side side = SideToMove;
    const plain::LevelLists lists = plain::GenerateMoves(
        PlainSide(side), [&](plain::Move m) { return HistoryTable[side][static_cast<unsigned>(EngineMove(m))]; });
    if (side == kWhite)
      GenerateMoves<kWhite>(ply);
    else
      GenerateMoves<kBlack>(ply);
    const MoveList &captures = CaptureList[static_cast<unsigned>(ply)];
    MoveList &quiets = QuietList[static_cast<unsigned>(ply)];
    ASSERT_EQ(captures.Count, static_cast<int>(lists.Captures.size()));
    ASSERT_EQ(quiets.Count, static_cast<int>(lists.Quiets.size()));
    for (unsigned i = 0; i < lists.Captures.size(); ++i) {
      EXPECT_EQ(captures.Moves[i].Move, EngineMove(lists.Captures[i].Candidate)) << i;
      EXPECT_EQ(captures.Moves[i].Score, lists.Captures[i].Score) << i;
      EXPECT_TRUE(IsInCaptureList(ply, captures.Moves[i].Move));
    }
    for (unsigned i = 0; i < lists.Quiets.size(); ++i) {
      EXPECT_EQ(NextQuietMove(quiets, static_cast<int>(i)), EngineMove(lists.Quiets[i].Candidate)) << i;
      EXPECT_FALSE(IsInCaptureList(ply, EngineMove(lists.Quiets[i].Candidate)));
    }
  });
}

TEST_F(QuiescenceTest, HistoryStopsAtItsLimit) {
  HistoryTable[kWhite][100] = kHistoryLimit - 10;
  AddHistory(kWhite, 1, 100);
  EXPECT_EQ(HistoryTable[kWhite][100], kHistoryLimit);
}

} // namespace

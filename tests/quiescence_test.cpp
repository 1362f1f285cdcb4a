// The last stage of a search line against its plain counterpart, rule by rule and at random, and the lists of a level.
#include <algorithm>

#include "board/legal_moves.h"
#include "board/move_text.h"
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

// Starts a line of the search at the position on the board.
void BeginLine() {
  SetPlainPosition();
  plain::Line = {};
  plain::Line.GameHistory = {plain::PositionKey(PlainSide(SideToMove))};
  UndoStack = {};
  CurrentDepth = 0;
}

// Takes the line one ply further, as a level does.
void Descend(PackedMove move) {
  SaveState(CurrentDepth);
  plain::Line.Undo[CurrentDepth++] = plain::Position;
  PlayMove(move);
  plain::MakeMove(PlainMove(move));
  plain::CountRepetitions(PlainSide(SideToMove), CurrentDepth);
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
    const BoardState root = Position;
    const Side rootSide = SideToMove;
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
    Position = root;
    SideToMove = rootSide;
  });
}

TEST_F(QuiescenceTest, EachRuleOnItsPosition) {
  // Each row gives other nodes or another score when its rule is left out.
  struct {
    const char *Rule, *Fen, *Move;
    int Ply;
  } const cases[] = {
      {"threat of a pawn fork", "6k1/5ppp/3p4/8/2R1N3/8/5PPP/6K1 b - -", "g8h8", 1},
      {"its cost in credit", "6k1/5ppp/3p4/8/2R1N3/8/5PPP/6K1 b - -", "h7h6", 3},
      {"its last ply", "6k1/5ppp/3p4/8/2R1N3/8/5PPP/6K1 b - -", "g8h8", 8},
      {"fresh knight fork", "4k3/2r1r3/8/8/8/2N5/8/6K1 w - -", "c3d5", 4},
      {"extra checks of the horizon", "5k2/8/8/8/8/8/7p/R3K2R b KQ -", "f8f7", 7},
      {"extra check two plies later", "5k2/5p2/8/8/8/8/8/R3K2R b KQ -", "f8g7", 6},
      {"bishop manoeuvre", "8/1n6/8/6B1/2kQ2K1/8/2B5/8 b - -", "c4b5", 1},
      {"two of them at the most", "3n4/8/3kQ3/8/3BK3/8/3B4/8 b - -", "d6c7", 1},
      {"no bishop that bears already", "8/4K3/4B3/1k6/7n/1Q2n3/5B2/8 b - -", "b5a6", 3},
      {"its last ply", "8/6Bk/8/8/8/1K6/8/Qn5B b - -", "h7g8", 5},
      {"castling with check is no quiet check", "5k2/5p2/8/8/8/8/8/R3K2R b KQ -", "f8e7", 5},
      {"promotion with check is none either", "8/n5K1/2nk4/8/8/6B1/5B1p/8 w - -", "g7h7", 2},
      {"discovered check", "8/6p1/8/3q1P1K/8/8/8/k7 b - -", "d5f5", 5},
      {"recapture", "6k1/5ppp/8/3r1n2/8/4P3/5PPP/3R2K1 b - -", "h7h5", 1},
      {"promotion in the capture zone", "3k4/2P5/8/8/8/8/8/4K3 b - -", "d8e7", 1},
      {"none in the recapture zone", "1B6/4k3/3b1K2/8/8/3N4/5p2/8 w - -", "f6g6", 2},
      {"en passant", "4k3/3p4/8/4P3/8/8/8/4K3 b - -", "d7d5", 1},
      {"capture with check", "6k1/5ppp/3p4/8/2R1N3/8/5PPP/6K1 b - -", "f7f5", 5},
      {"checks: the last ply", "6k1/5ppp/3p4/8/2R1N3/8/5PPP/6K1 b - -", "f7f5", 6},
      {"fork push", "6k1/5ppp/3r1n2/8/4P3/8/5PPP/3R2K1 b - -", "g7g5", 7},
      {"its last ply", "6k1/5ppp/3r1n2/8/1p2P3/P6P/5PP1/6K1 w - -", "f2f4", 8},
      {"floor of the depth", "6k1/pp4pp/4q3/8/2N5/8/PP4PP/R5K1 w - -", "c4b6", 1},
      {"cap of the nodes", "6k1/5ppp/3r1n2/8/4P3/8/5PPP/3R2K1 b - -", "g8f8", 4},
      {"fifty moves", "8/3p4/1K6/8/6k1/8/8/8 w - - 99", "b6a5", 3},
      {"mate before fifty moves", "6k1/8/6K1/8/8/8/8/R7 w - - 99", "a1a8", 3},
      {"stalemate", "7k/8/6K1/5Q2/8/8/8/8 w - -", "f5f7", 3},
      {"dead material", "8/8/8/8/8/2K5/7k/6n1 w - -", "c3b3", 1},
  };
  for (const auto &row : cases) {
    SCOPED_TRACE(std::string(row.Rule) + ": " + row.Fen);
    ASSERT_TRUE(LoadFen(row.Fen));
    BeginLine();
    CurrentDepth = row.Ply - 1;
    const PackedMove move =
        PackMove(MakeSquare(row.Move[0] - 'a', '8' - row.Move[1]), MakeSquare(row.Move[2] - 'a', '8' - row.Move[3]));
    ASSERT_TRUE(IsLegalMove(FromOf(move), ToOf(move)));
    Descend(move);
    CompareEntry(-kInfinity, kInfinity);
  }
}

TEST_F(QuiescenceTest, ThePositionsOfTheGameAndTheLineCount) {
  ASSERT_TRUE(LoadFen("7k/8/8/8/8/8/r7/R6K w - -"));
  BeginLine();
  for (const char *move : {"h1g1", "h8g8", "g1h1", "g8h8"}) {
    ASSERT_TRUE(ApplyUciMove(move));
    SetPlainPosition();
    plain::Line.GameHistory.push_back(plain::PositionKey(PlainSide(SideToMove)));
  }
  for (const PackedMove move : {PackMove(63, 62), PackMove(7, 6), PackMove(62, 63), PackMove(6, 7), PackMove(63, 62)}) {
    Descend(move);
    const bool third = CurrentDepth >= 4; // twice in the game or on the line above
    EXPECT_EQ(CompareEntry(-kInfinity, kInfinity) == 0, third) << CurrentDepth;
    EXPECT_EQ(Nodes == 0, third) << CurrentDepth;
  }
}

TEST_F(QuiescenceTest, PredicatesOnRandomPositions) {
  ForRandomPositions(4000, [] {
    EXPECT_EQ(IsInsufficientMaterial(), plain::IsInsufficientMaterial());
    EXPECT_EQ(HasPawnForkPush<kWhite>(), plain::HasPawnForkPush(1));
    EXPECT_EQ(HasPawnForkPush<kBlack>(), plain::HasPawnForkPush(2));
    EXPECT_EQ(FindQueenTarget<kWhite>(), EngineSquare(plain::FindQueenTarget(1)));
    EXPECT_EQ(FindQueenTarget<kBlack>(), EngineSquare(plain::FindQueenTarget(2)));
    const PackedMove move = RandomMove();
    if (move == kNoMove)
      return;
    SaveState(1);
    const plain::BoardState before = plain::Position;
    MakeMove(FromOf(move), ToOf(move));
    plain::MakeMove(PlainMove(move));
    EXPECT_EQ(HasFreshKnightFork<kWhite>(2), plain::HasFreshKnightFork(1, before));
    EXPECT_EQ(HasFreshKnightFork<kBlack>(2), plain::HasFreshKnightFork(2, before));
    RestoreState(1);
  });
}

TEST_F(QuiescenceTest, Predicates) {
  const auto dead = [] { return static_cast<int>(IsInsufficientMaterial()); };
  const auto pawnFork = [] { return static_cast<int>(HasPawnForkPush<kWhite>()); };
  const auto knightFork = [] { return static_cast<int>(HasFreshKnightFork<kWhite>(2)); };
  struct {
    const char *Fen;
    int (*Ask)();
    int Answer;
  } const cases[] = {
      {"4kb2/8/8/8/8/8/8/4K3 w - -", dead, 1},
      {"4kb2/8/8/8/8/8/8/2B1K3 w - -", dead, 1},
      {"4kb2/8/8/8/8/8/8/4KB2 w - -", dead, 0},
      {"4kb2/8/8/8/8/8/8/4KN2 w - -", dead, 0},
      {"4k3/8/8/8/8/8/8/2B1K1B1 w - -", dead, 0},
      {"4k3/8/8/8/8/8/P7/4K3 w - -", dead, 0},
      {"k7/8/3r1n2/8/4P3/8/8/4K3 w - -", pawnFork, 1},
      {"k7/8/8/3r1n2/8/8/4P3/K7 w - -", pawnFork, 1},
      {"k7/8/8/3r1n2/8/4p3/4P3/K7 w - -", pawnFork, 0},
      {"8/8/3k1n2/8/4P3/8/8/4K3 w - -", pawnFork, 0},
      {"k7/8/8/3r1n2/8/4P3/K5q1/8 w - -", pawnFork, 0},
      {"k7/8/8/8/8/3r1n2/8/K3P3 w - -", pawnFork, 0},
      {"k7/2r1q3/8/3N4/8/8/8/5K2 w - -", knightFork, 1},
      {"k7/2b1n3/8/3N4/8/8/8/4K3 w - -", knightFork, 0},
      {"8/2k1r3/8/3N4/8/8/8/5K2 w - -", knightFork, 0},
      {"k2r4/2r1q3/8/3N4/8/8/8/3K4 w - -", knightFork, 0},
      {"k7/8/2n2b2/8/8/2Q5/8/7K w - -", FindQueenTarget<kWhite>, MakeSquare(2, 2)},
      {"k7/8/2n2b2/8/8/2Q5/8/K7 w - -", FindQueenTarget<kWhite>, MakeSquare(5, 2)},
      {"k7/8/2n5/8/8/2Q5/8/KQ6 w - -", FindQueenTarget<kWhite>, kNoSquare},
      {"k7/8/2r2p2/8/8/2Q5/8/K7 w - -", FindQueenTarget<kWhite>, kNoSquare},
  };
  for (const auto &row : cases) {
    ASSERT_TRUE(LoadFen(row.Fen));
    UndoStack[1] = {};
    EXPECT_EQ(row.Ask(), row.Answer) << row.Fen;
    SaveState(1); // a knight that stood there before forks nothing
    EXPECT_FALSE(HasFreshKnightFork<kWhite>(2)) << row.Fen;
  }
}

TEST_F(QuiescenceTest, MoveLists) {
  for (auto &scores : HistoryTable)
    for (std::int32_t &score : scores)
      score = RandomBelow(4);
  const auto compare = [&](int ply) {
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
  };
  ForRandomPositions(3000, [&] { compare(1 + RandomBelow(7)); });
  ASSERT_TRUE(LoadFen("KQQQQQQQ/Q6Q/Q6Q/Q6Q/Q6Q/Q6Q/Q5RB/QQQQQQBk w - - 0 1"));
  SetPlainPosition();
  compare(7);
  EXPECT_EQ(QuietList[7].Count, kLevelMoveLimit);
}

TEST_F(QuiescenceTest, KillersAndHistory) {
  ClearKillers();
  StoreKiller(3, 100);
  StoreKiller(3, 100);
  EXPECT_EQ(KillerTable[3], (std::array<PackedMove, 2>{100, kNoMove}));
  StoreKiller(3, 200);
  StoreKiller(3, 100);
  EXPECT_EQ(KillerTable[3], (std::array<PackedMove, 2>{100, 200}));
  EXPECT_EQ(KillerTable[4], (std::array<PackedMove, 2>{kNoMove, kNoMove}));
  ClearHistory();
  AddHistory(kBlack, 1, 100);
  AddHistory(kBlack, 7, 100);
  EXPECT_EQ(HistoryTable[kBlack][100], 64 + 4);
  EXPECT_EQ(HistoryTable[kWhite][100], 0);
  HistoryTable[kWhite][100] = kHistoryLimit - 10;
  AddHistory(kWhite, 1, 100);
  EXPECT_EQ(HistoryTable[kWhite][100], kHistoryLimit);
}

} // namespace

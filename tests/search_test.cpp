// A whole search from outside: its answers at the edges, the table, the stop, and what it allocates.
#include <cstdlib>

#include "board/memory_block.h"
#include "board/move_text.h"
#include "board/rules.h"
#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "plain/plain_quiescence.h"
#include "quiescence/quiescence_search.h"
#include "random_positions.h"
#include "search/best_line.h"
#include "search/root_search.h"
#include "search/search_driver.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

using namespace zorvane;

// The sanitizers have these functions for themselves.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define COUNTS_ALLOCATIONS

static int Allocations;

// NOLINTBEGIN(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);

void *malloc(std::size_t size) {
  ++Allocations;
  return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size) {
  ++Allocations;
  return __libc_calloc(count, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
#endif

namespace {

constexpr char kTactical[] = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";

class SearchTest : public EngineTest {};

void Search(const char *fen, int depth) {
  ASSERT_TRUE(LoadFen(fen));
  MaxDepth = depth;
  TimeLimitSeconds = 300;
  RunSearch();
}

TEST_F(SearchTest, AnswersAtTheEdges) {
  struct {
    const char *Fen;
    int Depth;
    const char *Best;
    int Score, Completed;
  } const cases[] = {
      {"7k/6Q1/6K1/8/8/8/8/8 b - -", 3, "---", kMateValue, 0},
      {"8/8/8/8/8/6k1/6q1/7K w - -", 3, "---", -kMateValue, 0},
      {"7k/5Q2/6K1/8/8/8/8/8 b - -", 3, "---", 0, 0},
      {"6k1/8/6K1/8/8/8/8/R7 w - -", 4, "a1a8", kMateValue - 1, 1},
      {"6K1/8/6k1/8/8/8/8/r7 b - -", 4, "a1a8", 1 - kMateValue, 1},
      {"7k/8/8/6K1/8/8/8/R7 w - - 0", 5, "g5g6", kMateValue - 3, 2},
      {"8/8/8/8/8/4k3/8/4K2n w - - 99", 2, "e1d1", 0, 2},
      {"4k3/8/8/8/8/8/8/4KB2 w - -", 3, "f1b5", 0, 3},
  };
  for (const auto &row : cases) {
    SCOPED_TRACE(row.Fen);
    Search(row.Fen, row.Depth);
    EXPECT_STREQ(Result.BestMoveText.Text.data(), row.Best);
    EXPECT_EQ(Result.BestScore, row.Score);
    EXPECT_EQ(CompletedDepth, row.Completed);
  }
}

TEST_F(SearchTest, ADepthOneScoreIsTheQuiescenceOfTheBestMove) {
  ForRandomPositions(300, [] {
    const std::string fen = CurrentFen();
    Search(fen.c_str(), 1);
    if (Result.BestMove == kNoMove)
      return;
    SetPlainPosition();
    plain::Line = {};
    plain::Line.GameHistory = {plain::PositionKey(PlainSide(SideToMove))};
    plain::Line.Undo[0] = plain::Position;
    plain::MakeMove(PlainMove(Result.BestMove));
    EXPECT_EQ(Result.BestScore, plain::EnterQuiescence(PlainSide(Opposite(SideToMove)), 1, -kInfinity, kInfinity));
  });
}

TEST_F(SearchTest, TheThirdTimeIsADraw) {
  constexpr char fen[] = "8/5rrk/8/8/8/7P/7P/6BK w - - 0 1";
  Search(fen, 2);
  EXPECT_LT(Result.BestScore, -300);
  ASSERT_TRUE(LoadFen(fen));
  for (int i = 0; i < 2; ++i)
    for (const char *move : {"g1d4", "g7g8", "d4g1", "g8g7"})
      ASSERT_TRUE(ApplyUciMove(move));
  RunSearch();
  EXPECT_EQ(Result.BestScore, 0);
  EXPECT_STREQ(Result.BestMoveText.Text.data(), "g1d4");
}

TEST_F(SearchTest, TheBestLineCanBePlayed) {
  for (const char *fen : {StartFen, kTactical, "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1"}) {
    Search(fen, 5);
    EXPECT_EQ(FinalPv[0].Move, Result.BestMove);
    int length = 0;
    for (; FinalPv[static_cast<unsigned>(length)].Valid; ++length) {
      const PvEntry &entry = FinalPv[static_cast<unsigned>(length)];
      EXPECT_TRUE(entry.Key == BuildPositionKey(SideToMove));
      EXPECT_EQ(entry.Mover, PieceOn(FromOf(entry.Move)));
      ASSERT_TRUE(IsLegalMove(FromOf(entry.Move), ToOf(entry.Move)));
      PlayMove(entry.Move);
    }
    EXPECT_GE(length, 4);
  }
}

TEST_F(SearchTest, TheSamePositionAndLimitsGiveTheSameTree) {
  for (const char *fen : {StartFen, kTactical}) {
    Search(fen, 5);
    const std::int64_t nodes = Nodes;
    const SearchResult result = Result;
    for (const bool cached : {false, true}) {
      PawnCacheEnabled = cached;
      ResizeTransposition(kDefaultTableKb);
      Search(fen, 5);
      EXPECT_EQ(Nodes, nodes);
      EXPECT_EQ(Result.BestMove, result.BestMove);
      EXPECT_EQ(Result.BestScore, result.BestScore);
    }
  }
}

// What a node of White's leaves when e5d7 was its best move.
void ProbeAndStore(int ply, Side prober = kWhite) {
  ProbeTransposition(ply, prober);
  PvClearFrom(ply + 1);
  PvStore(ply, kWhite, 28, 11);
  StoreTransposition(ply);
}

TEST_F(SearchTest, TheTableKeepsOneMoveForEachBoard) {
  ASSERT_TRUE(LoadFen(kTactical));
  SearchAborted = false;
  for (int ply = 0; ply <= 7; ++ply) {
    ResizeTransposition(512);
    ASSERT_EQ(TranspositionSlots, 4096);
    ASSERT_EQ(StoredMove(SlotIndex()), 0);
    ProbeAndStore(ply);
    Evaluate();
    EXPECT_EQ(ProbeTransposition(ply, kWhite), PackMove(28, 11)) << "the position's own evaluation leaves its move";
    EXPECT_EQ(ProbeTransposition(ply, kBlack), kNoMove);
    ProbeAndStore(ply, kBlack); // takes the slot over, with a move that is none of Black's
    EXPECT_EQ(ProbeTransposition(ply, kWhite), kNoMove);
    EXPECT_EQ(ProbeTransposition(ply, kBlack), kNoMove);
    EXPECT_NE(StoredMove(SlotIndex()), 0);
    Evaluate();
    EXPECT_EQ(StoredMove(SlotIndex()), 0) << "the other side's move goes with its key";
  }
  ResizeTransposition(1024);
  ProbeTransposition(1, kWhite);
  ResizeTransposition(1024);
  StoreTransposition(1);
  EXPECT_EQ(StoredMove(SlotIndex()), 0) << "the table has changed since the probe";
  SearchAborted = true;
  ProbeAndStore(1);
  SearchAborted = UseTranspositionMoves = false;
  ProbeAndStore(1);
  EXPECT_EQ(StoredMove(SlotIndex()), 0);
  ResizeTransposition(7);
  EXPECT_EQ(TranspositionSlots, 8192);
}

TEST_F(SearchTest, StopAndDeadline) {
  SearchAborted = DeadlineArmed = false;
  Deadline = ProgramClock() - 1;
  EXPECT_FALSE(ShouldStop()) << "no deadline counts before it is armed";
  DeadlineArmed = true;
  EXPECT_TRUE(ShouldStop());
  Deadline += 1e9;
  EXPECT_TRUE(ShouldStop()) << "once it has said yes it keeps saying so";
  SearchAborted = false;
  EXPECT_FALSE(ShouldStop());
  DeadlineArmed = false;
  StopFlag = 1;
  EXPECT_TRUE(ShouldStop() && SearchAborted);

  Search(kTactical, 3); // with the stop already set: the first legal move and the evaluation
  EXPECT_EQ(Result.BestMove, LegalMoveList(kWhite).front());
  EXPECT_EQ(Result.BestScore, ComputeEvaluation());
  EXPECT_EQ(CompletedDepth + Nodes, 0);

  StopFlag = 0;
  MaxDepth = kDepthLimit;
  TimeLimitSeconds = 0.02; // cut off in the middle of an iteration
  const BoardState before = Position;
  RunSearch();
  EXPECT_LT(CompletedDepth, kDepthLimit);
  EXPECT_TRUE(IsLegalMove(FromOf(Result.BestMove), ToOf(Result.BestMove)));
  EXPECT_TRUE(Position.Board == before.Board);
}

#ifdef COUNTS_ALLOCATIONS
TEST_F(SearchTest, AllocatesNothingButThePawnCache) {
  ASSERT_TRUE(LoadFen(kTactical));
  MaxDepth = 4;
  AllocateBlock(kPawnCacheBlock, 0);
  for (const int expected : {1, 0}) {
    const int before = Allocations;
    RunSearch();
    EXPECT_EQ(Allocations - before, expected);
  }
  const int before = Allocations;
  void *volatile block = std::malloc(1); // volatile: else compilers leave the pair out
  std::free(block);
  EXPECT_EQ(Allocations - before, 1) << "the count must work";
}
#endif

} // namespace

// A search from inside: its scores, the table, the stop, and what it allocates.
#include <cstdlib>

#include "board/memory_block.h"
#include "board/rules.h"
#include "engine_test.h"
#include "evaluation/evaluate.h"
#include "evaluation/pawn_structure.h"
#include "frontend/search_thread.h"
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

// Side to move, words behind "go", and the limits that the search gets.
TEST_F(SearchTest, LimitsOfGo) {
  for (const auto &row : ReadTable("go_limits.tsv")) {
    SCOPED_TRACE(row[0] + " go" + row[1]);
    ASSERT_TRUE(LoadFen(("7k/5Q2/8/6K1/8/8/8/8 " + row[0] + " - -").c_str()));
    StartSearchThread(("go" + row[1]).c_str());
    StopSearchThread();
    EXPECT_EQ(MaxDepth, std::stoi(row[2]));
    EXPECT_NEAR(TimeLimitSeconds, std::stod(row[3]), 1e-9);
  }
}

#ifdef COUNTS_ALLOCATIONS
TEST_F(SearchTest, AllocatesNothingButThePawnCache) {
  ASSERT_TRUE(LoadFen(kTactical));
  MaxDepth = 4;
  AllocateBlock(kPawnCacheBlock, 0);
  for (const auto &[cached, expected] : {std::pair{false, 0}, std::pair{true, 1}, std::pair{true, 0}}) {
    PawnCacheEnabled = cached;
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

// A search from inside: its scores, the table, the stop, and what it allocates.
#include <cstdlib>

#include "board/fen.h"
#include "board/memory_block.h"
#include "board/rules.h"
#include "engine_test.h"
#include "evaluation/evaluate.h"
#include "frontend/go_command.h"
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
  RunSearch({depth, 300});
}

// What a node of White's leaves when e5d7 was its best move.
void ProbeAndStore(int ply, Side prober = kWhite) {
  ProbeTransposition(ply, prober);
  StoreTransposition(ply, PackMove(28, 11));
}

TEST_F(SearchTest, TheTableKeepsOneMoveForEachBoard) {
  ASSERT_TRUE(LoadFen(kTactical));
  for (int ply = 0; ply <= 7; ++ply) {
    ResizeTransposition(512);
    ASSERT_EQ(StoredMove(SlotIndex()), 0);
    ProbeAndStore(ply);
    DisplaceOtherPosition();
    EXPECT_EQ(ProbeTransposition(ply, kWhite), PackMove(28, 11)) << "the position's own evaluation leaves its move";
    EXPECT_EQ(ProbeTransposition(ply, kBlack), kNoMove);
    ProbeAndStore(ply, kBlack); // takes the slot over
    EXPECT_EQ(ProbeTransposition(ply, kWhite), kNoMove);
    EXPECT_NE(StoredMove(SlotIndex()), 0);
    DisplaceOtherPosition();
    EXPECT_EQ(StoredMove(SlotIndex()), 0) << "the other side's move goes with its key";
  }
  EnableTranspositionMoves(false);
  ProbeAndStore(1);
  EXPECT_EQ(StoredMove(SlotIndex()), 0);
  EnableTranspositionMoves(true);
  ProbeTransposition(1, kWhite);
  RequestStop();
  ASSERT_TRUE(ShouldStop());
  StoreTransposition(1, PackMove(28, 11));
  EXPECT_EQ(StoredMove(SlotIndex()), 0) << "nothing is stored once the search is aborted";
  ResizeTransposition(7);
  EXPECT_EQ(TranspositionSlots, 4096);
}

TEST_F(SearchTest, StopAndDeadline) {
  ArmDeadline(ProgramClock() - 1);
  DisarmDeadline();
  EXPECT_FALSE(ShouldStop()) << "no deadline counts before it is armed";
  ArmDeadline(ProgramClock() - 1);
  EXPECT_TRUE(ShouldStop());
  ArmDeadline(ProgramClock() + 1e9);
  EXPECT_TRUE(ShouldStop()) << "once it has said yes it keeps saying so";
  ResetStopControl();
  EXPECT_FALSE(ShouldStop());
  RequestStop();
  EXPECT_TRUE(ShouldStop() && SearchAborted);

  Search(kTactical, 3); // with the stop already set: the first legal move and the evaluation
  EXPECT_EQ(Result().BestMove, LegalMoveList(kWhite).front());
  EXPECT_EQ(Result().BestScore, Evaluate());
  EXPECT_EQ(Result().CompletedDepth + Result().Nodes, 0);

  ClearStopRequest();
  const BoardState before = Position;
  RunSearch({kDepthLimit, 0.02}); // cut off in the middle of an iteration
  EXPECT_LT(Result().CompletedDepth, kDepthLimit);
  EXPECT_TRUE(IsLegalMove(FromOf(Result().BestMove), ToOf(Result().BestMove)));
  EXPECT_TRUE(SameState(Position, before));
}

// A search that ends within its first iteration, which takes some 700,000 nodes here and 100,000
// for its first move, gives the best move so far.
TEST_F(SearchTest, TheBestMoveOfAFirstIterationCutOff) {
  ASSERT_TRUE(LoadFen("r1q1k1qr/1q1q1q1q/q1q2q1q/8/8/Q1Q2Q1Q/1Q1Q1Q1Q/R1Q1K1QR w KQkq - 0 1"));
  double seconds = 0.001;
  do {
    seconds = seconds > 100 ? 0.001 : 1.5 * seconds; // from the start again after a hold-up
    RunSearch({1, seconds});
  } while (Result().CompletedDepth > 0 || Result().Nodes < 200000);
  EXPECT_GT(Result().BestScore, Evaluate());
}

// Side to move, words behind "go", and the limits that the search gets.
TEST_F(SearchTest, LimitsOfGo) {
  for (const auto &row : ReadTable("go_limits.tsv")) {
    SCOPED_TRACE(row[0] + " go" + row[1]);
    ASSERT_TRUE(LoadFen(("7k/5Q2/8/6K1/8/8/8/8 " + row[0] + " - -").c_str()));
    const SearchLimits limits = ReadGoCommand(("go" + row[1]).c_str()).Limits;
    EXPECT_EQ(limits.MaxDepth, std::stoi(row[2]));
    EXPECT_NEAR(limits.TimeLimitSeconds, std::stod(row[3]), 1e-9);
  }
}

#ifdef COUNTS_ALLOCATIONS
TEST_F(SearchTest, AllocatesNothingButThePawnCache) {
  ASSERT_TRUE(LoadFen(kTactical));
  AllocateBlock(kPawnCacheBlock, 0);
  for (const auto &[cached, expected] : {std::pair{false, 0}, std::pair{true, 1}, std::pair{true, 0}}) {
    SearchOptions options;
    options.PawnCacheEnabled = cached;
    const int before = Allocations;
    RunSearch({4, 300}, options);
    EXPECT_EQ(Allocations - before, expected);
  }
  const int before = Allocations;
  void *volatile block = std::malloc(1); // volatile: else compilers leave the pair out
  std::free(block);
  EXPECT_EQ(Allocations - before, 1) << "the count must work";
}
#endif

} // namespace

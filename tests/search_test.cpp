// The search from inside: scores, table, stopping, and what it allocates.
#include <cstdlib>
#include <utility>

#include "base/memory_block.h"
#include "base/program_clock.h"
#include "board/fen.h"
#include "board/rules.h"
#include "engine_test.h"
#include "evaluation/evaluate.h"
#include "frontend/go_command.h"
#include "search/best_line.h"
#include "search/search_driver.h"
#include "search/search_levels.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

using namespace zorvane;

// The sanitizers replace these functions themselves.
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

// What a White node does to the table if e5d7 is its best move.
void ProbeAndStore(int ply, Side prober = kWhite) {
  ProbeTransposition(prober, ply);
  StoreTransposition(ply, PackMove(28, 11));
}

TEST_F(SearchTest, TheTableKeepsOneMoveForEachBoard) {
  ASSERT_TRUE(LoadFen(kTactical));
  for (int ply = 0; ply <= 7; ++ply) {
    ResizeTransposition(512);
    ASSERT_FALSE(IsFilled(SlotIndex()));
    ProbeAndStore(ply);
    DisplaceOtherPosition();
    EXPECT_EQ(ProbeTransposition(kWhite, ply), PackMove(28, 11)) << "the position's own evaluation leaves its move";
    EXPECT_EQ(ProbeTransposition(kBlack, ply), kNoMove);
    ProbeAndStore(ply, kBlack); // takes the slot over
    EXPECT_EQ(ProbeTransposition(kWhite, ply), kNoMove);
    EXPECT_TRUE(IsFilled(SlotIndex()));
    DisplaceOtherPosition();
    EXPECT_FALSE(IsFilled(SlotIndex())) << "the other side's move goes with its key";
  }
  EnableTranspositionMoves(false);
  ProbeAndStore(1);
  EXPECT_FALSE(IsFilled(SlotIndex()));
  EnableTranspositionMoves(true);
  ProbeTransposition(kWhite, 1);
  RequestStop();
  ASSERT_TRUE(ShouldStop());
  StoreTransposition(1, PackMove(28, 11));
  EXPECT_FALSE(IsFilled(SlotIndex())) << "nothing is stored once the search is aborted";
  ResizeTransposition(7);
  EXPECT_EQ(TranspositionSlots, 4096);
}

TEST_F(SearchTest, AnAccessBeyondABlockEndsTheProcess) {
  const std::size_t length = BlockOf(kTranspositionBlock).Length;
  EXPECT_EXIT(RecordAt<std::uint16_t>(kTranspositionBlock, length - 1), testing::ExitedWithCode(2),
              "^memory bounds 905 " + std::to_string(length - 1) + " 2\n$");
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

  ASSERT_TRUE(LoadFen(kTactical));
  SearchResult result = RunSearch({3, kLongestTimeMs}, {}); // the first legal move and the evaluation
  EXPECT_EQ(result.BestMove, LegalMoveList(kWhite).front());
  EXPECT_EQ(result.BestScore, Evaluate());
  EXPECT_EQ(result.CompletedDepth + result.Nodes, 0);

  ClearStopRequest();
  const BoardState before = Board;
  result = RunSearch({kDepthLimit, 20}, {}); // stopped in the middle of an iteration
  EXPECT_LT(result.CompletedDepth, kDepthLimit);
  EXPECT_TRUE(IsLegalMove(FromOf(result.BestMove), ToOf(result.BestMove)));
  EXPECT_TRUE(SameState(Board, before));
}

// After the test that says yes, no node asks again.
TEST_F(SearchTest, AStopEndsEveryNodeAtOnce) {
  ASSERT_TRUE(LoadFen(kTactical));
  RequestStop();
  ASSERT_TRUE(PollNow());
  const int untouched = NodesToStopTest;
  EXPECT_LE(untouched, 1000) << "so many nodes more than wanted";
  for (int nodes = 1; nodes < 20000; nodes += 997) {
    ResetStopControl();
    NodesToStopTest = nodes;
    SearchLevels(kWhite, 5, -kInfinity, kInfinity);
    ASSERT_EQ(NodesToStopTest, untouched) << nodes;
  }
}

// The position is evaluated even if nothing is searched, unless it has no moves and the search is stopped.
TEST_F(SearchTest, ASearchWithoutNodesDisplacesAllTheSame) {
  constexpr char mated[] = "rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq - 1 3";
  for (const auto &[fen, stopped] : {std::pair{kTactical, true}, {mated, true}, {mated, false}}) {
    SetUp();
    ASSERT_TRUE(LoadFen(fen));
    ProbeAndStore(0, kBlack);
    if (stopped)
      RequestStop();
    RunSearch({1, kLongestTimeMs}, {});
    EXPECT_EQ(IsFilled(SlotIndex()), fen != kTactical && stopped);
  }
}

TEST_F(SearchTest, TheKeptLine) {
  ASSERT_TRUE(LoadFen(kTactical));
  StoreLine(kWhite, 1, 28, 11);
  StoreLine(kWhite, 0, 28, 11);
  KeepLine();
  EXPECT_EQ(KeptMove(kWhite, 1), PackMove(28, 11));
  EXPECT_EQ(KeptMove(kBlack, 1), kNoMove);
  ClearLine(1);
  StoreLine(kWhite, 0, 28, 11);
  KeepLine();
  EXPECT_EQ(KeptMove(kWhite, 1), kNoMove) << "the line has become shorter";
  EXPECT_EQ(KeptLine()[1].Move, PackMove(28, 11));
  RequestStop();
  EXPECT_FALSE(RunSearch({1, kLongestTimeMs}, {}).Line[0].Valid) << "a new search has no line yet";
}

// A search stopped in its first iteration, which takes about 700,000 nodes here, 100,000 of them for the first move,
// returns the best move so far.
TEST_F(SearchTest, TheBestMoveOfAFirstIterationCutOff) {
  ASSERT_TRUE(LoadFen("r1q1k1qr/1q1q1q1q/q1q2q1q/8/8/Q1Q2Q1Q/1Q1Q1Q1Q/R1Q1K1QR w KQkq - 0 1"));
  double timeMs = 1;
  SearchResult result;
  do {
    timeMs = timeMs > 100000 ? 1 : 1.5 * timeMs; // start again after a delay
    result = RunSearch({1, timeMs}, {});
  } while (result.CompletedDepth > 0 || result.Nodes < 200000);
  EXPECT_GT(result.BestScore, Evaluate());
}

// Each row has the side to move, the words after "go", and the resulting limits.
TEST_F(SearchTest, LimitsOfGo) {
  for (const auto &row : ReadTable("go_limits.tsv")) {
    SCOPED_TRACE(row[0] + " go" + row[1]);
    ASSERT_TRUE(LoadFen(("7k/5Q2/8/6K1/8/8/8/8 " + row[0] + " - -").c_str()));
    const SearchLimits limits = ReadGoCommand(("go" + row[1]).c_str()).Limits;
    EXPECT_EQ(limits.MaxDepth, std::stoi(row[2]));
    EXPECT_NEAR(limits.TimeMs, std::stod(row[3]), 1e-6);
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
    RunSearch({4, kLongestTimeMs}, options);
    EXPECT_EQ(Allocations - before, expected);
  }
  const int before = Allocations;
  void *volatile block = std::malloc(1); // volatile, or compilers remove the pair
  std::free(block);
  EXPECT_EQ(Allocations - before, 1) << "the count must work";
}
#endif

} // namespace

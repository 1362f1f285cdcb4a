// The rules: the fast ways against the slow ones of the engine itself, every field that a move keeps, and FEN.
#include <algorithm>
#include <numeric>

#include "board/fen.h"
#include "board/legal_moves.h"
#include "board/move_text.h"
#include "board/perft.h"
#include "board/position_key.h"
#include "board/rules.h"
#include "engine_test.h"
#include "quiescence/check_squares.h"

using namespace zorvane;

namespace {

class RulesTest : public EngineTest {};

// Move sets by pins and checkers against the test of each pair of squares.
TEST_F(RulesTest, LegalMoves) {
  ForEachPosition([] {
    for (const Side side : {kWhite, kBlack}) {
      std::vector<PackedMove> moves;
      for (PackedMove move = 0; move < kPackedMoves; ++move)
        if (IsLegalMoveOf(side, move))
          moves.push_back(move);
      EXPECT_EQ(LegalMoveList(side), moves);
      MoveSets sets;
      GenerateLegalMoves(sets, side);
      EXPECT_EQ(CountMoves(sets), static_cast<int>(moves.size()));
      EXPECT_EQ(HasLegalMove(side), !moves.empty());
      SideToMove = side;
      EXPECT_EQ(Perft(1), std::accumulate(moves.begin(), moves.end(), 0U, [](unsigned sum, PackedMove move) {
                  return sum + (TypeOf(PieceOn(FromOf(move))) == kPawn && Contains(kLastRows, ToOf(move)) ? 4 : 1);
                }));
    }
  });
}

// Which moves give check: at one look against trying each.
template <Side Us> void CompareChecks() {
  if (IsInCheck(Opposite(Us)))
    return;
  const CheckSquares checks = FindCheckSquares<Us>();
  for (const PackedMove move : LegalMoveList(Us)) {
    const int from = FromOf(move);
    const int to = ToOf(move);
    const PieceType type = TypeOf(PieceOn(from));
    const bool compound = (type == kPawn && (Contains(kLastRows, to) || IsEnPassantMove(from, to))) ||
                          (type == kKing && Absolute(from - to) == 2);
    if (!compound) {
      EXPECT_EQ(Contains(CheckingTargetsOf(checks, from, type), to), MoveGivesCheck(3, from, to)) << from << ' ' << to;
    }
  }
}

TEST_F(RulesTest, Checks) {
  ForEachPosition([] {
    CompareChecks<kWhite>();
    CompareChecks<kBlack>();
  });
}

// The board hash as it is defined, square by square.
std::uint64_t SlowBoardHash() {
  std::uint64_t hash = 0;
  for (int square = 0; square < kSquares; ++square)
    hash = (hash * 131 + static_cast<unsigned>(PieceCode(PieceOn(square))) + 1) % 2147483647;
  return hash;
}

// What MakeMove keeps step by step, against the same board put together afresh.
TEST_F(RulesTest, EveryMoveKeepsTheSums) {
  ForEachPosition([] {
    for (const PackedMove move : LegalMoveList(SideToMove)) {
      SaveState(5);
      MakeMove(FromOf(move), ToOf(move));
      const BoardState made = Position;
      Position = {};
      for (int square = 0; square < kSquares; ++square)
        if (const Piece piece = made.Board[square]; piece != kNoPiece)
          PutPiece(square, piece);
      Position.HalfmoveClock = made.HalfmoveClock;
      Position.MovedFlags = made.MovedFlags;
      Position.EnPassantSquare = made.EnPassantSquare;
      EXPECT_TRUE(SameState(Position, made)) << FromOf(move) << ' ' << ToOf(move);
      EXPECT_EQ(BoardHash(), SlowBoardHash()) << FromOf(move) << ' ' << ToOf(move);
      RestoreState(5);
    }
  });
}

TEST_F(RulesTest, MovesByHand) {
  for (const auto &row : ReadTable("moves.tsv")) {
    SCOPED_TRACE(row[0] + " " + row[1]);
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    EXPECT_EQ(ApplyUciMove(row[1].c_str()), row[2] != "-");
    if (row[2] != "-") {
      EXPECT_EQ(CurrentFen() + " " + std::to_string(Position.MovedFlags), row[2]);
    }
  }
}

TEST_F(RulesTest, FenTakenOverOrRefused) {
  for (const auto &row : ReadTable("fens.tsv")) {
    SCOPED_TRACE(row[0]);
    ASSERT_TRUE(LoadFen("r3k2r/8/8/8/8/8/8/R3K2R b Kq e3 5 7"));
    const BoardState before = Position;
    if (row[1] == "-") {
      EXPECT_FALSE(LoadFen(row[0].c_str()));
      EXPECT_TRUE(SameState(Position, before) && SideToMove == kBlack && GamePly == 13);
    } else {
      EXPECT_TRUE(LoadFen(row[0].c_str()));
      EXPECT_EQ(CurrentFen(), row[1]);
      EXPECT_EQ(std::to_string(GamePly), row[2]);
      EXPECT_EQ(std::to_string(Position.MovedFlags), row[3]);
    }
    EXPECT_EQ(GameHistoryCount, 1);
  }
}

// Two positions in each row, and whether they are the same one.
TEST_F(RulesTest, SamePosition) {
  for (const auto &row : ReadTable("keys.tsv")) {
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    const PositionKey key = BuildPositionKey(SideToMove);
    ASSERT_TRUE(LoadFen(row[1].c_str()));
    EXPECT_EQ(BuildPositionKey(SideToMove) == key, row[2] == "same") << row[0] << " and " << row[1];
  }
}

// Mostly the way back of the move before the last, so that positions come again.
PackedMove WaveringMove(const std::vector<PackedMove> &played) {
  const PackedMove mine = played.size() < 2 ? kNoMove : played[played.size() - 2];
  if (mine != kNoMove && RandomBelow(8) != 0 && IsLegalMoveOf(SideToMove, PackMove(ToOf(mine), FromOf(mine))))
    return PackMove(ToOf(mine), FromOf(mine));
  return RandomMove();
}

// On a search line below the game: as often as the key has been there.
void CompareCountsOnALine(std::vector<PositionKey> keys, std::vector<PackedMove> played) {
  for (int ply = 1; ply < kUndoSlots; ++ply) {
    const PackedMove move = WaveringMove(played);
    if (move == kNoMove)
      break;
    PlayFrom(ply - 1, move);
    const PositionKey key = BuildPositionKey(SideToMove);
    const auto expected = static_cast<int>(std::count(keys.begin(), keys.end(), key));
    EXPECT_EQ(CountEqualPositions(SideToMove, ply), expected);
    for (const int atLeast : {1, 2})
      EXPECT_EQ(CountRepetitions(SideToMove, ply, atLeast) >= atLeast, expected >= atLeast);
    keys.push_back(key);
    played.push_back(move);
  }
}

TEST_F(RulesTest, RepetitionsInTheGameAndOnTheLine) {
  for (const auto &row : ReadTable("positions.tsv")) {
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    std::vector<PositionKey> keys{BuildPositionKey(SideToMove)};
    for (std::vector<PackedMove> played; played.size() < 60 && RandomMove() != kNoMove;) {
      const BoardState root = Position;
      const Side side = SideToMove;
      CompareCountsOnALine(keys, played);
      Position = root;
      SideToMove = side;
      played.push_back(WaveringMove(played));
      BoundedString text;
      MoveText(text, PieceOn(FromOf(played.back())), FromOf(played.back()), ToOf(played.back()));
      ASSERT_TRUE(ApplyUciMove(text.Text.data()));
      keys.push_back(BuildPositionKey(SideToMove));
    }
    ASSERT_FALSE(HasFailure()) << row[0];
  }
}

TEST_F(RulesTest, AFullHistoryTakesNoFurtherPosition) {
  constexpr const char *shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
  for (int i = 0; i < 1050; ++i)
    ASSERT_TRUE(ApplyUciMove(shuffle[i % 4]));
  EXPECT_EQ(GameHistoryCount, 1001);
  EXPECT_EQ(GamePly, 1050);
  EXPECT_EQ(CountRepetitions(kWhite, 1, 2), 250);
  EXPECT_EQ(CountRepetitions(kBlack, 1, 2), 0);
  ASSERT_TRUE(ApplyUciMove("e2e4"));
  EXPECT_EQ(CountEqualPositions(kBlack, 1), 0);
}

} // namespace

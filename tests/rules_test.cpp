// The rules: the engine's fast code against its slow code, every field that a move updates, and FEN.
#include <algorithm>
#include <numeric>

#include "board/check_squares.h"
#include "board/fen.h"
#include "board/legal_moves.h"
#include "board/move_text.h"
#include "board/perft.h"
#include "board/position_key.h"
#include "board/rules.h"
#include "engine_test.h"

using namespace zorvane;

namespace {

class RulesTest : public EngineTest {};

// Move sets from pins and checkers against IsLegalMove for each pair of squares.
TEST_F(RulesTest, LegalMoves) {
  ForEachPosition([] {
    for (const Side side : {kWhite, kBlack}) {
      std::vector<PackedMove> moves;
      for (PackedMove move = 0; move < kPackedMoves; ++move)
        if (IsLegalMoveFor(side, move))
          moves.push_back(move);
      EXPECT_EQ(LegalMoveList(side), moves);
      MoveSets sets;
      GenerateLegalMoves(sets, side);
      EXPECT_EQ(CountMoves(sets), static_cast<int>(moves.size()));
      EXPECT_EQ(HasLegalMove(side), !moves.empty());
      SideToMove = side;
      EXPECT_EQ(Perft(1), std::accumulate(moves.begin(), moves.end(), 0U, [](unsigned sum, PackedMove move) {
                  return sum + (TypeOf(PieceOn(FromOf(move))) == kPawn && Contains(kPromotionRows, ToOf(move)) ? 4 : 1);
                }));
    }
  });
}

// Which moves give check: CheckSquares against trying each move.
template <Side Us> void CompareChecks() {
  if (IsInCheck(Opposite(Us)))
    return;
  const CheckSquares checks = FindCheckSquares<Us>();
  for (const PackedMove move : LegalMoveList(Us)) {
    const int from = FromOf(move);
    const int to = ToOf(move);
    const PieceType type = TypeOf(PieceOn(from));
    const bool compound = (type == kPawn && (Contains(kPromotionRows, to) || IsEnPassantMove(from, to))) ||
                          (type == kKing && Absolute(from - to) == 2);
    if (!compound) {
      EXPECT_EQ(Contains(CheckingTargets(checks, from, type), to), MoveGivesCheck(from, to)) << from << ' ' << to;
    }
  }
}

TEST_F(RulesTest, Checks) {
  ForEachPosition([] {
    CompareChecks<kWhite>();
    CompareChecks<kBlack>();
  });
}

// The board hash by its definition, square by square.
std::uint64_t SlowBoardHash() {
  std::uint64_t hash = 0;
  for (int square = 0; square < kSquares; ++square)
    hash = (hash * 131 + static_cast<unsigned>(PieceCode(PieceOn(square))) + 1) % 2147483647;
  return hash;
}

// The fields that MakeMove updates, against the same board set up from scratch.
TEST_F(RulesTest, EveryMoveKeepsTheSums) {
  ForEachPosition([] {
    for (const PackedMove move : LegalMoveList(SideToMove)) {
      SaveState(5);
      MakeMove(FromOf(move), ToOf(move));
      const BoardState made = Board;
      Board = {};
      for (int square = 0; square < kSquares; ++square)
        if (const Piece piece = made.Squares[square]; piece != kNoPiece)
          PutPiece(square, piece);
      Board.HalfmoveClock = made.HalfmoveClock;
      Board.MovedFlags = made.MovedFlags;
      Board.EnPassantSquare = made.EnPassantSquare;
      EXPECT_TRUE(SameState(Board, made)) << FromOf(move) << ' ' << ToOf(move);
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
      EXPECT_EQ(CurrentFen() + " " + std::to_string(Board.MovedFlags), row[2]);
    }
  }
}

TEST_F(RulesTest, FenTakenOverOrRefused) {
  for (const auto &row : ReadTable("fens.tsv")) {
    SCOPED_TRACE(row[0]);
    ASSERT_TRUE(LoadFen("r3k2r/8/8/8/8/8/8/R3K2R b Kq e3 5 7"));
    const BoardState before = Board;
    if (row[1] == "-") {
      EXPECT_FALSE(LoadFen(row[0].c_str()));
      EXPECT_TRUE(SameState(Board, before) && SideToMove == kBlack && GamePly == 13);
    } else {
      EXPECT_TRUE(LoadFen(row[0].c_str()));
      EXPECT_EQ(CurrentFen(), row[1]);
      EXPECT_EQ(std::to_string(GamePly), row[2]);
      EXPECT_EQ(std::to_string(Board.MovedFlags), row[3]);
    }
    EXPECT_EQ(GameHistoryCount(), 1);
  }
}

// Each row has two positions and whether they are the same.
TEST_F(RulesTest, SamePosition) {
  for (const auto &row : ReadTable("keys.tsv")) {
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    const PositionKey key = BuildPositionKey(SideToMove);
    ASSERT_TRUE(LoadFen(row[1].c_str()));
    EXPECT_EQ(BuildPositionKey(SideToMove) == key, row[2] == "same") << row[0] << " and " << row[1];
  }
}

// The side's own move, so many of its moves ago; kNoMove if there is none.
PackedMove OwnMove(const std::vector<PackedMove> &played, size_t ago) {
  return played.size() < 2 * ago ? kNoMove : played[played.size() - 2 * ago];
}

// Mostly moves a piece back to where it was one or two own moves ago, so that positions recur after four or six plies.
PackedMove WaveringMove(const std::vector<PackedMove> &played) {
  const PackedMove last = OwnMove(played, 1);
  const PackedMove before = OwnMove(played, 2);
  if (last == kNoMove || RandomBelow(8) == 0)
    return RandomMove();
  const bool sameMover = before != kNoMove && ToOf(before) == FromOf(last);
  for (const PackedMove back :
       {sameMover ? PackMove(ToOf(last), FromOf(before)) : kNoMove, PackMove(ToOf(last), FromOf(last))})
    if (back != kNoMove && FromOf(back) != ToOf(back) && RandomBelow(4) != 0 && IsLegalMoveFor(SideToMove, back))
      return back;
  const std::vector<PackedMove> moves = LegalMoveList(SideToMove);
  const auto again =
      std::find_if(moves.begin(), moves.end(), [&](PackedMove move) { return FromOf(move) == ToOf(last); });
  return again != moves.end() ? *again : RandomMove();
}

// On a search line after a game: a position has occurred as often as its key.
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

// After a double step the same board comes again as another position if a pawn could take en passant.
TEST_F(RulesTest, ADoubleStepOnTheLine) {
  for (const auto &[fen, count] : {std::pair{"4k3/8/8/8/1p6/8/P7/4K3 w - -", 0}, {"4k3/8/8/8/2p5/8/P7/4K3 w - -", 1}}) {
    ASSERT_TRUE(LoadFen(fen));
    int ply = 0;
    for (const char *move : {"a2a4", "e8d8", "e1d1", "d8e8", "d1e1"})
      PlayFrom(ply++, MoveOfText(move));
    EXPECT_EQ(CountEqualPositions(kBlack, ply), count);
  }
}

TEST_F(RulesTest, RepetitionsInTheGameAndOnTheLine) {
  for (const auto &row : ReadTable("positions.tsv")) {
    ASSERT_TRUE(LoadFen(row[0].c_str()));
    std::vector<PositionKey> keys{BuildPositionKey(SideToMove)};
    for (std::vector<PackedMove> played; played.size() < 60 && RandomMove() != kNoMove;) {
      const BoardState root = Board;
      const Side side = SideToMove;
      CompareCountsOnALine(keys, played);
      Board = root;
      SideToMove = side;
      played.push_back(WaveringMove(played));
      const MoveChars text = MoveText(PieceOn(FromOf(played.back())), FromOf(played.back()), ToOf(played.back()));
      ASSERT_TRUE(ApplyUciMove(text.data()));
      keys.push_back(BuildPositionKey(SideToMove));
    }
    ASSERT_FALSE(HasFailure()) << row[0];
  }
}

TEST_F(RulesTest, AFullHistoryTakesNoFurtherPosition) {
  constexpr const char *shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
  for (int i = 0; i < 1050; ++i)
    ASSERT_TRUE(ApplyUciMove(shuffle[i % 4]));
  EXPECT_EQ(GameHistoryCount(), 1001);
  EXPECT_EQ(GamePly, 1050);
  EXPECT_EQ(CountRepetitions(kWhite, 1, 2), 250);
  EXPECT_EQ(CountRepetitions(kBlack, 1, 2), 0);
  ASSERT_TRUE(ApplyUciMove("e2e4"));
  EXPECT_EQ(CountEqualPositions(kBlack, 1), 0);
}

} // namespace

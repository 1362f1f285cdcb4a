// What counts as the same position, and how often it has been there.
#include <map>

#include "board/move_text.h"
#include "board/position_key.h"
#include "board/rules.h"
#include "random_positions.h"
#include "search/search_driver.h"

using namespace zorvane;

namespace {

class PositionKeyTest : public EngineTest {};

TEST_F(PositionKeyTest, EqualKeysAreEqualTexts) {
  std::map<std::string, PositionKey> keys;
  int known = 0;
  const auto compare = [&](Side side) {
    const PositionKey key = BuildPositionKey(side);
    const auto [entry, isNew] = keys.emplace(plain::PositionKey(PlainSide(side)), key);
    EXPECT_TRUE(entry->second == key) << entry->first;
    known += !isNew;
    for (const auto &[text, other] : keys)
      EXPECT_EQ(other == key, text == entry->first) << text;
  };
  ForRandomPositions(800, [&] {
    compare(kWhite);
    compare(kBlack);
    Position.EnPassantSquare = kNoSquare;
    SetPlainPosition();
    compare(SideToMove); // the same position, unless the target could be taken
    ++Position.HalfmoveClock;
    compare(SideToMove);
    Position.MovedFlags ^= static_cast<std::uint8_t>(1 << RandomBelow(6));
    Position.EnPassantSquare = static_cast<std::uint8_t>(RandomBelow(2) != 0 ? kNoSquare : 16 + RandomBelow(32));
    SetPlainPosition();
    compare(SideToMove);
  });
  EXPECT_GT(known, 800);
}

// Mostly the way back of the move before the last, so that positions come again; bare kings wander, so that they come
// again after any number of moves.
PackedMove WaveringMove(const std::vector<PackedMove> &played) {
  const PackedMove mine = played.size() < 2 ? kNoMove : played[played.size() - 2];
  if (mine != kNoMove && CountSquares(Occupied()) > 2 && RandomBelow(8) != 0 &&
      Contains(Position.BySide[SideToMove], ToOf(mine)) && IsLegalMove(ToOf(mine), FromOf(mine)))
    return PackMove(ToOf(mine), FromOf(mine));
  return RandomMove();
}

// On the search line below the game: the exact count wherever it is as high as asked for.
void CompareCountsOnALine(std::vector<PackedMove> played) {
  const BoardState root = Position;
  const Side rootSide = SideToMove;
  for (CurrentDepth = 0; CurrentDepth < 11;) {
    const PackedMove move = WaveringMove(played);
    if (move == kNoMove)
      break;
    played.push_back(move);
    const int expected = Descend(move);
    for (const int atLeast : {1, 2}) {
      const int count = CountRepetitions(SideToMove, CurrentDepth, atLeast);
      EXPECT_TRUE(expected >= atLeast ? count == expected : count < atLeast) << count << ' ' << expected;
    }
  }
  Position = root;
  SideToMove = rootSide;
  SetPlainPosition();
}

TEST_F(PositionKeyTest, RepetitionsInGamesAndLines) {
  for (const char *fen : {StartFen, "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6 0 1", "8/8/8/3k4/8/8/3QK3/8 b - - 30 40",
                          "k7/8/8/8/8/8/8/7K w - -", "4k3/2n2b2/8/2P1P3/8/1N4N1/P6p/4K3 w - - 0 1"}) {
    ASSERT_TRUE(LoadFen(fen));
    BeginLine();
    std::vector<PackedMove> played;
    for (int i = 0; i < 400 && RandomMove() != kNoMove; ++i) {
      CompareCountsOnALine(played);
      const PackedMove move = WaveringMove(played);
      played.push_back(move);
      BoundedString text;
      MoveText(text, PieceOn(FromOf(move)), FromOf(move), ToOf(move));
      PlayInGame(text.Text.data());
    }
    ASSERT_FALSE(HasFailure()) << fen;
  }
}

TEST_F(PositionKeyTest, AFullHistoryTakesNoFurtherPosition) {
  constexpr const char *shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
  for (int i = 0; i < 1050; ++i)
    ASSERT_TRUE(ApplyUciMove(shuffle[i % 4]));
  EXPECT_EQ(GameHistoryCount, 1001);
  EXPECT_EQ(GamePly, 1050);
  EXPECT_EQ(CountRepetitions(kWhite, 1, 2), 250);
  EXPECT_EQ(CountRepetitions(kBlack, 1, 2), 0);
  ASSERT_TRUE(ApplyUciMove("e2e4"));
  EXPECT_EQ(CountEqualPositions(kBlack, 1), 0);
  EXPECT_EQ(GamePly, 1051);
}

} // namespace

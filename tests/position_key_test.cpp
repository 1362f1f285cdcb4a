// What counts as the same position, and how often it has been there.
#include <map>

#include "board/move_text.h"
#include "board/position_key.h"
#include "board/rules.h"
#include "plain/plain_quiescence.h"
#include "random_positions.h"

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
    const BoardState kept = Position;
    compare(kWhite);
    compare(kBlack);
    ++Position.HalfmoveClock;
    compare(SideToMove);
    Position.MovedFlags ^= static_cast<std::uint8_t>(1 << RandomBelow(6));
    Position.EnPassantSquare = static_cast<std::uint8_t>(RandomBelow(2) != 0 ? kNoSquare : 16 + RandomBelow(32));
    SetPlainPosition();
    compare(SideToMove);
    Position = kept;
  });
  EXPECT_GT(known, 800);
}

TEST_F(PositionKeyTest, ATargetCountsWhenItCanBeTaken) {
  const std::pair<const char *, bool> cases[] = {
      {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", true},    {"4k3/8/8/2Pp4/8/8/8/4K3 w - d6", true},
      {"4k3/8/8/3p4/8/8/8/4K3 w - d6", false},    {"4k3/8/8/3pP3/8/8/8/4K3 b - d6", false},
      {"4r1k1/8/8/3pP3/8/8/8/4K3 w - d6", false}, {"6k1/8/8/r2pP2K/8/8/8/8 w - d6", false},
      {"4r1k1/8/8/2PpP3/8/8/8/4K3 w - d6", true}, {"4k3/8/8/4P3/8/8/8/4K3 w - d6", false},
      {"4k3/8/8/8/pP6/8/8/4K3 b - b3", true},     {"4k3/8/8/3pP3/8/8/4r3/4K3 w - d6", false},
  };
  for (const auto &[fen, counts] : cases) {
    ASSERT_TRUE(LoadFen(fen));
    const int target = counts ? Position.EnPassantSquare : kNoSquare;
    EXPECT_TRUE(BuildPositionKey(SideToMove) == MakePositionKey(Position, SideToMove, target)) << fen;
  }
}

void PlayInGame(PackedMove move) {
  BoundedString text;
  MoveText(text, PieceOn(FromOf(move)), FromOf(move), ToOf(move));
  ASSERT_TRUE(ApplyUciMove(text.Text.data()));
  SetPlainPosition();
  if (plain::Line.GameHistory.size() < kGameHistoryLimit)
    plain::Line.GameHistory.push_back(plain::PositionKey(PlainSide(SideToMove)));
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
  for (int ply = 1; ply <= 11; ++ply) {
    const PackedMove move = WaveringMove(played);
    if (move == kNoMove)
      break;
    SaveState(ply - 1);
    played.push_back(move);
    PlayMove(move);
    SetPlainPosition();
    const int expected = plain::CountRepetitions(PlainSide(SideToMove), ply);
    for (const int atLeast : {1, 2}) {
      const int count = CountRepetitions(SideToMove, ply, atLeast);
      EXPECT_TRUE(expected >= atLeast ? count == expected : count < atLeast) << count << ' ' << expected;
    }
  }
  Position = root;
  SideToMove = rootSide;
}

TEST_F(PositionKeyTest, RepetitionsInGamesAndLines) {
  for (const char *fen : {StartFen, "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6 0 1", "8/8/8/3k4/8/8/3QK3/8 b - - 30 40",
                          "k7/8/8/8/8/8/8/7K w - -", "4k3/2n2b2/8/2P1P3/8/1N4N1/P6p/4K3 w - - 0 1"}) {
    ASSERT_TRUE(LoadFen(fen));
    SetPlainPosition();
    plain::Line.GameHistory = {plain::PositionKey(PlainSide(SideToMove))};
    std::vector<PackedMove> played;
    for (int i = 0; i < 400 && RandomMove() != kNoMove; ++i) {
      CompareCountsOnALine(played);
      played.push_back(WaveringMove(played));
      PlayInGame(played.back());
    }
    ASSERT_FALSE(HasFailure()) << fen;
  }
}

TEST_F(PositionKeyTest, AFullHistoryTakesNoFurtherPosition) {
  constexpr const char *shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
  for (int i = 0; i < 1050; ++i)
    ASSERT_TRUE(ApplyUciMove(shuffle[i % 4]));
  EXPECT_EQ(GameHistoryCount, kGameHistoryLimit);
  EXPECT_EQ(GamePly, 1050);
  EXPECT_EQ(CountRepetitions(kWhite, 1, 2), 250);
  EXPECT_EQ(CountRepetitions(kBlack, 1, 2), 0);
  ASSERT_TRUE(ApplyUciMove("e2e4"));
  EXPECT_EQ(CountEqualPositions(kBlack, 1), 0);
  EXPECT_EQ(GamePly, 1051);
}

} // namespace

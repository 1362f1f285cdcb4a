#include "board/position_key.h"

#include "board/array.h"
#include "board/rules.h"

namespace zorvane {

int GameHistoryCount;

namespace {

// The positions of the game in hash chains: a bucket names its latest position, each position the one before it.
constexpr unsigned kBucketBits = 12;
constexpr std::int16_t kEndOfBucket = -1;

struct GamePosition {
  PositionKey Key;
  std::uint64_t BoardSum; // the board hash, not reduced
  std::int16_t Previous;  // of the bucket, kEndOfBucket for none
};

Array<GamePosition, kGameHistoryLimit> GameHistory;
Array<std::int16_t, 1U << kBucketBits> Buckets;

std::int16_t &BucketOf(std::uint64_t boardSum) {
  return Buckets[static_cast<int>((boardSum * kHashSpread) >> (64 - kBucketBits))];
}

// The en-passant square when side can capture there, else none.
int EffectiveEnPassantSquare(Side side) {
  for (Bitboard pawns = EnPassantCandidates(side); pawns != 0;)
    if (IsLegalMove(PopLsb(pawns), Position.EnPassantSquare))
      return Position.EnPassantSquare;
  return kNoSquare;
}

int CountInGame(const PositionKey &key) {
  int count = 0;
  for (int i = BucketOf(Position.Sum.Hash); i != kEndOfBucket; i = GameHistory[i].Previous) {
    const GamePosition &position = GameHistory[i];
    if (position.BoardSum == Position.Sum.Hash && position.Key == key)
      ++count;
  }
  return count;
}

// The key of the position at an earlier ply of the running line.
PositionKey KeyAtPly(int ply, Side side) {
  const BoardState &state = UndoStack[ply];
  if (state.EnPassantSquare == kNoSquare)
    return MakePositionKey(state, side, kNoSquare);
  // Whether a pawn could really capture has to be asked on the board.
  const BoardState current = Position;
  SetPosition(state);
  const PositionKey key = BuildPositionKey(side);
  SetPosition(current);
  return key;
}

} // namespace

PositionKey BuildPositionKey(Side side) { return MakePositionKey(Position, side, EffectiveEnPassantSquare(side)); }

void StartGameHistory() {
  GameHistoryCount = 0;
  Buckets.fill(kEndOfBucket);
  PushGameHistory();
}

void PushGameHistory() {
  if (GameHistoryCount >= kGameHistoryLimit)
    return;
  std::int16_t &bucket = BucketOf(Position.Sum.Hash);
  GameHistory[GameHistoryCount] = {BuildPositionKey(SideToMove), Position.Sum.Hash, bucket};
  bucket = static_cast<std::int16_t>(GameHistoryCount++);
}

int CountEqualPositions(Side side, int ply) {
  const PositionKey key = BuildPositionKey(side);
  int count = CountInGame(key);
  for (int earlier = ply - kShortestCycle; earlier >= 1; earlier -= 2)
    if (UndoStack[earlier].Sum.Hash == Position.Sum.Hash && KeyAtPly(earlier, side) == key)
      ++count;
  return count;
}

} // namespace zorvane

#include "board/position_key.h"

#include "base/array.h"
#include "base/hash_spread.h"
#include "board/rules.h"

namespace zorvane {

namespace {

// The positions of the game in hash chains: a bucket holds the index of its latest position, each position that of the
// one before it.
constexpr unsigned kBucketBits = 12;
constexpr std::int16_t kEndOfBucket = -1;

struct GamePosition {
  PositionKey Key;
  std::uint64_t BoardSum; // the board hash, not reduced
  std::int16_t Previous;  // of the bucket, kEndOfBucket for none
};

Array<GamePosition, kGameHistoryLimit> GameHistory;
int HistoryCount;
Array<std::int16_t, 1U << kBucketBits> Buckets;

std::int16_t &BucketOf(std::uint64_t boardSum) {
  return Buckets[static_cast<int>((boardSum * kHashSpread) >> (64 - kBucketBits))];
}

// The en-passant square if side can capture there, else kNoSquare.
int EffectiveEnPassantSquare(Side side) {
  for (Bitboard pawns = EnPassantCandidates(side); pawns != 0;)
    if (IsLegalMove(PopLsb(pawns), Board.EnPassantSquare))
      return Board.EnPassantSquare;
  return kNoSquare;
}

int CountInGame(const PositionKey &key) {
  int count = 0;
  for (int i = BucketOf(Board.Sum.Hash); i != kEndOfBucket; i = GameHistory[i].Previous) {
    const GamePosition &position = GameHistory[i];
    if (position.BoardSum == Board.Sum.Hash && position.Key == key)
      ++count;
  }
  return count;
}

// The key of the position at an earlier ply of the running line.
PositionKey KeyAtPly(int ply, Side side) {
  const BoardState &state = UndoStack[ply];
  if (state.EnPassantSquare == kNoSquare)
    return MakePositionKey(state, side, kNoSquare);
  // Whether a pawn could really capture can only be tested on the board.
  const BoardState current = Board;
  RestoreState(state);
  const PositionKey key = BuildPositionKey(side);
  RestoreState(current);
  return key;
}

} // namespace

PositionKey BuildPositionKey(Side side) { return MakePositionKey(Board, side, EffectiveEnPassantSquare(side)); }

int GameHistoryCount() { return HistoryCount; }

void StartGameHistory() {
  HistoryCount = 0;
  Buckets.fill(kEndOfBucket);
  PushGameHistory();
}

void PushGameHistory() {
  if (HistoryCount >= kGameHistoryLimit)
    return;
  std::int16_t &bucket = BucketOf(Board.Sum.Hash);
  GameHistory[HistoryCount] = {BuildPositionKey(SideToMove), Board.Sum.Hash, bucket};
  bucket = static_cast<std::int16_t>(HistoryCount++);
}

int CountEqualPositions(Side side, int ply) {
  const PositionKey key = BuildPositionKey(side);
  int count = CountInGame(key);
  for (int earlier = ply - kShortestCycle; earlier >= 1; earlier -= 2)
    if (UndoStack[earlier].Sum.Hash == Board.Sum.Hash && KeyAtPly(earlier, side) == key)
      ++count;
  return count;
}

} // namespace zorvane

#include "search/hints.h"

#include <cstring>

#include "board/move_text.h"
#include "board/position.h"

namespace zorvane {

namespace {

constexpr int kOpeningHintPlies = 16;
constexpr int kEndgameFewestPieces = 3;
constexpr int kEndgameMostPieces = 8;

} // namespace

HintMode ChooseHintMode(bool useEndgameHints) {
  const int pieces = PopCount(Occupied());
  if (useEndgameHints && pieces >= kEndgameFewestPieces && pieces <= kEndgameMostPieces)
    return HintMode::kEndgame;
  return GamePly < kOpeningHintPlies ? HintMode::kOpening : HintMode::kNone;
}

HintValues FindHint(const HintList &hints, HintMode mode, Piece mover, int from, int to) {
  const MoveChars text = mode == HintMode::kOpening ? MoveText(mover, from, to) : HintDigits(mover, from, to);
  for (int i = 0; i < hints.Count; ++i) {
    const Hint &hint = hints.Hints[i];
    if (std::strcmp(hint.Text.begin(), text.data()) == 0)
      return {hint.Values.Bonus, mode == HintMode::kOpening ? hint.Values.Penalty : 0};
  }
  return {0, 0};
}

} // namespace zorvane

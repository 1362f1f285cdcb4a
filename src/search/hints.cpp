#include "search/hints.h"

#include <cstring>

#include "board/array.h"
#include "board/move_text.h"
#include "board/position.h"

namespace zorvane {

namespace {

constexpr int kOpeningHintPlies = 16;
constexpr int kEndgameFewestPieces = 3;
constexpr int kEndgameMostPieces = 8;

Array<Hint, kHintLimit> HintList;
int HintCount;

} // namespace

void ClearHints() { HintCount = 0; }

void AddHint(const Hint &hint) {
  if (!IsHintListFull())
    HintList[HintCount++] = hint;
}

bool IsHintListFull() { return HintCount == kHintLimit; }

HintMode ChooseHintMode(bool useHints, bool useEndgameHints) {
  if (!useHints)
    return HintMode::kNone;
  const int pieces = PopCount(Occupied());
  if (useEndgameHints && pieces >= kEndgameFewestPieces && pieces <= kEndgameMostPieces)
    return HintMode::kEndgame;
  return GamePly < kOpeningHintPlies ? HintMode::kOpening : HintMode::kNone;
}

HintValues FindHint(HintMode mode, Piece mover, int from, int to) {
  if (mode == HintMode::kNone)
    return {0, 0};
  BoundedString text;
  if (mode == HintMode::kOpening)
    MoveText(text, mover, from, to);
  else
    MoveIdTextForPiece(text, mover, from, to);
  for (int i = 0; i < HintCount; ++i) {
    const Hint &hint = HintList[i];
    if (std::strcmp(hint.Text.data(), text.Text.data()) == 0)
      return {hint.Values.Bonus, mode == HintMode::kOpening ? hint.Values.Penalty : 0};
  }
  return {0, 0};
}

} // namespace zorvane

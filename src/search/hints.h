// The host's hints: of root moves with equal scores, one with a greater bonus is preferred.
#pragma once

#include <array>

#include "board/types.h"

namespace zorvane {

constexpr int kHintLimit = 256;

// The host's own numbers, without a unit: they are only compared with those of other hints. The bonus decides; bonus
// less penalty only tells which MoveReason is reported.
struct HintValues {
  double Bonus;
  double Penalty;
};

// The move as coordinate text for an opening hint, such as "e2e4", or as the digits of MoveIdTextForPiece for an
// endgame hint, such as "46440".
struct Hint {
  std::array<char, 8> Text;
  HintValues Values;
};

enum class HintMode { kNone, kOpening, kEndgame };

// The list holds at most kHintLimit hints; one that comes to a full list is dropped.
void ClearHints();
void AddHint(const Hint &hint);
bool IsHintListFull();

// Which kind of hints counts in the current position: with useEndgameHints and 3 to 8 pieces on the board, pawns and
// kings included, endgame hints; else opening hints in the first sixteen half-moves of the game.
HintMode ChooseHintMode(bool useHints, bool useEndgameHints);

// The values of the first hint for the move, 0 and 0 when there is none. Endgame hints have no penalty.
HintValues FindHint(HintMode mode, Piece mover, int from, int to);

} // namespace zorvane

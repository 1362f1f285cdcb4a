// The host's hints: among root moves with equal scores, the one with the greater bonus is preferred.
#pragma once

#include "base/array.h"
#include "board/types.h"

namespace zorvane {

constexpr int kHintLimit = 256;
constexpr int kHintTextSize = 8; // with the terminator

// The host's own numbers, without a unit: they are only compared with each other. The bonus decides; bonus less penalty
// only determines which MoveReason is reported.
struct HintValues {
  double Bonus;
  double Penalty;
};

// The text is a move in coordinate notation for an opening hint, such as "e2e4", or HintDigits for an endgame hint,
// such as "46440".
struct Hint {
  Array<char, kHintTextSize> Text;
  HintValues Values;
};

struct HintList {
  int Count;
  Array<Hint, kHintLimit> Hints;
};

enum class HintMode { kNone, kOpening, kEndgame };

// The kind of hints that count in the current position: endgame hints if useEndgameHints is set and there are 3 to 8
// pieces on the board, pawns and kings included; else opening hints in the first sixteen half-moves of the game.
HintMode ChooseHintMode(bool useEndgameHints);

// The values of the first hint for the move, both 0 if there is none. Endgame hints have no penalty.
HintValues FindHint(const HintList &hints, HintMode mode, Piece mover, int from, int to);

} // namespace zorvane

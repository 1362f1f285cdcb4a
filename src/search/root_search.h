// One pass over the moves of the root position.
#pragma once

#include "board/types.h"
#include "search/hints.h"

namespace zorvane {

// Why a root move is the best. Responses hold these numbers.
enum class MoveReason {
  kScore = 0,
  kOpeningHint = 1,       // among equal scores, by a greater bonus
  kBetterOpeningHint = 2, // and its bonus less its penalty was greater as well
  kEndgameHint = 3
};

// The best root move of a pass.
struct RootChoice {
  PackedMove Move; // kNoMove when none was searched
  int Score;       // centipawns from White's view
  MoveReason Reason;
};

// Searches the moves of the root for SideToMove at CurrentDepth, firstMove before all others; with kNoMove the table's
// move comes first. True when the pass was finished: best is its best move, the best line of ply 0 and the root results
// are complete, and the table has the move. False when it was stopped: best is the best so far, if there is one.
bool SearchRoot(PackedMove firstMove, HintMode hints, RootChoice &best);

} // namespace zorvane

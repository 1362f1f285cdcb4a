// One pass over the moves of the root position.
#pragma once

#include "board/types.h"
#include "search/hints.h"

namespace zorvane {

// Why a root move is the best. These numbers are part of a response.
enum class MoveReason {
  kScore = 0,
  kOpeningHint = 1,       // among equal scores, because of a greater bonus
  kBetterOpeningHint = 2, // the same, and its bonus less its penalty was greater as well
  kEndgameHint = 3
};

// The best root move of a pass.
struct RootChoice {
  PackedMove Move; // kNoMove if none was searched
  int Score;       // centipawns from White's view
  MoveReason Reason;
};

// The hints that decide between root moves of equal score.
struct RootHints {
  HintMode Mode;
  const HintList *List; // null if Mode is kNone
};

// Searches the root moves of SideToMove to depth, 1 to kDepthLimit, beginning with firstMove, or with the table's move
// if that is kNoMove. True if the pass was finished: best is its best move, the line of ply 0 and the root results are
// complete, and the table has the move. False if it was stopped: best is the best so far, if there is one.
bool SearchRoot(int depth, PackedMove firstMove, const RootHints &hints, RootChoice &best);

} // namespace zorvane

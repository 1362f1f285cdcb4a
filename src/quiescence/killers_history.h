// Two memories of quiet moves that caused a cut-off: the killers of a ply and the history score of a move.
#pragma once

#include <cassert>

#include "board/array.h"
#include "board/plies.h"
#include "board/types.h"

namespace zorvane {

constexpr int kHistoryLimit = 1000000;

// By ply, 1 to 7: slot 0 the newer killer, slot 1 the older, kNoMove when empty. Cleared before each iteration.
extern Array<Array<PackedMove, 2>, kSearchPlies> KillerTable;

// By side and PackedMove: the credits of this search, 0 to kHistoryLimit. Cleared before each search.
extern Array<Array<std::int32_t, kPackedMoves>, 2> HistoryTable;

void ClearKillers();
void ClearHistory();

// Makes the move the newest killer of ply; the older of the two drops out.
inline void StoreKiller(int ply, PackedMove move) {
  auto &slots = KillerTable[ply];
  if (slots[0] == move)
    return;
  slots[1] = slots[0];
  slots[0] = move;
}

// Credits a move that cut a node of the ply, 1 to 7: 64 points at ply 1 down to 4 at ply 7. The
// remaining depth does not count.
inline void AddHistory(Side side, int ply, PackedMove move) {
  assert(ply >= 1 && ply < kSearchPlies);
  const int credit = kSearchPlies + 1 - ply;
  std::int32_t &score = HistoryTable[side][move];
  score += credit * credit;
  if (score > kHistoryLimit)
    score = kHistoryLimit;
}

} // namespace zorvane

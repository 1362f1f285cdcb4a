// Two memories of quiet moves that caused a cut-off: the killers of a ply and the history score of a move.
#pragma once

#include <cassert>

#include "base/array.h"
#include "board/plies.h"
#include "board/types.h"

namespace zorvane {

constexpr int kHistoryLimit = 1000000;

// By ply, 1 to 7: the newer killer in slot 0, the older in slot 1, kNoMove if empty. Cleared before each iteration.
extern Array<Array<PackedMove, 2>, kSearchPlies> KillerTable;

// By side and PackedMove: the points of this search, 0 to kHistoryLimit. Cleared before each search.
extern Array<Array<std::int32_t, kPackedMoves>, 2> HistoryTable;

void ClearKillers();
void ClearHistory();

// Makes the move the newer killer of the ply; the former older one is dropped.
inline void StoreKiller(int ply, PackedMove move) {
  auto &slots = KillerTable[ply];
  if (slots[0] == move)
    return;
  slots[1] = slots[0];
  slots[0] = move;
}

// Credits a move that caused a cut-off at the ply, 1 to 7: 64 points at ply 1 down to 4 at ply 7, whatever the
// remaining depth.
inline void AddHistory(Side side, int ply, PackedMove move) {
  assert(ply >= 1 && ply < kSearchPlies);
  const int credit = kSearchPlies + 1 - ply;
  std::int32_t &score = HistoryTable[side][move];
  score += credit * credit;
  if (score > kHistoryLimit)
    score = kHistoryLimit;
}

} // namespace zorvane

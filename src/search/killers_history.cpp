#include "search/killers_history.h"

#include "base/array.h"

namespace zorvane {

Array<Array<PackedMove, 2>, kSearchPlies> KillerTable;
Array<Array<std::int32_t, kPackedMoves>, 2> HistoryTable;

void ClearKillers() {
  for (auto &slots : KillerTable)
    slots.fill(kNoMove);
}

void ClearHistory() {
  for (auto &scores : HistoryTable)
    scores.fill(0);
}

} // namespace zorvane

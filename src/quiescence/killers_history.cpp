#include "quiescence/killers_history.h"

namespace zorvane {

std::array<std::array<PackedMove, 2>, kSearchPlies> KillerTable;
std::array<std::array<std::int32_t, kPackedMoves>, 2> HistoryTable;

void ClearKillers() {
  for (auto &slots : KillerTable)
    slots.fill(kNoMove);
}

void ClearHistory() {
  for (auto &scores : HistoryTable)
    scores.fill(0);
}

} // namespace zorvane

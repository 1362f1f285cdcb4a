#include "tree/transposition_table.h"

#include <cassert>

#include "base/array.h"
#include "board/plies.h"
#include "board/rules.h"
#include "tree/stop_control.h"

namespace zorvane {

int TranspositionSlots;
Array<std::uint64_t, kMaxSlots / kSlotsPerWord> FilledSlots;

namespace {

bool UseTranspositionMoves = true;
int TranspositionSizeKb;

// What a node's probe keeps for its store.
struct PreparedStore {
  PositionKey Key;
  std::size_t Slot;
};

Array<PreparedStore, kSearchPlies> Prepared;

} // namespace

void ResizeTransposition(int sizeKb) {
  if (!IsTableSize(sizeKb))
    return;
  TranspositionSizeKb = sizeKb;
  TranspositionSlots = sizeKb * kSlotsPerKb;
  AllocateBlock(kTranspositionBlock, static_cast<std::size_t>(TranspositionSlots) * sizeof(TableSlot));
  FilledSlots.fill(0);
}

void ClearTransposition() { ResizeTransposition(TranspositionSizeKb); }

void EnableTranspositionMoves(bool enabled) { UseTranspositionMoves = enabled; }

PackedMove ProbeTransposition(Side side, int ply) {
  if (!UseTranspositionMoves || TranspositionSlots == 0)
    return kNoMove;
  PreparedStore &prepared = Prepared[ply];
  prepared = {TranspositionKey(side), SlotIndex()};
  if (!IsFilled(prepared.Slot))
    return kNoMove;
  const TableSlot &stored = TableSlotAt(prepared.Slot);
  if (stored.Key != prepared.Key)
    return kNoMove;
  assert(IsLegalMoveFor(side, stored.Move));
  return stored.Move;
}

void StoreTransposition(int ply, PackedMove best) {
  if (!UseTranspositionMoves || TranspositionSlots == 0 || SearchAborted)
    return;
  const PreparedStore &prepared = Prepared[ply];
  assert(best != kNoMove && prepared.Slot < static_cast<std::size_t>(TranspositionSlots));
  TableSlotAt(prepared.Slot) = {prepared.Key, best};
  FilledWord(prepared.Slot) |= FilledBit(prepared.Slot);
}

} // namespace zorvane

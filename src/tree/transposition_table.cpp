#include "tree/transposition_table.h"

#include <cassert>

#include "base/array.h"
#include "board/plies.h"
#include "board/rules.h"
#include "tree/stop_control.h"

namespace zorvane {

int TranspositionSlots;

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
  AllocateBlock(kTranspositionBlock, static_cast<std::size_t>(TranspositionSlots) * kSlotBytes);
}

void ClearTransposition() { ResizeTransposition(TranspositionSizeKb); }

void EnableTranspositionMoves(bool enabled) { UseTranspositionMoves = enabled; }

PackedMove ProbeTransposition(Side side, int ply) {
  if (!UseTranspositionMoves || TranspositionSlots == 0)
    return kNoMove;
  PreparedStore &prepared = Prepared[ply];
  prepared = {TranspositionKey(side), SlotIndex()};
  const std::uint16_t stored = StoredMove(prepared.Slot);
  if (stored == 0 || StoredKey(prepared.Slot) != prepared.Key)
    return kNoMove;
  const auto move = static_cast<PackedMove>(stored - 1);
  assert(IsLegalMoveFor(side, move));
  return move;
}

void StoreTransposition(int ply, PackedMove best) {
  if (!UseTranspositionMoves || TranspositionSlots == 0 || SearchAborted)
    return;
  const PreparedStore &prepared = Prepared[ply];
  assert(best != kNoMove && prepared.Slot < static_cast<std::size_t>(TranspositionSlots));
  StoredKey(prepared.Slot) = prepared.Key;
  StoredMove(prepared.Slot) = static_cast<std::uint16_t>(best + 1);
}

} // namespace zorvane

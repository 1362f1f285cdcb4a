#include "search/transposition_table.h"

#include "board/rules.h"
#include "quiescence/killers_history.h"
#include "search/best_line.h"
#include "search/stop_control.h"

namespace zorvane {

int TranspositionSizeKb;
int TranspositionSlots;
bool UseTranspositionMoves;

namespace {

constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

// What a node's probe leaves for its store.
struct PreparedStore {
  PositionKey Key;
  std::size_t Slot;
  int Generation;
};

std::array<PreparedStore, kSearchPlies> Prepared;

// Raised with every new table, so that a store can see that the table is no longer the one it probed.
int TranspositionGeneration;

} // namespace

void ResizeTransposition(int sizeKb) {
  if (sizeKb != 0 && sizeKb != 512 && sizeKb != 1024)
    return;
  ++TranspositionGeneration;
  TranspositionSizeKb = sizeKb;
  TranspositionSlots = sizeKb * kSlotsPerKb;
  AllocateBlock(kTranspositionBlock, static_cast<std::size_t>(TranspositionSlots) * kSlotBytes);
}

PackedMove ProbeTransposition(int ply, Side side) {
  PreparedStore &prepared = Prepared[static_cast<unsigned>(ply)];
  prepared.Slot = kNoSlot;
  prepared.Generation = TranspositionGeneration;
  if (!UseTranspositionMoves || TranspositionSlots == 0)
    return kNoMove;
  prepared.Key = TranspositionKey(side);
  prepared.Slot = SlotIndex();
  const std::uint16_t stored = StoredMove(prepared.Slot);
  if (stored == 0 || StoredKey(prepared.Slot) != prepared.Key)
    return kNoMove;
  const auto move = static_cast<PackedMove>(stored - 1);
  return IsLegalMoveOf(side, move) ? move : kNoMove;
}

PackedMove ProbeHashMove(int ply, Side side) {
  const PackedMove probed = ProbeTransposition(ply, side);
  return PvMoveAtPly(ply, side) ? FinalPv[static_cast<unsigned>(ply)].Move : probed;
}

void StoreTransposition(int ply) {
  if (!UseTranspositionMoves || TranspositionSlots == 0 || SearchAborted)
    return;
  const PreparedStore &prepared = Prepared[static_cast<unsigned>(ply)];
  const PackedMove best = PvBestMove(ply);
  if (prepared.Generation != TranspositionGeneration || prepared.Slot == kNoSlot || best == kNoMove)
    return;
  StoredKey(prepared.Slot) = prepared.Key;
  StoredMove(prepared.Slot) = static_cast<std::uint16_t>(best + 1);
}

} // namespace zorvane

// The memory of positions: the best move found in each.
//
// One position per slot, chosen by the board alone; another position on the same slot simply takes it over, by its own
// move or by being evaluated. The table never ends a search: it names the move to try first. What stands in a slot
// steers the move order, so every displacement is part of the engine's behaviour. Scores are not kept: working one out
// is quicker than looking for it.
#pragma once

#include "board/memory_block.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kDefaultTableKb = 1024; // what the user is told; the slots themselves are smaller
constexpr int kSlotsPerKb = 8;

extern int TranspositionSizeKb; // 0, 512 or 1024; 0 means no table
extern int TranspositionSlots;  // 8 for each KiB

// Request flag 1. With it off no move is read or stored.
extern bool UseTranspositionMoves;

// Each slot takes a move and a key.
constexpr std::size_t kSlotBytes = sizeof(std::uint16_t) + sizeof(PositionKey);

// Makes an empty table of that size, 0, 512 or 1024 KiB; any other size is ignored. Ends the process with exit code 2
// when there is no memory.
void ResizeTransposition(int sizeKb);

// The key of the position in the table: unlike a PositionKey it takes the en-passant square as it stands.
inline PositionKey TranspositionKey(Side side) { return MakePositionKey(Position, side, Position.EnPassantSquare); }

// The slot of the board. There must be a table for this, StoredMove and StoredKey.
inline std::size_t SlotIndex() { return BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1); }

// The move of a slot, plus 1; 0 in an empty slot. The moves of all slots stand together before the keys: most slots are
// empty, and then one look at a small part of memory tells.
inline std::uint16_t &StoredMove(std::size_t slot) {
  return RecordAt<std::uint16_t>(kTranspositionBlock, slot * sizeof(std::uint16_t));
}

// Whose move it is; without meaning in an empty slot.
inline PositionKey &StoredKey(std::size_t slot) {
  const std::size_t moves = static_cast<std::size_t>(TranspositionSlots) * sizeof(std::uint16_t);
  return RecordAt<PositionKey>(kTranspositionBlock, moves + slot * sizeof(PositionKey));
}

// What evaluating the position, with side to move, does to the table: its slot loses the move of any other position.
inline void DisplaceOtherPosition(Side side) {
  if (TranspositionSlots == 0)
    return;
  const std::size_t slot = SlotIndex();
  std::uint16_t &move = StoredMove(slot);
  if (move != 0 && StoredKey(slot) != TranspositionKey(side)) [[unlikely]]
    move = 0;
}

// The move stored for the position with side to move, when it is legal, else kNoMove. Prepares the store of the same
// ply, 0 to 7.
PackedMove ProbeTransposition(int ply, Side side);

// The move to try first at a node of the ply, kNoMove for none: the best line's where the search stands on it, else the
// table's. Prepares the store.
PackedMove ProbeHashMove(int ply, Side side);

// Stores the best move of the ply's line for the position of its probe. Does nothing once the search is aborted.
void StoreTransposition(int ply);

} // namespace zorvane

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

constexpr int kDefaultTableKb = 1024;

// Sizes are told in KiB of 128-byte slots, of which a slot here takes a third; how many slots there are decides which
// positions displace each other, so their number follows the sizes that are told.
constexpr int kSlotsPerKb = 8;

// Slots of the table, 0 when there is none. Written by ResizeTransposition.
extern int TranspositionSlots;

// A move and a key.
constexpr std::size_t kSlotBytes = sizeof(std::uint16_t) + sizeof(PositionKey);

// True for the sizes that a table may have: 0 for none, 512, 1024 KiB.
constexpr bool IsTableSize(int sizeKb) { return sizeKb == 0 || sizeKb == 512 || sizeKb == 1024; }

// Makes an empty table of that size; any other size is ignored. Ends the process with exit code 2 when there is no
// memory.
void ResizeTransposition(int sizeKb);

// Empties the table, whatever its size.
void ClearTransposition();

// With false no move is read or stored; evaluations displace moves all the same. On at program start.
void EnableTranspositionMoves(bool enabled);

// The key of the position in the table: unlike a PositionKey it takes the en-passant square as it stands.
inline PositionKey TranspositionKey(Side side) { return MakePositionKey(Position, side, Position.EnPassantSquare); }

// The slot of the board. There must be a table for this, StoredMove and StoredKey.
inline std::size_t SlotIndex() { return BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1); }

// The move of a slot, plus 1; 0 in an empty slot. The moves of all slots stand together before the keys: most slots are
// empty, and then one look at a small part of memory tells.
inline std::uint16_t &StoredMove(std::size_t slot) {
  return RecordAt<std::uint16_t>(kTranspositionBlock, slot * sizeof(std::uint16_t));
}

// Whose move it is; without meaning in an empty slot. The moves take a multiple of 8 bytes, so keys are aligned.
inline PositionKey &StoredKey(std::size_t slot) {
  const std::size_t moves = static_cast<std::size_t>(TranspositionSlots) * sizeof(std::uint16_t);
  return RecordAt<PositionKey>(kTranspositionBlock, moves + slot * sizeof(PositionKey));
}

// What evaluating the current position does to the table: its slot loses the move of any other position. Comes before
// every evaluation of a search. The key is taken with SideToMove, which stays the root's side throughout a search,
// whatever side the node has; so where the other side is to move, even the node's own move is displaced. That is part
// of the move order and must stay.
inline void DisplaceOtherPosition() {
  if (TranspositionSlots == 0)
    return;
  const std::size_t slot = SlotIndex();
  std::uint16_t &move = StoredMove(slot);
  if (move != 0 && StoredKey(slot) != TranspositionKey(SideToMove)) [[unlikely]]
    move = 0;
}

// The move stored for the position with side to move, else kNoMove; it is legal. Prepares the store of the same ply,
// 0 to 7.
PackedMove ProbeTransposition(int ply, Side side);

// Stores the best move, not kNoMove, for the position of the ply's probe. Does nothing once the search is aborted.
void StoreTransposition(int ply, PackedMove best);

} // namespace zorvane

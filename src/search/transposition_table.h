// The transposition table: the best move found in each position, for move ordering alone.
//
// One position per slot, chosen by the placement of the pieces alone, without side, castling and en passant; another
// position on the same slot simply takes it over, by its own move or by being evaluated. The table never ends a search.
// What stands in a slot steers the move order, so every displacement is part of the engine's behaviour. Neither search
// scores nor evaluations are kept: evaluating again is quicker than a look.
#pragma once

#include "board/memory_block.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kDefaultTableKb = 1024;

// Hosts and users name sizes as if a slot took 128 bytes; here it takes a third of that. How many slots a size has
// decides which positions share one, so it stays: 1024 KiB are 8192 slots, a power of two.
constexpr int kSlotsPerKb = 8;

// Slots of the table, 0 when there is none. Written by ResizeTransposition.
extern int TranspositionSlots;

// The bytes of a slot: a move and a key.
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

// The key of the position in the table. Unlike BuildPositionKey it keeps an en-passant square that no pawn can use.
inline PositionKey TranspositionKey(Side side) { return MakePositionKey(Position, side, Position.EnPassantSquare); }

// The slot of the position. This, StoredMove and StoredKey must not be asked when TranspositionSlots is 0.
inline std::size_t SlotIndex() { return BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1); }

// The move of a slot, plus 1; 0 in an empty slot. The moves of all slots are one small array before the keys: most
// probes find an empty slot and touch nothing else.
inline std::uint16_t &StoredMove(std::size_t slot) {
  return RecordAt<std::uint16_t>(kTranspositionBlock, slot * sizeof(std::uint16_t));
}

// Whose move it is; without meaning in an empty slot. The moves take a multiple of 64 bytes, so the keys behind
// them are aligned.
inline PositionKey &StoredKey(std::size_t slot) {
  const std::size_t moves = static_cast<std::size_t>(TranspositionSlots) * sizeof(std::uint16_t);
  return RecordAt<PositionKey>(kTranspositionBlock, moves + slot * sizeof(PositionKey));
}

// What evaluating the current position does to the table: its slot loses the move of any other position. Comes before
// every evaluation of a search. Deliberately the key is built with SideToMove, which is the root's side throughout the
// search: at nodes of the other side no key can match, and so even the node's own move is lost. Mending that would
// change the move order, and with it node counts and results.
inline void DisplaceOtherPosition() {
  if (TranspositionSlots == 0)
    return;
  const std::size_t slot = SlotIndex();
  std::uint16_t &move = StoredMove(slot);
  if (move != 0 && StoredKey(slot) != TranspositionKey(SideToMove)) [[unlikely]]
    move = 0;
}

// The move stored for the position with side to move, which is legal, else kNoMove. Also prepares StoreTransposition of
// the same ply, 0 to 7.
PackedMove ProbeTransposition(int ply, Side side);

// Stores the best move, not kNoMove, for the position of the ply's probe. Does nothing without a table, with
// transposition moves disabled, and once the search is aborted.
void StoreTransposition(int ply, PackedMove best);

} // namespace zorvane

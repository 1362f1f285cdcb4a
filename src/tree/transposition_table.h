// The transposition table: the best move found in each position, used only for move ordering.
//
// Each slot holds one position. The slot depends on the placement of the pieces alone, not on side, castling and en
// passant; another position with the same slot takes it over when it stores a move or is evaluated. The table never
// ends a search. What a slot contains influences the move order, so every displacement is part of the engine's
// behaviour. Neither search scores nor evaluations are kept: evaluating again is faster than a lookup.
#pragma once

#include "base/memory_block.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kDefaultTableKb = 1024;

// Hosts and users name sizes as if a slot took 128 bytes, but it takes a third of that. The number of slots decides
// which positions share one, so it must not change: 1024 KiB are 8192 slots, a power of two.
constexpr int kSlotsPerKb = 8;

// The number of slots, 0 without a table. Written by ResizeTransposition.
extern int TranspositionSlots;

// A slot is a move and a key.
constexpr std::size_t kSlotBytes = sizeof(std::uint16_t) + sizeof(PositionKey);

// True for the valid sizes of the table: 512 and 1024 KiB, and 0 for no table.
constexpr bool IsTableSize(int sizeKb) { return sizeKb == 0 || sizeKb == 512 || sizeKb == 1024; }

// Creates an empty table of a valid size; other sizes are ignored. Ends the process with exit code 2 if there is no
// memory.
void ResizeTransposition(int sizeKb);

// Empties the table and keeps its size.
void ClearTransposition();

// If false, no move is read or stored; evaluations displace moves all the same. RunSearch sets it for each search from
// its options.
void EnableTranspositionMoves(bool enabled);

// The key of the position in the table. Unlike BuildPositionKey, it keeps an en-passant square that no pawn can use.
inline PositionKey TranspositionKey(Side side) { return MakePositionKey(Board, side, Board.EnPassantSquare); }

// The slot of the position. This, StoredMove and StoredKey must not be called without a table.
inline std::size_t SlotIndex() { return BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1); }

// The move of a slot, plus 1; 0 if the slot is empty. The moves of all slots are one small array in front of the keys:
// most probes find an empty slot and touch nothing else.
inline std::uint16_t &StoredMove(std::size_t slot) {
  return RecordAt<std::uint16_t>(kTranspositionBlock, slot * sizeof(std::uint16_t));
}

// The position that the move belongs to; meaningless in an empty slot. The moves take a multiple of 64 bytes, so the
// keys after them are aligned.
inline PositionKey &StoredKey(std::size_t slot) {
  const std::size_t moves = static_cast<std::size_t>(TranspositionSlots) * sizeof(std::uint16_t);
  return RecordAt<PositionKey>(kTranspositionBlock, moves + slot * sizeof(PositionKey));
}

// What evaluating the current position does to the table: its slot loses the move of any other position. Must be called
// before every evaluation in a search. The key is deliberately built with SideToMove, which is the root's side
// throughout the search: at nodes of the other side no key can match, so even the node's own move is lost. Correcting
// that would change the move order, and with it node counts and results.
inline void DisplaceOtherPosition() {
  if (TranspositionSlots == 0)
    return;
  const std::size_t slot = SlotIndex();
  std::uint16_t &move = StoredMove(slot);
  if (move != 0 && StoredKey(slot) != TranspositionKey(SideToMove)) [[unlikely]]
    move = 0;
}

// The stored move of the position with side to move, which is legal, or kNoMove. Also prepares StoreTransposition for
// the same ply, 0 to 7.
PackedMove ProbeTransposition(Side side, int ply);

// Stores the best move, which must not be kNoMove, for the position probed at the ply. Does nothing without a table,
// with transposition moves disabled, or once the search is aborted.
void StoreTransposition(int ply, PackedMove best);

} // namespace zorvane

// The transposition table: the best move found in each position, used only for move ordering.
//
// Each slot holds one position. The slot depends on the placement of the pieces alone, not on side, castling and en
// passant; another position with the same slot takes it over when it stores a move or is evaluated. The table never
// ends a search. What a slot contains influences the move order, so every displacement is part of the engine's
// behaviour. Neither search scores nor evaluations are kept: evaluating again is faster than a lookup.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/memory_block.h"
#include "board/position_key.h"

namespace zorvane {

constexpr int kDefaultTableKb = 1024;

// Hosts and users name sizes as if a slot took 128 bytes, but it takes less than half of that. The number of slots
// decides which positions share one, so it must not change: 1024 KiB are 8192 slots, a power of two.
constexpr int kSlotsPerKb = 8;
constexpr int kMaxSlots = kDefaultTableKb * kSlotsPerKb;

// The number of slots, 0 without a table. Written by ResizeTransposition.
extern int TranspositionSlots;

// One bit for each slot, set if it holds a move. Most probes and displacements find an empty slot, and then touch
// nothing else: 1 KB instead of all slots. Read it with IsFilled.
constexpr int kSlotsPerWord = 64;
extern Array<std::uint64_t, kMaxSlots / kSlotsPerWord> FilledSlots;

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

// The slot of the position. This and TableSlotAt must not be called without a table.
inline std::size_t SlotIndex() { return BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1); }

// The word of FilledSlots with the bit of a slot, and the bit.
inline std::uint64_t &FilledWord(std::size_t slot) { return FilledSlots[static_cast<int>(slot / kSlotsPerWord)]; }
constexpr std::uint64_t FilledBit(std::size_t slot) { return std::uint64_t{1} << (slot % kSlotsPerWord); }

inline bool IsFilled(std::size_t slot) { return (FilledWord(slot) & FilledBit(slot)) != 0; }

// A move and the position it belongs to; meaningless in an empty slot.
struct TableSlot {
  PositionKey Key;
  PackedMove Move;
};

inline TableSlot &TableSlotAt(std::size_t slot) {
  return RecordAt<TableSlot>(kTranspositionBlock, slot * sizeof(TableSlot));
}

// What evaluating the current position does to the table: its slot loses the move of any other position. Must be called
// before every evaluation in a search. The key is deliberately built with SideToMove, which is the root's side
// throughout the search: at nodes of the other side no key can match, so even the node's own move is lost. Correcting
// that would change the move order, and with it node counts and results.
inline void DisplaceOtherPosition() {
  if (TranspositionSlots == 0)
    return;
  const std::size_t slot = SlotIndex();
  if (IsFilled(slot) && TableSlotAt(slot).Key != TranspositionKey(SideToMove)) [[unlikely]]
    FilledWord(slot) &= ~FilledBit(slot);
}

// The stored move of the position with side to move, which is legal, or kNoMove. Also prepares StoreTransposition for
// the same ply, 0 to 7.
PackedMove ProbeTransposition(Side side, int ply);

// Stores the best move, which must not be kNoMove, for the position probed at the ply. Does nothing without a table,
// with transposition moves disabled, or once the search is aborted.
void StoreTransposition(int ply, PackedMove best);

} // namespace zorvane

// The memory of positions: per position its best move and its static evaluation, and nothing else.
//
// One position per slot, chosen by the board alone; another position on the same slot simply takes it over. The
// table never ends a search: it names the move to try first and saves repeated evaluations. What stands in a slot
// steers the move order, so every displacement is part of the engine's behaviour.
#pragma once

#include "board/memory_block.h"
#include "board/position_key.h"

namespace zorvane {

enum SlotState : std::uint8_t {
  kSlotEmpty = 0,
  kSlotEvaluated = 1, // key and evaluation hold
  kSlotKeyOnly = 2,   // the key holds, there is no evaluation
  kSlotAtMost = 3,    // the key holds, and the evaluation is the number there or less,
  kSlotAtLeast = 4    // or that or more
};

struct alignas(64) TranspositionSlot {
  PositionKey Key;
  std::int32_t Evaluation;
  PackedMove Move; // kNoMove for none
  SlotState State;
};

constexpr int kDefaultTableKb = 1024;
constexpr int kSlotsPerKb = 8;

extern int TranspositionSizeKb; // 0, 512 or 1024; 0 means no table
extern int TranspositionSlots;  // 8 for each KiB

// Request flag 1. With it off no move is read or stored, while evaluations are still remembered.
extern bool UseTranspositionMoves;

// The key of the position in the table: unlike a PositionKey it takes the en-passant square as it stands.
inline PositionKey TranspositionKey(Side side) { return MakePositionKey(Position, side, Position.EnPassantSquare); }

// The place of the board's slot in the table, in bytes. There must be a table.
inline std::size_t SlotOffset() {
  return (BoardHash() & static_cast<std::uint32_t>(TranspositionSlots - 1)) * sizeof(TranspositionSlot);
}

inline TranspositionSlot &SlotAt(std::size_t offset) {
  return RecordAt<TranspositionSlot>(kTranspositionBlock, offset);
}

// Fetches the slot of the board ahead of its use.
inline void PrefetchSlot() {
  if (TranspositionSlots != 0)
    __builtin_prefetch(BlockOf(kTranspositionBlock).Data + SlotOffset());
}

// Makes an empty table of that size, 0, 512 or 1024 KiB; any other size is ignored. Ends the process with exit code 2
// when there is no memory.
void ResizeTransposition(int sizeKb);

// The move stored for the position with side to move, when it is legal, else kNoMove. Prepares the store of the same
// ply, 0 to 7.
PackedMove ProbeTransposition(int ply, Side side);

// The move to try first at a node of the ply, kNoMove for none: the best line's where the search stands on it, else the
// table's. Prepares the store.
PackedMove ProbeHashMove(int ply, Side side);

// Stores the best move of the ply's line for the position of its probe. Does nothing once the search is aborted.
void StoreTransposition(int ply);

} // namespace zorvane

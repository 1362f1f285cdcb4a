// Lists of moves with scores, of fixed capacity.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "board/types.h"

namespace zorvane {

struct ScoredMove {
  std::int32_t Score; // higher is searched earlier; no unit
  PackedMove Move;
};

// A full list takes no further moves. No position of a game comes near the capacities, but placements with forty queens
// can be loaded, and which of their moves are dropped affects the engine's answers.
template <int Capacity> struct MoveList {
  int Count;
  Array<ScoredMove, Capacity> Moves;
};

template <int Capacity> inline void Append(MoveList<Capacity> &list, ScoredMove move) {
  if (list.Count < Capacity)
    list.Moves[list.Count++] = move;
}

// Inserts the move after all with an equal or higher score, so that equals keep the order in which they came.
template <int Capacity> inline void InsertSorted(MoveList<Capacity> &list, ScoredMove move) {
  if (list.Count == Capacity)
    return;
  int place = list.Count++;
  for (; place > 0 && list.Moves[place - 1].Score < move.Score; --place)
    list.Moves[place] = list.Moves[place - 1];
  list.Moves[place] = move;
}

} // namespace zorvane

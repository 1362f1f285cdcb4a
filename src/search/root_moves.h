// The root moves in the order of a pass, which is one iteration's loop over them, and the scores that passes gave them.
#pragma once

#include "board/move_list.h"
#include "board/position.h"

namespace zorvane {

// Captures and quiet moves together. Only placements that no game reaches have more moves; which of them are dropped
// affects the engine's answers, so the number must not change.
constexpr int kRootMoveLimit = 257;

using RootList = MoveList<kRootMoveLimit>;

// The side that the search is for: no search flips SideToMove.
inline Side RootSide() { return SideToMove; }

// Forgets all results, at the start of a search.
void ClearRootResults();

// Forgets the results of the current pass, at the start of a pass.
void BeginRootResults();

// Adds the score of a root move, from White's view, to the results of the current pass.
void AddRootResult(PackedMove move, int score);

// Called when a pass is finished: its results order the moves of the next pass. Those of a stopped pass never do.
void KeepRootResults();

// Fills the list with the legal moves of SideToMove: captures by victim and attacker, then quiet checks, then quiet
// moves by their score in the last finished pass, best first for the side to move, then quiet moves without a score.
void BuildRootMoveList(RootList &list);

} // namespace zorvane

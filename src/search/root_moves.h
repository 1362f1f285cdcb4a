// The moves of the root in the order of a pass, and the scores that the last pass gave them.
#pragma once

#include "board/move_list.h"

namespace zorvane {

// One more than a level's list. Beyond it moves are dropped.
constexpr int kRootMoveLimit = 257;

using RootList = MoveList<kRootMoveLimit>;

// Forgets all results, as each search does at its start.
void ClearRootResults();

// Forgets the results of the running pass, as each pass does at its start.
void BeginRootResults();

// Notes the score of a searched root move, from White's view.
void AddRootResult(PackedMove move, int score);

// The pass is finished: its results order the moves of the next one.
void KeepRootResults();

// Fills the list with the legal moves of SideToMove: captures by victim and attacker, then quiet checks, then other
// quiet moves by their score in the last finished pass, the better for the side the earlier, then those without one.
void BuildRootMoveList(RootList &list);

} // namespace zorvane

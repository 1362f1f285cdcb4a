// The moves of the root in the order of a pass, one iteration's loop over them, and the scores that passes gave them.
#pragma once

#include "board/move_list.h"

namespace zorvane {

// Captures and quiet moves together. Only placements that no game reaches have more moves; which of them are dropped is
// part of what the engine answers, so the number stays.
constexpr int kRootMoveLimit = 257;

using RootList = MoveList<kRootMoveLimit>;

// Forgets all results, as each search does at its start.
void ClearRootResults();

// Forgets the results of the running pass, as each pass does at its start.
void BeginRootResults();

// Appends the score of a searched root move, from White's view, to the results of the running pass.
void AddRootResult(PackedMove move, int score);

// The running pass is finished: its results order the moves of the next one. Those of a stopped pass never do.
void KeepRootResults();

// Fills the list with the legal moves of SideToMove: captures by victim and attacker, then quiet checks, then other
// quiet moves, best first for the side to move by their score in the last finished pass, then those without one.
// Overwrites UndoStack slot 0.
void BuildRootMoveList(RootList &list);

} // namespace zorvane

// The moves of a search level, in the order in which it tries them: captures by victim and attacker, then quiet
// checks, and apart from them the other quiet moves by history.
#pragma once

#include "board/array.h"
#include "board/move_list.h"
#include "board/plies.h"

namespace zorvane {

constexpr int kLevelMoveLimit = 256; // for each of the two lists

using LevelMoveList = MoveList<kLevelMoveLimit>;

// The order of a quiet move that gives check, below every capture.
constexpr int kQuietCheckScore = -1000000;

// By ply, 1 to 7; valid from GenerateMoves of the ply until its level returns. Captures stand in playing order, quiet
// moves in scan order until NextQuietMove brings them forward.
extern Array<LevelMoveList, kSearchPlies> CaptureList;
extern Array<LevelMoveList, kSearchPlies> QuietList;

// Fills both lists of the ply with the legal moves of side. History scores are those of this moment.
template <Side Us> void GenerateMoves(int ply);

// Makes the best of the quiet moves from place on the one at place, the first generated of equals, and returns it. Most
// nodes are cut before they need many, so the list is not sorted beforehand.
PackedMove NextQuietMove(LevelMoveList &list, int place);

// The ordering score of a capture: the most valuable victim first, then the least valuable attacker.
int MoveOrderScore(int from, int to);

// True when the move stands in CaptureList of the ply.
bool IsInCaptureList(int ply, PackedMove move);

} // namespace zorvane

// The moves of a search level in two lists by ply: captures, the most valuable victim first, followed by quiet checks;
// and the other quiet moves, by history.
#pragma once

#include "base/array.h"
#include "board/move_list.h"
#include "board/plies.h"

namespace zorvane {

constexpr int kLevelMoveLimit = 256; // for each of the two lists

using LevelMoveList = MoveList<kLevelMoveLimit>;

// The ordering score of a quiet move that gives check, below every capture.
constexpr int kQuietCheckScore = -1000000;

// By ply, 1 to 7; valid from GenerateMoves of the ply until its level returns. CaptureList, which also holds the quiet
// checks, is in playing order; QuietList is in scan order until NextQuietMove brings moves forward.
extern Array<LevelMoveList, kSearchPlies> CaptureList;
extern Array<LevelMoveList, kSearchPlies> QuietList;

// Fills both lists of the ply with the legal moves of Us, with their present history scores.
template <Side Us> void GenerateMoves(int ply);

// One step of a selection sort: moves the move with the highest score from place on, the first generated of equals, to
// place and returns it; the others keep their order. Most nodes are cut before they need many.
PackedMove NextQuietMove(LevelMoveList &list, int place);

// The ordering score of a capture: the most valuable victim first, then the least valuable attacker. En passant
// captures a pawn.
int MoveOrderScore(int from, int to);

// True if the move is a capture or quiet check in CaptureList of the ply.
bool IsInCaptureList(int ply, PackedMove move);

} // namespace zorvane

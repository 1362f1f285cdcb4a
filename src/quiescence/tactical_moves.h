// The moves that a quiescence node tries when it need not answer a threat: sets of to-squares, legal all of them.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

// The capture zone: captures, en passant, promotions and, withForkPushes, pushes to where the pawn attacks two
// officers.
template <Side Us> void GenerateCaptureZone(MoveSets &moves, const CheckInfo &info, bool withForkPushes);

// Adds the bishop manoeuvres: moves to empty squares from which the bishop, and not from where it stands, can take the
// piece on target. Tries them on the board through slot level of UndoStack.
template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const CheckInfo &info, int target, int level);

// The recapture zone: captures on the squares of retaken and, withChecks, other captures that give check.
template <Side Us> void GenerateRecaptures(MoveSets &moves, const CheckInfo &info, Bitboard retaken, bool withChecks);

// Quiet moves that give check; behind the capture zone without those that had their turn there. Tries some of them on
// the board through slot level of UndoStack.
template <Side Us> void GenerateQuietChecks(MoveSets &moves, const CheckInfo &info, bool behindCaptureZone, int level);

} // namespace zorvane

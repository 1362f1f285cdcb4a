// The moves that a quiescence node tries when it need not reply to a threat; all are legal.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

// The capture zone: captures, en passant, promotions and, withForkPushes, pushes to squares from which the pawn attacks
// two enemy pieces.
template <Side Us> void GenerateCaptureZone(MoveSets &moves, const CheckInfo &info, bool withForkPushes);

// Adds the bishop manoeuvres: moves of a bishop that does not attack the target to empty squares from which it can take
// there. Makes moves and takes them back through the UndoStack slot of ply.
template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const CheckInfo &info, int target, int ply);

// The recapture zone: captures on the squares of retaken and, withChecks, other captures that give check.
template <Side Us> void GenerateRecaptures(MoveSets &moves, const CheckInfo &info, Bitboard retaken, bool withChecks);

// Quiet moves that give check; behind the capture zone without those that had their turn there. Makes moves and takes
// them back through the UndoStack slot of ply.
template <Side Us> void GenerateQuietChecks(MoveSets &moves, const CheckInfo &info, bool behindCaptureZone, int ply);

} // namespace zorvane

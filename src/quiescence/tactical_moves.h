// The moves that a quiescence node tries when it need not reply to a check or threat: legal for a side not in check.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

// The first stage of a node with depth left, the capture zone: captures, en passant, promotions and, withForkPushes,
// pushes to PawnForkSquares.
template <Side Us> void GenerateCaptureZone(MoveSets &moves, const CheckInfo &info, bool withForkPushes);

// Adds the bishop manoeuvres: quiet moves of a bishop that does not attack the target, a piece that the queen can take,
// to squares from which it can take it as well. Overwrites the UndoStack slot of ply.
template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const CheckInfo &info, int target, int ply);

// The first stage of a node without depth, the recapture zone: captures on the squares where a piece of Us stood before
// the enemy's move and, withChecks, other captures that give check. En passant and promotions by a push are not among
// them.
template <Side Us> void GenerateRecaptures(MoveSets &moves, const CheckInfo &info, Bitboard ownBefore, bool withChecks);

// The second stage: moves to empty squares that give check; behind a capture zone without the promotions and en-passant
// captures that had their turn there. Fork pushes and bishop manoeuvres that give check have two turns. A check only by
// the rook that castles or by the piece promoted to is not looked for. Overwrites the UndoStack slot of ply.
template <Side Us> void GenerateQuietChecks(MoveSets &moves, const CheckInfo &info, bool behindCaptureZone, int ply);

} // namespace zorvane

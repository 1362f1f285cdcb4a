// The moves that a quiescence node tries if it need not reply to a check or threat: legal moves of a side not in check.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

// The first stage of a node with depth left, the capture zone: captures, en passant, promotions and, withForkPushes,
// pushes to PawnForkSquares.
template <Side Us> void GenerateCaptureZone(MoveSets &moves, const CheckInfo &info, bool withForkPushes);

// Adds the bishop manoeuvres: quiet moves of a bishop that does not attack the target, a piece that the queen can
// capture, to squares from which it could capture it too.
template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const CheckInfo &info, int target);

// The first stage of a node without depth left, the recapture zone: captures on squares in ownBefore, where a piece of
// Us was before the enemy's move, and, withChecks, other captures that give check. Without en passant and promotions by
// a push.
template <Side Us> void GenerateRecaptures(MoveSets &moves, const CheckInfo &info, Bitboard ownBefore, bool withChecks);

// The second stage: moves to empty squares that give check. After a capture zone, without the promotions and en-passant
// captures that were tried there; fork pushes and bishop manoeuvres that give check are tried again. Checks given only
// by the castling rook or by the new queen are not found.
template <Side Us> void GenerateQuietChecks(MoveSets &moves, const CheckInfo &info, bool afterCaptureZone);

} // namespace zorvane

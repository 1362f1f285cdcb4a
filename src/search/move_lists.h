// The moves of a search level in two lists by ply: captures, the most valuable victim first, followed by quiet checks;
// and the other quiet moves, by history.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "board/move_list.h"
#include "board/plies.h"
#include "board/types.h"

namespace zorvane {

constexpr int kLevelMoveLimit = 256; // for each of the two lists

using LevelMoveList = MoveList<kLevelMoveLimit>;

// A quiet move and its history score in one number: the move with the higher key is played earlier. Equal scores come
// in scan order, which is that of ascending moves.
using QuietKey = std::uint32_t;

constexpr QuietKey MakeQuietKey(std::int32_t score, PackedMove move) {
  return static_cast<QuietKey>(score) * kPackedMoves + static_cast<QuietKey>(kPackedMoves - 1 - move);
}
constexpr PackedMove MoveOf(QuietKey key) { return static_cast<PackedMove>(kPackedMoves - 1 - key % kPackedMoves); }

constexpr int kKeysAtOnce = 8; // compared by one instruction where the processor can

// In scan order, with zeros after the last key up to a multiple of kKeysAtOnce.
struct QuietMoveList {
  alignas(kKeysAtOnce * sizeof(QuietKey)) Array<QuietKey, kLevelMoveLimit> Keys;
  int Count;
};

// The ordering score of a quiet move that gives check, below every capture.
constexpr int kQuietCheckScore = -1000000;

// By ply, 1 to 7; valid from GenerateMoves of the ply until its level returns. CaptureList, which also holds the quiet
// checks, is in playing order.
extern Array<LevelMoveList, kSearchPlies> CaptureList;
extern Array<QuietMoveList, kSearchPlies> QuietList;

// Fills both lists of the ply with the legal moves of Us, with their present history scores.
template <Side Us> void GenerateMoves(int ply);

// The key of the quiet move that is played after the one with the key `last`, or first if that is 0; meaningless if
// there is none. Nothing is sorted, as most nodes are cut before they need many.
QuietKey NextQuietKey(const QuietMoveList &list, QuietKey last);

// The ordering score of a capture: the most valuable victim first, then the least valuable attacker. En passant
// captures a pawn.
int MoveOrderScore(int from, int to);

// True if the move is a capture or quiet check in CaptureList of the ply.
bool IsInCaptureList(int ply, PackedMove move);

} // namespace zorvane

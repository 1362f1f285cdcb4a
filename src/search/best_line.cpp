#include "search/best_line.h"

#include <cassert>

#include "board/array.h"
#include "board/rules.h"

namespace zorvane {

Array<PvEntry, kFinalPvLength> FinalPv;

namespace {

// The root and the levels write a row each; the row behind the last level is read, and always empty.
constexpr int kPvRows = kSearchPlies + 1;

// Row p is the line seen from ply p: its entry i is the move at ply p + i.
struct PvRow {
  int Length;
  Array<PvEntry, kPvRows> Entries;
};

Array<PvRow, kPvRows> PvTable;

} // namespace

void PvClearFrom(int ply) { PvTable[ply].Length = 0; }

void PvStore(int ply, Side side, int from, int to) {
  assert(ply >= 0 && ply < kSearchPlies && IsLegalMoveOf(side, PackMove(from, to)));
  PvRow &row = PvTable[ply];
  const PvRow &next = PvTable[ply + 1];
  row.Entries[0] = {BuildPositionKey(side), PackMove(from, to), PieceOn(from), true};
  for (int i = 0; i < next.Length; ++i)
    row.Entries[i + 1] = next.Entries[i];
  row.Length = next.Length + 1;
}

PackedMove PvBestMove(int ply) {
  assert(PvTable[ply].Length > 0);
  return PvTable[ply].Entries[0].Move;
}

void FinalPvClear() {
  for (PvEntry &entry : FinalPv) {
    entry.Key = {};
    entry.Mover = kNoPiece;
    entry.Valid = false;
  }
}

void FinalPvCopy() {
  const PvRow &root = PvTable[0];
  for (int i = 0; i < root.Length; ++i)
    FinalPv[i] = root.Entries[i];
}

PackedMove PvMoveAtPly(int ply, Side side) {
  const PvEntry &entry = FinalPv[ply];
  if (!entry.Valid || !(entry.Key == BuildPositionKey(side)))
    return kNoMove;
  assert(IsLegalMoveOf(side, entry.Move));
  return entry.Move;
}

} // namespace zorvane

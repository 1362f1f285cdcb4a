#include "search/best_line.h"

#include "board/rules.h"

namespace zorvane {

std::array<PvEntry, kFinalPvLength> FinalPv;

namespace {

// The root and the levels write a row each; the row behind the last level is read, and always empty.
constexpr unsigned kPvRows = 9;

// Row p is the line seen from ply p: its entry i is the move at ply p + i.
struct PvRow {
  int Length;
  std::array<PvEntry, kPvRows> Entries;
};

std::array<PvRow, kPvRows> PvTable;

} // namespace

void PvClearFrom(int ply) { PvTable[static_cast<unsigned>(ply)].Length = 0; }

void PvStore(int ply, Side side, int from, int to) {
  PvRow &row = PvTable[static_cast<unsigned>(ply)];
  const PvRow &next = PvTable[static_cast<unsigned>(ply + 1)];
  row.Entries[0] = {BuildPositionKey(side), PackMove(from, to), PieceOn(from), true};
  for (unsigned i = 0; i < static_cast<unsigned>(next.Length); ++i)
    row.Entries[i + 1] = next.Entries[i];
  row.Length = next.Length + 1;
}

PackedMove PvBestMove(int ply) {
  const PvRow &row = PvTable[static_cast<unsigned>(ply)];
  return row.Length > 0 ? row.Entries[0].Move : kNoMove;
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
  for (unsigned i = 0; i < static_cast<unsigned>(root.Length); ++i)
    FinalPv[i] = root.Entries[i];
}

bool PvMoveAtPly(int ply, Side side) {
  const PvEntry &entry = FinalPv[static_cast<unsigned>(ply)];
  if (ply < 1 || !entry.Valid || !(entry.Key == BuildPositionKey(side)))
    return false;
  return IsLegalMoveOf(side, entry.Move);
}

} // namespace zorvane

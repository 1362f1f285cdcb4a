#include "search/best_line.h"

#include <cassert>

#include "board/position_key.h"
#include "board/rules.h"

namespace zorvane {

namespace {

// The root and the levels write one row each; the row after the last level is read and always empty.
constexpr int kLineRows = kSearchPlies + 1;

// An entry and the position before its move.
struct KeyedEntry {
  PositionKey Key;
  LineEntry Entry;
};

// Row p is the line seen from ply p: its entry i is the move at ply p + i.
struct LineRow {
  int Length;
  Array<KeyedEntry, kLineRows> Entries;
};

Array<LineRow, kLineRows> Lines;
Array<KeyedEntry, kBestLineLength> Kept;

} // namespace

void ClearLine(int ply) { Lines[ply].Length = 0; }

void StoreLine(Side side, int ply, int from, int to) {
  assert(ply >= 0 && ply < kSearchPlies && IsLegalMoveFor(side, PackMove(from, to)));
  LineRow &row = Lines[ply];
  const LineRow &next = Lines[ply + 1];
  row.Entries[0] = {BuildPositionKey(side), {PackMove(from, to), PieceOn(from), true}};
  for (int i = 0; i < next.Length; ++i)
    row.Entries[i + 1] = next.Entries[i];
  row.Length = next.Length + 1;
}

PackedMove FirstOfLine(int ply) {
  assert(Lines[ply].Length > 0);
  return Lines[ply].Entries[0].Entry.Move;
}

void ForgetKeptLine() { Kept = {}; }

void KeepLine() {
  for (KeyedEntry &kept : Kept) {
    kept.Entry.Mover = kNoPiece;
    kept.Entry.Valid = false;
  }
  const LineRow &root = Lines[0];
  for (int i = 0; i < root.Length; ++i)
    Kept[i] = root.Entries[i];
}

BestLine KeptLine() {
  BestLine line;
  for (int ply = 0; ply < kBestLineLength; ++ply)
    line[ply] = Kept[ply].Entry;
  return line;
}

PackedMove KeptMove(Side side, int ply) {
  const KeyedEntry &kept = Kept[ply];
  if (!kept.Entry.Valid || !(kept.Key == BuildPositionKey(side)))
    return kNoMove;
  assert(IsLegalMoveFor(side, kept.Entry.Move));
  return kept.Entry.Move;
}

} // namespace zorvane

#include "quiescence/move_lists.h"

#include <algorithm>

#include "board/piece_values.h"
#include "quiescence/check_targets.h"
#include "quiescence/killers_history.h"

namespace zorvane {

std::array<LevelMoveList, kSearchPlies> CaptureList;
std::array<LevelMoveList, kSearchPlies> QuietList;

namespace {

constexpr int kVictimFactor = 100;

// Quiet moves whose check cannot be read off the to-square: the queen of a promotion, the rook of castling.
bool IsCompound(PieceType type, int from, int to) {
  return (type == kPawn && Contains(kLastRows, to)) || (type == kKing && Absolute(to - from) == 2);
}

} // namespace

PackedMove NextQuietMove(LevelMoveList &list, int place) {
  ScoredMove *const first = list.Moves.data() + place;
  ScoredMove *const end = list.Moves.data() + list.Count;
  ScoredMove *best = first;
  for (ScoredMove *move = first + 1; move < end; ++move)
    if (move->Score > best->Score)
      best = move;
  const ScoredMove chosen = *best;
  std::move_backward(first, best, best + 1);
  *first = chosen;
  return chosen.Move;
}

int MoveOrderScore(int from, int to) {
  const Piece victim = PieceOn(to);
  const int worth = victim == kNoPiece ? kPieceValues[kPawn] : PieceValue(victim);
  return kVictimFactor * worth - PieceValue(PieceOn(from));
}

template <Side Us> void GenerateMoves(int ply) {
  const auto row = static_cast<unsigned>(ply);
  LevelMoveList &captures = CaptureList[row];
  LevelMoveList &quiets = QuietList[row];
  LevelMoveList checksFound;
  captures.Count = quiets.Count = checksFound.Count = 0;

  const KingDanger danger = FindKingDanger<Us>();
  const CheckTargets checks = FindCheckTargets<Us>();
  const Bitboard enemies = Position.BySide[Opposite(Us)];
  MoveSets moves;
  SetLegalMoves<Us>(moves, danger);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    const PieceType type = TypeOf(PieceOn(from));
    const Bitboard checking = CheckingTargets(checks, from, type);
    for (Bitboard targets = moves.Targets[static_cast<unsigned>(from)]; targets != 0;) {
      const int to = PopSquare(targets);
      const PackedMove move = PackMove(from, to);
      if (Contains(enemies, to) || IsEnPassantMove(from, to))
        InsertSorted(captures, {MoveOrderScore(from, to), move});
      else if (IsCompound(type, from, to) ? MoveGivesCheck(ply, from, to) : Contains(checking, to))
        Append(checksFound, {kQuietCheckScore, move});
      else
        Append(quiets, {HistoryTable[Us][static_cast<unsigned>(move)], move});
    }
  }
  for (int i = 0; i < checksFound.Count; ++i)
    Append(captures, checksFound.Moves[static_cast<unsigned>(i)]);
}

template void GenerateMoves<kWhite>(int ply);
template void GenerateMoves<kBlack>(int ply);

bool IsInCaptureList(int ply, PackedMove move) {
  const LevelMoveList &list = CaptureList[static_cast<unsigned>(ply)];
  for (int i = 0; i < list.Count; ++i)
    if (list.Moves[static_cast<unsigned>(i)].Move == move)
      return true;
  return false;
}

} // namespace zorvane

#include "search/move_lists.h"

#include <algorithm>

#include "base/array.h"
#include "board/check_squares.h"
#include "board/piece_square_terms.h"
#include "search/killers_history.h"

namespace zorvane {

Array<LevelMoveList, kSearchPlies> CaptureList;
Array<LevelMoveList, kSearchPlies> QuietList;

namespace {

constexpr int kVictimFactor = 100;

// Quiet moves for which the to-square does not show whether they give check: promotions and castling.
bool IsCompound(PieceType type, int from, int to) {
  return (type == kPawn && Contains(kPromotionRows, to)) || (type == kKing && Absolute(to - from) == kCastlingStep);
}

} // namespace

PackedMove NextQuietMove(LevelMoveList &list, int place) {
  ScoredMove *const first = list.Moves.begin() + place;
  ScoredMove *const end = list.Moves.begin() + list.Count;
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
  LevelMoveList &captures = CaptureList[ply];
  LevelMoveList &quiets = QuietList[ply];
  LevelMoveList checksFound;
  captures.Count = quiets.Count = checksFound.Count = 0;

  const CheckInfo info = FindCheckInfo<Us>();
  const CheckSquares checks = FindCheckSquares<Us>();
  const Bitboard enemies = Board.BySide[Opposite(Us)];
  MoveSets moves;
  GenerateLegalMoves<Us>(moves, info);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    const PieceType type = TypeOf(PieceOn(from));
    const Bitboard checking = CheckingTargets(checks, from, type);
    for (Bitboard targets = moves.Targets[from]; targets != 0;) {
      const int to = PopLsb(targets);
      const PackedMove move = PackMove(from, to);
      if (Contains(enemies, to) || IsEnPassantMove(from, to))
        InsertSorted(captures, {MoveOrderScore(from, to), move});
      else if (IsCompound(type, from, to) ? MoveGivesCheck(from, to) : Contains(checking, to))
        Append(checksFound, {kQuietCheckScore, move});
      else
        Append(quiets, {HistoryTable[Us][move], move});
    }
  }
  for (int i = 0; i < checksFound.Count; ++i)
    Append(captures, checksFound.Moves[i]);
}

template void GenerateMoves<kWhite>(int ply);
template void GenerateMoves<kBlack>(int ply);

bool IsInCaptureList(int ply, PackedMove move) {
  const LevelMoveList &list = CaptureList[ply];
  for (int i = 0; i < list.Count; ++i)
    if (list.Moves[i].Move == move)
      return true;
  return false;
}

} // namespace zorvane

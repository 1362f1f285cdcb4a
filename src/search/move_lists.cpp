#include "search/move_lists.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/array.h"
#include "board/check_squares.h"
#include "board/piece_square_terms.h"
#include "search/killers_history.h"

namespace zorvane {

Array<LevelMoveList, kSearchPlies> CaptureList;
Array<QuietMoveList, kSearchPlies> QuietList;

namespace {

constexpr int kVictimFactor = 100;
constexpr QuietKey kSignBit = QuietKey{1} << 31;

// Every key has room for its score, and a full list ends with a whole vector.
static_assert(kHistoryLimit < (1 << 30) / kPackedMoves * 4 && kLevelMoveLimit % kKeysAtOnce == 0);

// The targets on which a piece captures, en passant included.
template <Side Us> Bitboard CapturingTargets(int from, PieceType type, Bitboard targets) {
  const Bitboard captured = Board.BySide[Opposite(Us)] | (type == kPawn ? EnPassantSet() & kPawnAttacks[Us][from] : 0);
  return targets & captured;
}

// The targets of quiet moves that give check. The to-square does not show that of promotions and castling.
Bitboard QuietCheckTargets(const CheckSquares &checks, int from, PieceType type, Bitboard targets) {
  const Bitboard simple = type == kPawn ? ~kPromotionRows : type == kKing ? kKingAttacks[from] : kAllSquares;
  Bitboard checking = targets & simple & CheckingTargets(checks, from, type);
  for (Bitboard others = targets & ~simple; others != 0;) {
    const int to = PopLsb(others);
    if (MoveGivesCheck(from, to))
      checking |= Bit(to);
  }
  return checking;
}

// The compilers' vector types, as they do not turn the same loop over plain numbers into as few instructions.
using KeyVector = QuietKey __attribute__((vector_size(kKeysAtOnce * sizeof(QuietKey))));
using SignedVector = std::int32_t __attribute__((vector_size(kKeysAtOnce * sizeof(QuietKey))));

template <Side Us> void AppendQuiets(QuietMoveList &list, int from, Bitboard targets) {
  int count = list.Count;
  while (targets != 0 && count < kLevelMoveLimit) {
    const PackedMove move = PackMove(from, PopLsb(targets));
    list.Keys[count++] = MakeQuietKey(HistoryTable[Us][move], move);
  }
  list.Count = count;
}

void FillUp(QuietMoveList &list) {
  for (int i = list.Count; i % kKeysAtOnce != 0; ++i)
    list.Keys[i] = 0;
}

} // namespace

QuietKey NextQuietKey(const QuietMoveList &list, QuietKey last) {
  // The difference to `last` wraps around. With its sign bit turned over it is a signed number, as every processor can
  // compare several of at once: highest for the key just below `last`, lowest for `last` itself.
  const QuietKey offset = last + kSignBit;
  SignedVector best = SignedVector{} + std::numeric_limits<std::int32_t>::min();
  for (int i = 0; i < list.Count; i += kKeysAtOnce) {
    KeyVector keys;
    std::memcpy(&keys, &list.Keys[i], sizeof keys);
    const auto differences = reinterpret_cast<SignedVector>(keys - offset);
    best = differences > best ? differences : best;
  }
  std::int32_t highest = best[0];
  for (int i = 1; i < kKeysAtOnce; ++i)
    highest = std::max(highest, best[i]);
  return static_cast<QuietKey>(highest) + offset;
}

int MoveOrderScore(int from, int to) {
  const Piece victim = PieceOn(to);
  const int worth = victim == kNoPiece ? kPieceValues[kPawn] : PieceValue(victim);
  return kVictimFactor * worth - PieceValue(PieceOn(from));
}

template <Side Us> void GenerateMoves(int ply) {
  LevelMoveList &captures = CaptureList[ply];
  QuietMoveList &quiets = QuietList[ply];
  LevelMoveList checksFound;
  captures.Count = quiets.Count = checksFound.Count = 0;

  const CheckInfo info = FindCheckInfo<Us>();
  const CheckSquares checks = FindCheckSquares<Us>();
  MoveSets moves;
  GenerateLegalMoves<Us>(moves, info);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    const PieceType type = TypeOf(PieceOn(from));
    const Bitboard targets = moves.Targets[from];
    const Bitboard capturing = CapturingTargets<Us>(from, type, targets);
    const Bitboard checking = QuietCheckTargets(checks, from, type, targets & ~capturing);
    for (Bitboard squares = capturing; squares != 0;) {
      const int to = PopLsb(squares);
      InsertSorted(captures, {MoveOrderScore(from, to), PackMove(from, to)});
    }
    for (Bitboard squares = checking; squares != 0;)
      Append(checksFound, {kQuietCheckScore, PackMove(from, PopLsb(squares))});
    AppendQuiets<Us>(quiets, from, targets & ~capturing & ~checking);
  }
  for (int i = 0; i < checksFound.Count; ++i)
    Append(captures, checksFound.Moves[i]);
  FillUp(quiets);
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

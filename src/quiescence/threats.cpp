#include "quiescence/threats.h"

#include <cassert>

#include "board/rules.h"

namespace zorvane {

template <Side Us> bool HasPawnForkPush() {
  const Bitboard forks = PawnForkSquares<Us>() & ~Occupied();
  if (forks == 0)
    return false;
  const Bitboard pawns = Pieces(Us, kPawn) & ~kPromotionRows;
  const Bitboard single = SinglePushes<Us>(pawns);
  for (Bitboard targets = single & forks; targets != 0;) {
    const int to = PopLsb(targets);
    if (IsLegalMove(Lsb(ShiftBackward<Us>(Bit(to))), to))
      return true;
  }
  for (Bitboard targets = DoublePushes<Us>(single) & forks; targets != 0;) {
    const int to = PopLsb(targets);
    if (IsLegalMove(Lsb(ShiftBackward<Us>(ShiftBackward<Us>(Bit(to)))), to))
      return true;
  }
  return false;
}

bool HasFreshKnightFork(Side us, int ply) {
  assert(ply >= 1);
  const Side them = Opposite(us);
  const BoardState &before = UndoStack[ply - 1];
  const Bitboard majors = Pieces(them, kRook, kQueen);
  const Bitboard pieces = majors | Pieces(them, kKnight, kBishop);
  Bitboard fresh = Pieces(us, kKnight) & ~(before.BySide[us] & before.ByType[kKnight - 1]);
  while (fresh != 0) {
    const int knight = PopLsb(fresh);
    Bitboard forked = 0;
    for (Bitboard attacked = kKnightAttacks[knight] & pieces; attacked != 0;) {
      const int target = PopLsb(attacked);
      if (IsLegalMove(knight, target))
        forked |= Bit(target);
    }
    if (MoreThanOne(forked) && (forked & majors) != 0)
      return true;
  }
  return false;
}

int FindQueenTarget(Side us) {
  const Bitboard queens = Pieces(us, kQueen);
  if (queens == 0)
    return kNoSquare;
  const int queen = kSquares - 1 - std::countl_zero(queens);
  Bitboard targets = QueenAttacks(queen, Occupied()) & Pieces(Opposite(us), kKnight, kBishop);
  while (targets != 0) {
    const int target = PopLsb(targets);
    if (IsLegalMove(queen, target))
      return target;
  }
  return kNoSquare;
}

template bool HasPawnForkPush<kWhite>();
template bool HasPawnForkPush<kBlack>();

} // namespace zorvane

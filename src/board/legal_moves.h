// The legal moves of a side as sets of to-squares, from one look at the checks and pins on its king.
//
// Good for every position that LoadFen accepts. Walking the from-squares upwards and each set of to-squares
// upwards gives the order in which the engine tries moves.
#pragma once

#include "board/rules.h"

namespace zorvane {

// What bears on the own king. Valid until the position changes.
struct KingDanger {
  int King;
  Bitboard Checkers;
  Bitboard Pinned;    // own men that may move along the line with their king alone
  Bitboard Resolving; // where a man other than the king may go: all squares, or those that answer the one check
};

// The pieces that shield the square from sliders: pieces of the set shields, alone on a line between the
// square and one of the sliders given. rookReach and bishopReach are the attacks from the square.
inline Bitboard Shields(int square, Bitboard shields, Bitboard rookReach, Bitboard bishopReach, Bitboard straight,
                        Bitboard diagonal) {
  const Bitboard occupied = Occupied();
  Bitboard sliders = (RookAttacks(square, occupied & ~(rookReach & shields)) & ~rookReach & straight) |
                     (BishopAttacks(square, occupied & ~(bishopReach & shields)) & ~bishopReach & diagonal);
  Bitboard found = 0;
  while (sliders != 0)
    found |= Between[static_cast<unsigned>(square)][static_cast<unsigned>(PopSquare(sliders))] & shields;
  return found;
}

template <Side Us> inline KingDanger FindKingDanger() {
  constexpr Side them = Opposite(Us);
  KingDanger danger;
  const int king = danger.King = FindKingSquare(Us);
  const auto place = static_cast<unsigned>(king);
  const Bitboard occupied = Occupied();
  const Bitboard straight = Pieces(them, kRook, kQueen);
  const Bitboard diagonal = Pieces(them, kBishop, kQueen);
  const Bitboard rookReach = RookAttacks(king, occupied);
  const Bitboard bishopReach = BishopAttacks(king, occupied);
  danger.Checkers = (rookReach & straight) | (bishopReach & diagonal) |
                    (((KnightAttacks[place] & Pieces(kKnight)) | (PawnAttacks[Us][place] & Pieces(kPawn)) |
                      (KingAttacks[place] & Pieces(kKing))) &
                     Position.BySide[them]);
  danger.Pinned = Shields(king, Position.BySide[Us], rookReach, bishopReach, straight, diagonal);
  danger.Resolving = danger.Checkers == 0 ? kAllSquares
                     : HasSeveral(danger.Checkers)
                         ? 0
                         : danger.Checkers | Between[place][static_cast<unsigned>(LowestSquare(danger.Checkers))];
  return danger;
}

// The line that a pinned man is held to, all squares for any other.
inline Bitboard PinLine(const KingDanger &danger, int from) {
  return Contains(danger.Pinned, from) ? Line[static_cast<unsigned>(danger.King)][static_cast<unsigned>(from)]
                                       : kAllSquares;
}

// True when the king of Us would be attacked on the square, itself taken off the board.
template <Side Us> inline bool IsDeadlyForKing(int square, Bitboard occupiedWithoutKing) {
  constexpr Side them = Opposite(Us);
  const auto place = static_cast<unsigned>(square);
  return (((PawnAttacks[Us][place] & Pieces(kPawn)) | (KnightAttacks[place] & Pieces(kKnight)) |
           (KingAttacks[place] & Pieces(kKing))) &
          Position.BySide[them]) != 0 ||
         (RookAttacks(square, occupiedWithoutKing) & Pieces(them, kRook, kQueen)) != 0 ||
         (BishopAttacks(square, occupiedWithoutKing) & Pieces(them, kBishop, kQueen)) != 0;
}

// The king's legal steps among the squares wanted; castling apart.
template <Side Us> inline Bitboard KingSteps(int king, Bitboard wanted) {
  Bitboard candidates = KingAttacks[static_cast<unsigned>(king)] & wanted & ~Position.BySide[Us] & ~Pieces(kKing);
  const Bitboard occupied = Occupied() & ~Bit(king);
  Bitboard steps = 0;
  while (candidates != 0) {
    const int square = PopSquare(candidates);
    if (!IsDeadlyForKing<Us>(square, occupied))
      steps |= Bit(square);
  }
  return steps;
}

// The squares that the king may castle to.
template <Side Us> inline Bitboard CastlingTargets(const KingDanger &danger) {
  constexpr int home = Us == kWhite ? MakeSquare(4, 7) : MakeSquare(4, 0);
  constexpr unsigned kingMoved = Us == kWhite ? kWhiteKingMoved : kBlackKingMoved;
  if ((Position.MovedFlags & kingMoved) != 0 || danger.King != home || danger.Checkers != 0)
    return 0;
  return (CanCastle(home, home + 2) ? Bit(home + 2) : 0) | (CanCastle(home, home - 2) ? Bit(home - 2) : 0);
}

// The own pawns that can take en passant, legally.
template <Side Us> inline Bitboard EnPassantCapturers() {
  const int target = Position.EnPassantSquare;
  if (target == kNoSquare)
    return 0;
  Bitboard capturers = 0;
  Bitboard pawns = PawnAttacks[Opposite(Us)][static_cast<unsigned>(target)] & Pieces(Us, kPawn);
  while (pawns != 0) {
    const int from = PopSquare(pawns);
    if (IsEnPassantMove(from, target) && IsLegalMove(from, target))
      capturers |= Bit(from);
  }
  return capturers;
}

// Where a set of pawns may be pushed to, one step and two; checks and pins apart.
template <Side Us> inline Bitboard SinglePushes(Bitboard pawns) { return Ahead<Us>(pawns) & ~Occupied(); }
template <Side Us> inline Bitboard DoublePushes(Bitboard singlePushes) {
  constexpr Bitboard firstStep = Us == kWhite ? RowMask(5) : RowMask(2);
  return Ahead<Us>(singlePushes & firstStep) & ~Occupied();
}

// The to-squares of all legal moves of the man on from.
template <Side Us> inline Bitboard LegalTargets(const KingDanger &danger, int from) {
  constexpr Side them = Opposite(Us);
  const auto place = static_cast<unsigned>(from);
  const Bitboard allowed = danger.Resolving & PinLine(danger, from) & ~Position.BySide[Us] & ~Pieces(kKing);
  switch (TypeOf(PieceOn(from))) {
  case kPawn: {
    const Bitboard single = SinglePushes<Us>(Bit(from));
    const Bitboard captures = PawnAttacks[Us][place] & Position.BySide[them];
    Bitboard targets = (single | DoublePushes<Us>(single) | captures) & allowed;
    if (Position.EnPassantSquare != kNoSquare && Contains(PawnAttacks[Us][place], Position.EnPassantSquare) &&
        IsEnPassantMove(from, Position.EnPassantSquare) && IsLegalMove(from, Position.EnPassantSquare))
      targets |= Bit(Position.EnPassantSquare);
    return targets;
  }
  case kRook:
    return RookAttacks(from, Occupied()) & allowed;
  case kKnight:
    return KnightAttacks[place] & allowed;
  case kBishop:
    return BishopAttacks(from, Occupied()) & allowed;
  case kQueen:
    return QueenAttacks(from, Occupied()) & allowed;
  case kKing:
    return KingSteps<Us>(danger.King, kAllSquares) | CastlingTargets<Us>(danger);
  default:
    return 0;
  }
}

// True when Us has a legal move.
template <Side Us> inline bool HasLegalMoveOf(const KingDanger &danger) {
  if (danger.Checkers == 0) {
    // A push or a knight's jump of a man that is not pinned settles it nearly always.
    const Bitboard freeMen = Position.BySide[Us] & ~danger.Pinned;
    if (SinglePushes<Us>(freeMen & Pieces(kPawn)) != 0)
      return true;
  }
  Bitboard men = Position.BySide[Us];
  while (men != 0)
    if (LegalTargets<Us>(danger, PopSquare(men)) != 0)
      return true;
  return false;
}

// The number of legal moves of Us, each promotion counted as one move.
template <Side Us> inline int CountLegalMovesOf(const KingDanger &danger) {
  int count = 0;
  Bitboard men = Position.BySide[Us];
  while (men != 0)
    count += CountSquares(LegalTargets<Us>(danger, PopSquare(men)));
  return count;
}

} // namespace zorvane

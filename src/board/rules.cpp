#include "board/rules.h"

namespace zorvane {

namespace {

template <Side Us> Bitboard PushTargets(int from) {
  const Bitboard single = SinglePushes<Us>(Bit(from));
  return single | DoublePushes<Us>(single);
}

// The square of the pawn that is captured en passant.
int EnPassantVictim(int from, int to) { return MakeSquare(FileOf(to), RowOf(from)); }

bool IsPseudoLegalPawnMove(int from, int to) {
  const Side us = SideOf(PieceOn(from));
  if (FileOf(from) == FileOf(to))
    return Contains(us == kWhite ? PushTargets<kWhite>(from) : PushTargets<kBlack>(from), to);
  if (!Contains(kPawnAttacks[us][from], to))
    return false;
  if (PieceOn(to) != kNoPiece)
    return true;
  return to == Board.EnPassantSquare && PieceOn(EnPassantVictim(from, to)) == MakePiece(Opposite(us), kPawn);
}

// The occupied squares after a move, with castling's rook in its new place. removed is what the move captures.
Bitboard OccupiedAfter(int from, int to, Bitboard removed) {
  Bitboard occupied = (Occupied() & ~Bit(from) & ~removed) | Bit(to);
  if (TypeOf(PieceOn(from)) == kKing && Absolute(to - from) == kCastlingStep)
    occupied = (occupied & ~Bit(to > from ? from + 3 : from - 4)) | Bit((from + to) / 2);
  return occupied;
}

} // namespace

Bitboard PieceAttacks(int from) {
  const Piece piece = PieceOn(from);
  switch (TypeOf(piece)) {
  case kPawn:
    return kPawnAttacks[SideOf(piece)][from];
  case kRook:
    return RookAttacks(from, Occupied());
  case kKnight:
    return kKnightAttacks[from];
  case kBishop:
    return BishopAttacks(from, Occupied());
  case kQueen:
    return QueenAttacks(from, Occupied());
  case kKing:
    return kKingAttacks[from];
  default:
    return 0;
  }
}

Bitboard AttackersTo(int square, Bitboard occupied) {
  return (kPawnAttacks[kBlack][square] & Pieces(kWhite, kPawn)) |
         (kPawnAttacks[kWhite][square] & Pieces(kBlack, kPawn)) | (kKnightAttacks[square] & Pieces(kKnight)) |
         (kKingAttacks[square] & Pieces(kKing)) | (RookAttacks(square, occupied) & Pieces(kRook, kQueen)) |
         (BishopAttacks(square, occupied) & Pieces(kBishop, kQueen));
}

bool IsSquareAttacked(int square, Side bySide) { return (AttackersTo(square, Occupied()) & Board.BySide[bySide]) != 0; }

bool IsInCheck(Side side) { return IsSquareAttacked(FindKingSquare(side), Opposite(side)); }

bool CanCastle(int from, int to) {
  const Side us = SideOf(PieceOn(from));
  const Side them = Opposite(us);
  const int home = us == kWhite ? MakeSquare(4, 7) : MakeSquare(4, 0);
  if (TypeOf(PieceOn(from)) != kKing || from != home || (to != home + 2 && to != home - 2))
    return false;
  const bool kingSide = to > from;
  const int corner = kingSide ? home + 3 : home - 4;
  const unsigned lost = (us == kWhite ? kWhiteKingMoved : kBlackKingMoved) | RookCornerFlag(us, corner);
  if ((Board.MovedFlags & lost) != 0 || PieceOn(corner) != MakePiece(us, kRook))
    return false;
  const Bitboard between = kingSide ? Bit(home + 1) | Bit(home + 2) : Bit(home - 1) | Bit(home - 2) | Bit(home - 3);
  return (Occupied() & between) == 0 && !IsSquareAttacked(home, them) && !IsSquareAttacked((home + to) / 2, them) &&
         !IsSquareAttacked(to, them);
}

bool IsPseudoLegalMove(int from, int to) {
  const Piece piece = PieceOn(from);
  const Piece target = PieceOn(to);
  if (piece == kNoPiece)
    return false;
  if (target != kNoPiece && (SideOf(target) == SideOf(piece) || TypeOf(target) == kKing))
    return false;
  if (TypeOf(piece) == kPawn)
    return IsPseudoLegalPawnMove(from, to);
  return Contains(PieceAttacks(from), to) || CanCastle(from, to);
}

bool IsLegalMove(int from, int to) {
  if (!IsPseudoLegalMove(from, to))
    return false;
  const Side us = SideOf(PieceOn(from));
  const Bitboard removed = IsEnPassantMove(from, to) ? Bit(EnPassantVictim(from, to)) : Bit(to);
  const int king = TypeOf(PieceOn(from)) == kKing ? to : FindKingSquare(us);
  const Bitboard attackers = AttackersTo(king, OccupiedAfter(from, to, removed));
  return (attackers & Board.BySide[Opposite(us)] & ~removed) == 0;
}

void MakeMove(int from, int to) {
  if (SideOf(PieceOn(from)) == kWhite)
    MakeMove<kWhite>(from, to);
  else
    MakeMove<kBlack>(from, to);
}

template <Side Us> void FinishSpecialMove(PieceType type, int from, int to) {
  if (type == kKing) {
    RemovePiece(to > from ? from + 3 : from - 4);
    PutPiece((from + to) / 2, MakePiece(Us, kRook));
  } else if (Absolute(to - from) == kDoubleStep) {
    Board.EnPassantSquare = static_cast<std::uint8_t>((from + to) / 2);
  } else if (Contains(kPromotionRows, to)) {
    RemovePiece(to);
    PutPiece(to, MakePiece(Us, kQueen));
  } else if (FileOf(from) != FileOf(to)) {
    RemovePiece(EnPassantVictim(from, to));
  }
}

template void FinishSpecialMove<kWhite>(PieceType type, int from, int to);
template void FinishSpecialMove<kBlack>(PieceType type, int from, int to);

bool MoveGivesCheck(int from, int to) {
  const Side them = Opposite(SideOf(PieceOn(from)));
  const BoardState saved = Board;
  MakeMove(from, to);
  const bool check = IsInCheck(them);
  RestoreState(saved);
  return check;
}

} // namespace zorvane

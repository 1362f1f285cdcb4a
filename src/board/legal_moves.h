// The legal moves of a side as sets of to-squares, from one look at what bears on its king.
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
  Bitboard RookReach;   // what the king sees along rows and files,
  Bitboard BishopReach; // and along diagonals
};

// The pieces of the set shields that stand alone between the square and one of the sliders given. rookReach and
// bishopReach are the attacks from the square.
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
  danger.King = FindKingSquare(Us);
  const auto place = static_cast<unsigned>(danger.King);
  danger.RookReach = RookAttacks(danger.King, Occupied());
  danger.BishopReach = BishopAttacks(danger.King, Occupied());
  danger.Checkers = ((danger.RookReach & Pieces(kRook, kQueen)) | (danger.BishopReach & Pieces(kBishop, kQueen)) |
                     (KnightAttacks[place] & Pieces(kKnight)) | (PawnAttacks[Us][place] & Pieces(kPawn)) |
                     (KingAttacks[place] & Pieces(kKing))) &
                    Position.BySide[them];
  return danger;
}

// Where a man other than the king may go: all squares, or those that answer the one check.
inline Bitboard ResolvingSquares(const KingDanger &danger) {
  if (danger.Checkers == 0)
    return kAllSquares;
  return HasSeveral(danger.Checkers)
             ? 0
             : danger.Checkers |
                   Between[static_cast<unsigned>(danger.King)][static_cast<unsigned>(LowestSquare(danger.Checkers))];
}

// The own men that may move along the line with their king alone.
template <Side Us> inline Bitboard PinnedMen(const KingDanger &danger) {
  constexpr Side them = Opposite(Us);
  return Shields(danger.King, Position.BySide[Us], danger.RookReach, danger.BishopReach, Pieces(them, kRook, kQueen),
                 Pieces(them, kBishop, kQueen));
}

// The line that a man is held to when it is among those pinned, all squares for any other.
inline Bitboard PinLine(const KingDanger &danger, Bitboard pinned, int from) {
  return Contains(pinned, from) ? Line[static_cast<unsigned>(danger.King)][static_cast<unsigned>(from)] : kAllSquares;
}

// The king's legal steps among the squares wanted; castling apart.
template <Side Us> inline Bitboard KingSteps(int king, Bitboard wanted) {
  constexpr Side them = Opposite(Us);
  wanted &= KingAttacks[static_cast<unsigned>(king)];
  if (wanted == 0)
    return 0;
  // Whatever is seen for all squares at once saves tests of single ones; those have no branch that could be guessed
  // wrong.
  const Bitboard guarded = PawnCaptures<them>(Pieces(them, kPawn)) |
                           KingAttacks[static_cast<unsigned>(FindKingSquare(them))] | Position.BySide[Us] |
                           Pieces(kKing);
  const Bitboard occupied = Occupied() & ~Bit(king); // the king does not hide behind itself
  const Bitboard knights = Pieces(them, kKnight);
  const Bitboard straight = Pieces(them, kRook, kQueen);
  const Bitboard diagonal = Pieces(them, kBishop, kQueen);
  Bitboard steps = 0;
  for (Bitboard candidates = wanted & ~guarded; candidates != 0;) {
    const int square = PopSquare(candidates);
    const Bitboard attackers = (KnightAttacks[static_cast<unsigned>(square)] & knights) |
                               (RookAttacks(square, occupied) & straight) |
                               (BishopAttacks(square, occupied) & diagonal);
    steps |= static_cast<Bitboard>(attackers == 0) << square;
  }
  return steps;
}

// True when the king of Us, unmoved and not in check, may castle with the rook of a corner. steps are its legal steps:
// the square that it passes is among them when it is free and safe.
template <Side Us> inline bool MayCastleWith(int corner, Bitboard between, int passed, int target, Bitboard steps) {
  return (Occupied() & between) == 0 && Contains(steps, passed) &&
         (Position.MovedFlags & RookCornerFlag(Us, corner)) == 0 && PieceOn(corner) == MakePiece(Us, kRook) &&
         !IsSquareAttacked(target, Opposite(Us));
}

// The squares that the king may castle to; steps are its legal steps.
template <Side Us> inline Bitboard CastlingTargets(const KingDanger &danger, Bitboard steps) {
  constexpr int home = Us == kWhite ? MakeSquare(4, 7) : MakeSquare(4, 0);
  constexpr unsigned kingMoved = Us == kWhite ? kWhiteKingMoved : kBlackKingMoved;
  if ((Position.MovedFlags & kingMoved) != 0 || danger.King != home || danger.Checkers != 0)
    return 0;
  constexpr Bitboard kingSide = Bit(home + 1) | Bit(home + 2);
  constexpr Bitboard queenSide = Bit(home - 1) | Bit(home - 2) | Bit(home - 3);
  return (MayCastleWith<Us>(home + 3, kingSide, home + 1, home + 2, steps) ? Bit(home + 2) : 0) |
         (MayCastleWith<Us>(home - 4, queenSide, home - 1, home - 2, steps) ? Bit(home - 2) : 0);
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

// Sets of moves: to-squares by from-square, meaningful for the squares of Froms alone.
struct MoveSets {
  Bitboard Froms;
  std::array<Bitboard, kSquares> Targets;
};

// The first entry for a from-square; an empty one leaves no trace.
inline void SetMoves(MoveSets &moves, int from, Bitboard targets) {
  moves.Targets[static_cast<unsigned>(from)] = targets;
  moves.Froms |= static_cast<Bitboard>(targets != 0) << from;
}

// A further entry for a from-square that may have one.
inline void AddMoves(MoveSets &moves, int from, Bitboard targets) {
  const Bitboard known = Contains(moves.Froms, from) ? moves.Targets[static_cast<unsigned>(from)] : 0;
  SetMoves(moves, from, known | targets);
}

// Leaves an entry of Froms only the squares given.
inline void KeepMoves(MoveSets &moves, int from, Bitboard squares) {
  Bitboard &targets = moves.Targets[static_cast<unsigned>(from)];
  targets &= squares;
  moves.Froms ^= static_cast<Bitboard>(targets == 0) << from;
}

// The squares that each kind of piece may go to.
struct PieceSquares {
  Bitboard Rook;
  Bitboard Knight;
  Bitboard Bishop;
  Bitboard Queen;
};

// Takes out what pins forbid, of moves that have been set without a look at them. Most positions have no move of a man
// that its king sees, and so no need to know the pins.
template <Side Us> inline void HoldPinned(MoveSets &moves, const KingDanger &danger) {
  if ((moves.Froms & (danger.RookReach | danger.BishopReach)) == 0)
    return;
  for (Bitboard pinned = PinnedMen<Us>(danger) & moves.Froms; pinned != 0;) {
    const int from = PopSquare(pinned);
    KeepMoves(moves, from, Line[static_cast<unsigned>(danger.King)][static_cast<unsigned>(from)]);
  }
}

// The same squares for each of them.
inline PieceSquares SameForAll(Bitboard squares) { return {squares, squares, squares, squares}; }

// Moves of rooks, knights, bishops and queens to the squares given; checks and pins apart.
template <Side Us> inline void SetPieceMoves(MoveSets &moves, const PieceSquares &squares) {
  const Bitboard occupied = Occupied();
  for (Bitboard rooks = Pieces(Us, kRook); rooks != 0;) {
    const int from = PopSquare(rooks);
    SetMoves(moves, from, RookAttacks(from, occupied) & squares.Rook);
  }
  for (Bitboard knights = Pieces(Us, kKnight); knights != 0;) {
    const int from = PopSquare(knights);
    SetMoves(moves, from, KnightAttacks[static_cast<unsigned>(from)] & squares.Knight);
  }
  for (Bitboard bishops = Pieces(Us, kBishop); bishops != 0;) {
    const int from = PopSquare(bishops);
    SetMoves(moves, from, BishopAttacks(from, occupied) & squares.Bishop);
  }
  for (Bitboard queens = Pieces(Us, kQueen); queens != 0;) {
    const int from = PopSquare(queens);
    SetMoves(moves, from, QueenAttacks(from, occupied) & squares.Queen);
  }
}

// Moves of pawns: captures among the enemies given and pushes onto the squares given; en passant, checks and pins
// apart.
template <Side Us> inline void SetPawnMoves(MoveSets &moves, Bitboard enemies, Bitboard pushSquares) {
  const Bitboard pawns = Pieces(Us, kPawn);
  const Bitboard single = SinglePushes<Us>(pawns);
  const Bitboard twice = DoublePushes<Us>(single) & pushSquares;
  for (Bitboard movers =
           ((PawnCaptures<Opposite(Us)>(enemies) | Behind<Us>(single & pushSquares) | Behind<Us>(Behind<Us>(twice))) &
            pawns);
       movers != 0;) {
    const int from = PopSquare(movers);
    const Bitboard step = Ahead<Us>(Bit(from)) & single;
    const Bitboard pushes = (step & pushSquares) | (Ahead<Us>(step) & twice);
    SetMoves(moves, from, (PawnAttacks[Us][static_cast<unsigned>(from)] & enemies) | pushes);
  }
}

// All legal moves.
template <Side Us> inline void SetLegalMoves(MoveSets &moves, const KingDanger &danger) {
  moves.Froms = 0;
  const Bitboard steps = KingSteps<Us>(danger.King, kAllSquares);
  SetMoves(moves, danger.King, steps | CastlingTargets<Us>(danger, steps));
  const Bitboard resolving = ResolvingSquares(danger);
  if (resolving == 0)
    return;
  const Bitboard allowed = resolving & ~Position.BySide[Us] & ~Pieces(kKing);
  SetPieceMoves<Us>(moves, SameForAll(allowed));
  SetPawnMoves<Us>(moves, allowed & Position.BySide[Opposite(Us)], allowed);
  HoldPinned<Us>(moves, danger);
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;)
    AddMoves(moves, PopSquare(pawns), EnPassantSet());
}

// True when Us has a legal move.
template <Side Us> inline bool HasLegalMoveOf(const KingDanger &danger) {
  // A man that its king does not see cannot be pinned; a push of such a pawn settles it nearly always.
  const Bitboard unseen = Pieces(Us, kPawn) & ~(danger.RookReach | danger.BishopReach);
  if (danger.Checkers == 0 && SinglePushes<Us>(unseen) != 0)
    return true;
  MoveSets moves;
  SetLegalMoves<Us>(moves, danger);
  return moves.Froms != 0;
}

// The same for a side known only at run time, where nothing is hot.
void GenerateLegalMoves(MoveSets &moves, Side side);
bool HasLegalMove(Side side);

// The number of moves in the sets, each promotion counted as one.
int CountMoves(const MoveSets &moves);

} // namespace zorvane

// The legal moves of a side as sets of to-squares, generated from checkers and pins, which are computed once.
//
// Correct for every position that LoadFen accepts. Walking the from-squares upwards, and the to-squares of each
// upwards, gives the order in which the engine tries moves.
#pragma once

#include "base/array.h"
#include "board/rules.h"

namespace zorvane {

// What move generation has to know about a side's king. Valid until the position changes.
struct CheckInfo {
  int King;             // its square
  Bitboard Checkers;    // enemy pieces that give check
  Bitboard RookReach;   // attacks of a rook on the king's square
  Bitboard BishopReach; // attacks of a bishop there
};

// Those candidates that are the only piece between the square and a slider in straight (rooks, queens) or diagonal
// (bishops, queens). rookReach and bishopReach are the attacks of a rook and a bishop on the square.
inline Bitboard LoneBlockers(int square, Bitboard candidates, Bitboard rookReach, Bitboard bishopReach,
                             Bitboard straight, Bitboard diagonal) {
  // X-ray: a slider that is reached only after the first candidate of each ray is removed has exactly one blocker.
  const Bitboard occupied = Occupied();
  Bitboard sliders = (RookAttacks(square, occupied & ~(rookReach & candidates)) & ~rookReach & straight) |
                     (BishopAttacks(square, occupied & ~(bishopReach & candidates)) & ~bishopReach & diagonal);
  Bitboard found = 0;
  while (sliders != 0)
    found |= Between[square][PopLsb(sliders)] & candidates;
  return found;
}

// The info about the king of Us.
template <Side Us> inline CheckInfo FindCheckInfo() {
  constexpr Side them = Opposite(Us);
  CheckInfo info;
  info.King = FindKingSquare(Us);
  info.RookReach = RookAttacks(info.King, Occupied());
  info.BishopReach = BishopAttacks(info.King, Occupied());
  info.Checkers = ((info.RookReach & Pieces(kRook, kQueen)) | (info.BishopReach & Pieces(kBishop, kQueen)) |
                   (kKnightAttacks[info.King] & Pieces(kKnight)) | (kPawnAttacks[Us][info.King] & Pieces(kPawn)) |
                   (kKingAttacks[info.King] & Pieces(kKing))) &
                  Board.BySide[them];
  return info;
}

// Where pieces other than the king may go: anywhere if there is no check, nowhere in double check, else to squares that
// capture the checker or block it. En passant is not included: EnPassantCapturers tests each capture.
inline Bitboard EvasionTargets(const CheckInfo &info) {
  if (info.Checkers == 0)
    return kAllSquares;
  return MoreThanOne(info.Checkers) ? 0 : info.Checkers | Between[info.King][Lsb(info.Checkers)];
}

// The own pieces that may only move along the line with their king.
template <Side Us> inline Bitboard PinnedPieces(const CheckInfo &info) {
  constexpr Side them = Opposite(Us);
  return LoneBlockers(info.King, Board.BySide[Us], info.RookReach, info.BishopReach, Pieces(them, kRook, kQueen),
                      Pieces(them, kBishop, kQueen));
}

// Where pins let a piece move: along its pin line if it is pinned, else anywhere.
inline Bitboard PinLine(const CheckInfo &info, Bitboard pinned, int from) {
  return Contains(pinned, from) ? LineThrough[info.King][from] : kAllSquares;
}

// The king's legal steps to the wanted squares, without castling.
template <Side Us> inline Bitboard KingSteps(int king, Bitboard wanted) {
  constexpr Side them = Opposite(Us);
  wanted &= kKingAttacks[king];
  if (wanted == 0)
    return 0;
  // First remove own squares and those attacked by enemy pawns and king, all at once. Then test the rest one by one,
  // without a branch that could be mispredicted.
  const Bitboard guarded =
      PawnCaptures<them>(Pieces(them, kPawn)) | kKingAttacks[FindKingSquare(them)] | Board.BySide[Us] | Pieces(kKing);
  const Bitboard occupied = Occupied() & ~Bit(king); // the king must not shield the squares beyond it
  const Bitboard knights = Pieces(them, kKnight);
  const Bitboard straight = Pieces(them, kRook, kQueen);
  const Bitboard diagonal = Pieces(them, kBishop, kQueen);
  Bitboard steps = 0;
  for (Bitboard candidates = wanted & ~guarded; candidates != 0;) {
    const int square = PopLsb(candidates);
    const Bitboard attackers = (kKnightAttacks[square] & knights) | (RookAttacks(square, occupied) & straight) |
                               (BishopAttacks(square, occupied) & diagonal);
    steps |= static_cast<Bitboard>(attackers == 0) << square;
  }
  return steps;
}

// True if the king of Us may castle with the rook in the corner, given that it has not moved and is not in check.
// between must be empty; the king crosses passed, which is safe if it is among its legal steps, and lands on target.
template <Side Us> inline bool MayCastleWith(int corner, Bitboard between, int passed, int target, Bitboard steps) {
  return (Occupied() & between) == 0 && Contains(steps, passed) &&
         (Board.MovedFlags & RookCornerFlag(Us, corner)) == 0 && PieceOn(corner) == MakePiece(Us, kRook) &&
         !IsSquareAttacked(target, Opposite(Us));
}

// The squares that the king may castle to; steps are its legal steps.
template <Side Us> inline Bitboard CastlingTargets(const CheckInfo &info, Bitboard steps) {
  constexpr int home = Us == kWhite ? MakeSquare(4, 7) : MakeSquare(4, 0);
  constexpr unsigned kingMoved = Us == kWhite ? kWhiteKingMoved : kBlackKingMoved;
  if ((Board.MovedFlags & kingMoved) != 0 || info.King != home || info.Checkers != 0)
    return 0;
  constexpr Bitboard kingSide = Bit(home + 1) | Bit(home + 2);
  constexpr Bitboard queenSide = Bit(home - 1) | Bit(home - 2) | Bit(home - 3);
  return (MayCastleWith<Us>(home + 3, kingSide, home + 1, home + 2, steps) ? Bit(home + 2) : 0) |
         (MayCastleWith<Us>(home - 4, queenSide, home - 1, home - 2, steps) ? Bit(home - 2) : 0);
}

// The own pawns that can legally capture en passant. Tested one by one, since two pawns leave the row at once.
template <Side Us> inline Bitboard EnPassantCapturers() {
  const int target = Board.EnPassantSquare;
  Bitboard capturers = 0;
  for (Bitboard pawns = EnPassantCandidates(Us); pawns != 0;) {
    const int from = PopLsb(pawns);
    if (IsEnPassantMove(from, target) && IsLegalMove(from, target))
      capturers |= Bit(from);
  }
  return capturers;
}

// Moves as sets of to-squares by from-square. The targets of squares that are not in Froms are not initialised.
struct MoveSets {
  Bitboard Froms;
  Array<Bitboard, kSquares> Targets;
};

// Sets the moves of a from-square that is not in Froms; without targets it stays out.
inline void SetTargets(MoveSets &moves, int from, Bitboard targets) {
  moves.Targets[from] = targets;
  moves.Froms |= static_cast<Bitboard>(targets != 0) << from;
}

// Adds moves of a from-square that may already be in Froms.
inline void AddTargets(MoveSets &moves, int from, Bitboard targets) {
  const Bitboard known = Contains(moves.Froms, from) ? moves.Targets[from] : 0;
  SetTargets(moves, from, known | targets);
}

// Keeps only the moves to the given squares, for a from-square in Froms.
inline void RestrictTargets(MoveSets &moves, int from, Bitboard squares) {
  Bitboard &targets = moves.Targets[from];
  targets &= squares;
  moves.Froms ^= static_cast<Bitboard>(targets == 0) << from;
}

// The wanted to-squares by type of piece.
struct PieceSquares {
  Bitboard Rook;
  Bitboard Knight;
  Bitboard Bishop;
  Bitboard Queen;
};

inline PieceSquares SameForAll(Bitboard squares) { return {squares, squares, squares, squares}; }

// Restricts pinned pieces to their pin lines. If the king sees none of the movers, which is usual for captures, pins
// need not be found.
template <Side Us> inline void RestrictPinned(MoveSets &moves, const CheckInfo &info) {
  if ((moves.Froms & (info.RookReach | info.BishopReach)) == 0)
    return;
  for (Bitboard pinned = PinnedPieces<Us>(info) & moves.Froms; pinned != 0;) {
    const int from = PopLsb(pinned);
    RestrictTargets(moves, from, LineThrough[info.King][from]);
  }
}

// Adds the moves of rooks, knights, bishops and queens to the given squares, regardless of pins.
template <Side Us> inline void GeneratePieceMoves(MoveSets &moves, const PieceSquares &squares) {
  const Bitboard occupied = Occupied();
  for (Bitboard rooks = Pieces(Us, kRook); rooks != 0;) {
    const int from = PopLsb(rooks);
    SetTargets(moves, from, RookAttacks(from, occupied) & squares.Rook);
  }
  for (Bitboard knights = Pieces(Us, kKnight); knights != 0;) {
    const int from = PopLsb(knights);
    SetTargets(moves, from, kKnightAttacks[from] & squares.Knight);
  }
  for (Bitboard bishops = Pieces(Us, kBishop); bishops != 0;) {
    const int from = PopLsb(bishops);
    SetTargets(moves, from, BishopAttacks(from, occupied) & squares.Bishop);
  }
  for (Bitboard queens = Pieces(Us, kQueen); queens != 0;) {
    const int from = PopLsb(queens);
    SetTargets(moves, from, QueenAttacks(from, occupied) & squares.Queen);
  }
}

// Adds the moves of pawns: captures of the given enemies and pushes to the given squares, regardless of pins and
// without en passant.
template <Side Us> inline void GeneratePawnMoves(MoveSets &moves, Bitboard enemies, Bitboard pushSquares) {
  const Bitboard pawns = Pieces(Us, kPawn);
  const Bitboard single = SinglePushes<Us>(pawns);
  const Bitboard twice = DoublePushes<Us>(single) & pushSquares;
  for (Bitboard movers = ((PawnCaptures<Opposite(Us)>(enemies) | ShiftBackward<Us>(single & pushSquares) |
                           ShiftBackward<Us>(ShiftBackward<Us>(twice))) &
                          pawns);
       movers != 0;) {
    const int from = PopLsb(movers);
    const Bitboard step = ShiftForward<Us>(Bit(from)) & single;
    const Bitboard pushes = (step & pushSquares) | (ShiftForward<Us>(step) & twice);
    SetTargets(moves, from, (kPawnAttacks[Us][from] & enemies) | pushes);
  }
}

// All legal moves.
template <Side Us> inline void GenerateLegalMoves(MoveSets &moves, const CheckInfo &info) {
  moves.Froms = 0;
  const Bitboard steps = KingSteps<Us>(info.King, kAllSquares);
  SetTargets(moves, info.King, steps | CastlingTargets<Us>(info, steps));
  const Bitboard evasions = EvasionTargets(info);
  if (evasions == 0)
    return;
  const Bitboard allowed = evasions & ~Board.BySide[Us] & ~Pieces(kKing);
  GeneratePieceMoves<Us>(moves, SameForAll(allowed));
  GeneratePawnMoves<Us>(moves, allowed & Board.BySide[Opposite(Us)], allowed);
  RestrictPinned<Us>(moves, info);
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;)
    AddTargets(moves, PopLsb(pawns), EnPassantSet());
}

// True if Us has a legal move.
template <Side Us> inline bool HasLegalMove(const CheckInfo &info) {
  // Nearly always a pawn push settles it: a pawn that its king does not see cannot be pinned.
  const Bitboard unseen = Pieces(Us, kPawn) & ~(info.RookReach | info.BishopReach);
  if (info.Checkers == 0 && SinglePushes<Us>(unseen) != 0)
    return true;
  MoveSets moves;
  GenerateLegalMoves<Us>(moves, info);
  return moves.Froms != 0;
}

// For callers off the hot path, which know the side only at run time.
void GenerateLegalMoves(MoveSets &moves, Side side);
bool HasLegalMove(Side side);

// The number of moves in the sets; each promotion counts once.
int CountMoves(const MoveSets &moves);

} // namespace zorvane

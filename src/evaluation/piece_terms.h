// Open files for rooks, the bishop pair and early queens: centipawns, positive is good for the side.
#pragma once

#include "evaluation/pawn_structure.h"
#include "evaluation/phase.h"

namespace zorvane {

constexpr int kBishopPair = 30;
constexpr int kHalfOpenFile = 12; // for a rook on a file without own pawns
constexpr int kOpenFile = 10;     // in addition, if there are no enemy pawns either

// Where a queen counts as out: everywhere but on the side's first two ranks.
template <Side Us>
constexpr Bitboard kQueenSortieSquares = Us == kWhite ? ~(RowMask(7) | RowMask(6)) : ~(RowMask(0) | RowMask(1));

// The terms of the rooks and queens of Us on the given squares: open files and queens out early.
template <Side Us> inline int PieceTerms(const PawnStructure &pawns, const Phase &phase, Bitboard squares) {
  const Bitboard halfOpen = squares & Pieces(Us, kRook) & ~pawns.Files[Us];
  const Bitboard sorties = squares & Pieces(Us, kQueen) & kQueenSortieSquares<Us>;
  return kHalfOpenFile * PopCount(halfOpen) + kOpenFile * PopCount(halfOpen & ~pawns.Files[Opposite(Us)]) -
         phase.QueenSortiePenalty * PopCount(sorties);
}

template <Side Us> inline int BishopPairTerm() { return MoreThanOne(Pieces(Us, kBishop)) ? kBishopPair : 0; }

} // namespace zorvane

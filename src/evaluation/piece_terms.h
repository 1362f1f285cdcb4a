// What a piece is worth on a square, as formulas of centrality and rank; no tables but those made from them.
#pragma once

#include <array>

#include "board/types.h"

namespace zorvane {

// Plain worths by type, used by move ordering (the king's 1000 is for ordering alone).
constexpr std::array<int, kPieceTypes + 1> kPieceValues{0, 100, 500, 320, 330, 900, 1000};

constexpr int PieceValue(Piece piece) { return kPieceValues[TypeOf(piece)]; }

constexpr int kPawnBase = 100;
constexpr int kRookBase = 500;
constexpr int kKnightBase = 320;
constexpr int kBishopBase = 330;
constexpr int kQueenBase = 900;

constexpr int kPawnCentralityRank = 3; // from here on a pawn's rank centrality counts
constexpr int kRookOnSeventh = 20;
constexpr int kKnightOffset = 24;
constexpr int kHomeRankPenalty = 10;

// Rank counted from the piece's own back rank, 0 to 7.
constexpr int RelativeRank(Side side, int square) { return side == kWhite ? 7 - RowOf(square) : RowOf(square); }

// 0 on the edge files, 6 on the two middle ones; the same for ranks.
constexpr int FileCentrality(int square) { return 7 - Absolute(2 * FileOf(square) - 7); }
constexpr int RankCentrality(int square) { return 7 - Absolute(2 * RowOf(square) - 7); }

// The share of the material sum of a piece; pawns and kings count nothing.
constexpr int MaterialOf(PieceType type) {
  switch (type) {
  case kRook:
    return kRookBase;
  case kKnight:
    return kKnightBase;
  case kBishop:
    return kBishopBase;
  case kQueen:
    return kQueenBase;
  default:
    return 0;
  }
}

// The part of a pawn's, rook's, knight's, bishop's or queen's term that depends on its square alone, unsigned for
// colour; 0 for kings, whose terms depend on the phase throughout.
constexpr int PlacementTerm(Side side, PieceType type, int square) {
  const int rank = RelativeRank(side, square);
  const int centrality = FileCentrality(square) + RankCentrality(square);
  const int homePenalty = rank == 0 ? kHomeRankPenalty : 0;
  switch (type) {
  case kPawn:
    return kPawnBase + 5 * rank + 2 * FileCentrality(square) +
           (rank >= kPawnCentralityRank ? 2 * RankCentrality(square) : 0);
  case kRook:
    return kRookBase + 2 * FileCentrality(square) + (rank == 6 ? kRookOnSeventh : 0);
  case kKnight:
    return kKnightBase + 4 * centrality - kKnightOffset - homePenalty;
  case kBishop:
    return kBishopBase + 2 * centrality - homePenalty;
  case kQueen:
    return kQueenBase + centrality;
  default:
    return 0;
  }
}

} // namespace zorvane

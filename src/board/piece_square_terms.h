// Piece values, and what a piece's square adds to them, as formulas of centrality and rank: the part of the evaluation
// whose sum the position keeps up to date with each move. Everything else is in evaluation/.
#pragma once

#include "base/array.h"
#include "board/types.h"

namespace zorvane {

// By PieceType, in centipawns. The king's value is only used for ordering captures.
constexpr Array<int, kPieceTypes + 1> kPieceValues{0, 100, 500, 320, 330, 900, 1000};

constexpr int PieceValue(Piece piece) { return kPieceValues[TypeOf(piece)]; }

// Placement in centipawns, per rank or per point of centrality as the names say.
constexpr int kPawnPerRank = 5;
constexpr int kPawnPerCentrality = 2;
constexpr int kPawnCentralityRank = 3; // from this relative rank on, the rank's centrality counts as well
constexpr int kRookPerFileCentrality = 2;
constexpr int kRookOnSeventh = 20;
constexpr int kKnightPerCentrality = 4;
constexpr int kKnightOffset = 24;
constexpr int kBishopPerCentrality = 2;
constexpr int kHomeRankPenalty = 10; // of a knight or bishop
constexpr int kSeventhRank = 6;      // as a relative rank

// Rank counted from the piece's own back rank, 0 to 7.
constexpr int RelativeRank(Side side, int square) { return side == kWhite ? 7 - RowOf(square) : RowOf(square); }

// 0 on the edge files, 6 on the two middle ones; the same for ranks.
constexpr int FileCentrality(int square) { return 7 - Absolute(2 * FileOf(square) - 7); }
constexpr int RankCentrality(int square) { return 7 - Absolute(2 * RowOf(square) - 7); }

// What a piece adds to the material sum that determines the game phase; pawns and kings add nothing.
constexpr int NonPawnValue(PieceType type) { return type == kPawn || type == kKing ? 0 : kPieceValues[type]; }

// The value of a pawn, rook, knight, bishop or queen plus what its square adds, positive for either side. 0 for kings,
// whose terms all depend on the phase.
constexpr int PieceSquareTerm(Side side, PieceType type, int square) {
  const int rank = RelativeRank(side, square);
  const int fileCentrality = FileCentrality(square);
  const int rankCentrality = RankCentrality(square);
  const int centrality = fileCentrality + rankCentrality;
  const int homePenalty = rank == 0 ? kHomeRankPenalty : 0;
  const int value = kPieceValues[type];
  switch (type) {
  case kPawn:
    return value + kPawnPerRank * rank + kPawnPerCentrality * fileCentrality +
           (rank >= kPawnCentralityRank ? kPawnPerCentrality * rankCentrality : 0);
  case kRook:
    return value + kRookPerFileCentrality * fileCentrality + (rank == kSeventhRank ? kRookOnSeventh : 0);
  case kKnight:
    return value + kKnightPerCentrality * centrality - kKnightOffset - homePenalty;
  case kBishop:
    return value + kBishopPerCentrality * centrality - homePenalty;
  case kQueen:
    return value + centrality;
  default:
    return 0;
  }
}

} // namespace zorvane

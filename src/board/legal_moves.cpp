#include "board/legal_moves.h"

namespace zorvane {

void GenerateLegalMoves(MoveSets &moves, Side side) {
  if (side == kWhite)
    SetLegalMoves<kWhite>(moves, FindKingDanger<kWhite>());
  else
    SetLegalMoves<kBlack>(moves, FindKingDanger<kBlack>());
}

bool HasLegalMove(Side side) {
  return side == kWhite ? HasLegalMoveOf<kWhite>(FindKingDanger<kWhite>())
                        : HasLegalMoveOf<kBlack>(FindKingDanger<kBlack>());
}

int CountMoves(const MoveSets &moves) {
  int count = 0;
  for (Bitboard froms = moves.Froms; froms != 0;)
    count += CountSquares(moves.Targets[static_cast<unsigned>(PopSquare(froms))]);
  return count;
}

} // namespace zorvane

#include "board/legal_moves.h"

namespace zorvane {

void GenerateLegalMoves(MoveSets &moves, Side side) {
  if (side == kWhite)
    GenerateLegalMoves<kWhite>(moves, FindCheckInfo<kWhite>());
  else
    GenerateLegalMoves<kBlack>(moves, FindCheckInfo<kBlack>());
}

bool HasLegalMove(Side side) {
  return side == kWhite ? HasLegalMove<kWhite>(FindCheckInfo<kWhite>()) : HasLegalMove<kBlack>(FindCheckInfo<kBlack>());
}

int CountMoves(const MoveSets &moves) {
  int count = 0;
  for (Bitboard froms = moves.Froms; froms != 0;)
    count += PopCount(moves.Targets[PopLsb(froms)]);
  return count;
}

} // namespace zorvane

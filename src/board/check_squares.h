// Which moves give check: the squares from which each type of piece gives check, and the pieces that uncover a check by
// leaving a line.
//
// Meant for positions where the enemy king is not attacked yet. A loaded position may break that; then a check that
// already exists does not make other moves count as checks.
#pragma once

#include "base/array.h"
#include "board/legal_moves.h"

namespace zorvane {

struct CheckSquares {
  int EnemyKing;
  Array<Bitboard, kPieceTypes + 1> From; // by PieceType: the squares from which it attacks the enemy king
  Bitboard Discoverers;                  // own pieces that alone stand between an own slider and the enemy king
};

template <Side Us> inline CheckSquares FindCheckSquares() {
  constexpr Side them = Opposite(Us);
  const int king = FindKingSquare(them);
  const Bitboard occupied = Occupied();
  const Bitboard rookReach = RookAttacks(king, occupied);
  const Bitboard bishopReach = BishopAttacks(king, occupied);
  CheckSquares checks;
  checks.EnemyKing = king;
  checks.From = {0, kPawnAttacks[them][king], rookReach, kKnightAttacks[king], bishopReach, rookReach | bishopReach, 0};
  checks.Discoverers = LoneBlockers(king, Board.BySide[Us], rookReach, bishopReach, Pieces(Us, kRook, kQueen),
                                    Pieces(Us, kBishop, kQueen));
  return checks;
}

// The squares where the piece on from gives check, directly or by uncovering a line. May miss checks by castling, en
// passant and promotion, which do more than move one piece: MoveGivesCheck finds those.
inline Bitboard CheckingTargets(const CheckSquares &checks, int from, PieceType type) {
  const Bitboard direct = checks.From[type];
  return Contains(checks.Discoverers, from) ? direct | ~LineThrough[checks.EnemyKing][from] : direct;
}

} // namespace zorvane

// Which moves give check: the squares from which each type of piece does, and the pieces that uncover a check by
// leaving a line.
//
// Where the enemy king is attacked already, which a loaded position may show, no move is needed to uncover that attack.
#pragma once

#include "board/array.h"
#include "board/legal_moves.h"

namespace zorvane {

struct CheckSquares {
  int EnemyKing;
  Array<Bitboard, kPieceTypes + 1> From; // by PieceType; none for a king
  Bitboard Discoverers;                  // alone between the enemy king and a slider
};

template <Side Us> inline CheckSquares FindCheckSquares() {
  constexpr Side them = Opposite(Us);
  const int king = FindKingSquare(them);
  const Bitboard occupied = Occupied();
  const Bitboard rookReach = RookAttacks(king, occupied);
  const Bitboard bishopReach = BishopAttacks(king, occupied);
  CheckSquares checks;
  checks.EnemyKing = king;
  checks.From = {0, PawnAttacks[them][king], rookReach, KnightAttacks[king], bishopReach, rookReach | bishopReach, 0};
  checks.Discoverers = LoneBlockers(king, Position.BySide[Us], rookReach, bishopReach, Pieces(Us, kRook, kQueen),
                                    Pieces(Us, kBishop, kQueen));
  return checks;
}

// The squares where the piece on from gives check, directly or by uncovering a line. Castling, en passant and
// promotion are more than a step of one piece: for them the answer is not complete.
inline Bitboard CheckingTargetsOf(const CheckSquares &checks, int from, PieceType type) {
  const Bitboard direct = checks.From[type];
  return Contains(checks.Discoverers, from) ? direct | ~LineThrough[checks.EnemyKing][from] : direct;
}

} // namespace zorvane

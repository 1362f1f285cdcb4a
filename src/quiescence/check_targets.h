// Which moves attack the enemy king: the squares that each type of piece checks from, and the pieces that uncover a
// check by leaving their line.
//
// Holds for positions of a search, where the enemy king is not attacked before the move.
#pragma once

#include "board/legal_moves.h"

namespace zorvane {

struct CheckTargets {
  int EnemyKing;
  std::array<Bitboard, kPieceTypes + 1> From; // by PieceType; a king never gives check itself
  Bitboard Discoverers;
};

template <Side Us> inline CheckTargets FindCheckTargets() {
  constexpr Side them = Opposite(Us);
  const int king = FindKingSquare(them);
  const auto place = static_cast<unsigned>(king);
  const Bitboard occupied = Occupied();
  const Bitboard rookReach = RookAttacks(king, occupied);
  const Bitboard bishopReach = BishopAttacks(king, occupied);
  CheckTargets checks;
  checks.EnemyKing = king;
  checks.From = {0, PawnAttacks[them][place], rookReach, KnightAttacks[place], bishopReach, rookReach | bishopReach, 0};
  checks.Discoverers = Shields(king, Position.BySide[Us], rookReach, bishopReach, Pieces(Us, kRook, kQueen),
                               Pieces(Us, kBishop, kQueen));
  return checks;
}

// The squares where the piece on from gives check, directly or by uncovering a line. Castling, en passant and
// promotion are more than a step of one piece: for them the answer is not complete.
inline Bitboard CheckingTargets(const CheckTargets &checks, int from, PieceType type) {
  const Bitboard direct = checks.From[type];
  return Contains(checks.Discoverers, from)
             ? direct | ~Line[static_cast<unsigned>(checks.EnemyKing)][static_cast<unsigned>(from)]
             : direct;
}

} // namespace zorvane

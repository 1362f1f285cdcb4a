// What a piece on a square adds to the sums that MakeMove keeps up to date: board hash, material and piece-square
// terms.
#pragma once

#include "base/array.h"
#include "board/piece_square_terms.h"
#include "board/types.h"

namespace zorvane {

// This hash chooses the slot of the transposition table, and which positions share a slot influences the search, so it
// must stay as it is and cannot be replaced by Zobrist keys. h = (h * 131 + code + 1) modulo kHashModulus over the
// squares in order, so each piece adds code * 131^(63 - square), wherever the others are.
constexpr std::uint64_t kHashModulus = 2147483647;
constexpr std::uint64_t kHashFactor = 131;

// Side by side, so that one vector instruction adds both.
struct SquareTerm {
  std::uint64_t Hash;   // below kHashModulus
  std::uint64_t Scores; // made by PackScores
};

// Two sums in one word, added and subtracted as a whole: material in the upper half, piece-square terms in the lower. A
// negative lower half borrows 1 from the upper one, which UnpackNonPawn gives back.
constexpr std::uint64_t PackScores(int material, int pieceSquare) {
  return (static_cast<std::uint64_t>(material) << 32) + static_cast<std::uint64_t>(pieceSquare);
}
constexpr int UnpackPieceSquare(std::uint64_t scores) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(scores));
}
constexpr int UnpackNonPawn(std::uint64_t scores) { return static_cast<int>((scores + (1U << 31)) >> 32); }

using SquareTermTable = Array<Array<SquareTerm, kSquares>, kPieceLimit>;

constexpr SquareTermTable MakeSquareTerms() {
  SquareTermTable table{};
  std::uint64_t power = 1;
  for (int square = kSquares - 1; square >= 0; --square) {
    for (const Side side : kSides) {
      for (int number = kPawn; number <= kKing; ++number) {
        const auto type = static_cast<PieceType>(number);
        const Piece piece = MakePiece(side, type);
        SquareTerm &term = table[piece][square];
        term.Hash = static_cast<std::uint64_t>(PieceCode(piece)) * power % kHashModulus;
        term.Scores = PackScores(NonPawnValue(type), PieceSquareTerm(side, type, square) * (side == kWhite ? 1 : -1));
      }
    }
    power = power * kHashFactor % kHashModulus;
  }
  return table;
}

// The hash of an empty board.
constexpr std::uint64_t EmptyBoardHash() {
  std::uint64_t hash = 0;
  for (int square = 0; square < kSquares; ++square)
    hash = (hash * kHashFactor + 1) % kHashModulus;
  return hash;
}

inline constexpr SquareTermTable kSquareTerms = MakeSquareTerms();
inline constexpr std::uint64_t kEmptyBoardHash = EmptyBoardHash();

// Brings a sum of up to 64 hash terms below the modulus, which is 2^31 - 1.
constexpr std::uint32_t ReduceHash(std::uint64_t sum) {
  const std::uint64_t folded = (sum & kHashModulus) + (sum >> 31);
  return static_cast<std::uint32_t>(folded >= kHashModulus ? folded - kHashModulus : folded);
}

} // namespace zorvane

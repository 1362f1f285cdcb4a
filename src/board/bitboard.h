// Sets of squares as 64-bit words, and the attack sets of the pieces.
//
// Bit n is square n, so taking the lowest bit first walks the board row by row from a8: the order in which
// the engine tries its moves.
#pragma once

#include <array>
#include <bit>

#if defined(__BMI2__)
#include <immintrin.h>
#endif

#include "board/types.h"

namespace zorvane {

constexpr Bitboard kFileA = 0x0101010101010101U;
constexpr Bitboard kFileH = kFileA << 7;
constexpr Bitboard kRow0 = 0xFFU;
constexpr Bitboard kLastRows = kRow0 | (kRow0 << 56);
constexpr Bitboard kAllSquares = ~Bitboard{0};

constexpr Bitboard Bit(int square) { return Bitboard{1} << square; }
constexpr Bitboard RowMask(int row) { return kRow0 << (row * 8); }
constexpr Bitboard FileMask(int file) { return kFileA << file; }
constexpr int LowestSquare(Bitboard set) { return std::countr_zero(set); }
constexpr int CountSquares(Bitboard set) { return std::popcount(set); }
constexpr bool HasSeveral(Bitboard set) { return (set & (set - 1)) != 0; }
constexpr bool Contains(Bitboard set, int square) { return ((set >> square) & 1U) != 0; }

// Removes the lowest square of a set that is not empty and returns it.
constexpr int PopSquare(Bitboard &set) {
  const int square = std::countr_zero(set);
  set &= set - 1;
  return square;
}

// One row ahead for pawns of a side.
template <Side Us> constexpr Bitboard Ahead(Bitboard set) { return Us == kWhite ? set >> 8 : set << 8; }
template <Side Us> constexpr Bitboard Behind(Bitboard set) { return Us == kWhite ? set << 8 : set >> 8; }
constexpr Bitboard TowardsA(Bitboard set) { return (set & ~kFileA) >> 1; }
constexpr Bitboard TowardsH(Bitboard set) { return (set & ~kFileH) << 1; }

// The squares that pawns of a side capture on.
template <Side Us> constexpr Bitboard PawnCaptures(Bitboard pawns) {
  return TowardsA(Ahead<Us>(pawns)) | TowardsH(Ahead<Us>(pawns));
}

// Attacks of a king, knight or pawn on a square of its own; squares beyond the board's edge are left out.
extern const std::array<Bitboard, kSquares> KingAttacks;
extern const std::array<Bitboard, kSquares> KnightAttacks;
extern const std::array<std::array<Bitboard, kSquares>, 2> PawnAttacks;

// The squares strictly between two squares of one line, and the whole line through both; empty when they share none.
extern std::array<std::array<Bitboard, kSquares>, kSquares> Between;
extern std::array<std::array<Bitboard, kSquares>, kSquares> Line;

// Fills the tables that are not constants. Must run once before anything else of the engine.
void InitializeBitboards();

#if defined(__BMI2__)

// One square's place in the table of slider attacks: the occupied squares under Mask select the entry.
struct SliderIndex {
  Bitboard RookMask;
  Bitboard BishopMask;
  const Bitboard *Rook;
  const Bitboard *Bishop;
};

extern std::array<SliderIndex, kSquares> SliderIndexes;

// Squares that a rook or bishop on square bears on: up to and including the first occupied one of each ray.
inline Bitboard RookAttacks(int square, Bitboard occupied) {
  const SliderIndex &index = SliderIndexes[static_cast<unsigned>(square)];
  return index.Rook[_pext_u64(occupied, index.RookMask)];
}

inline Bitboard BishopAttacks(int square, Bitboard occupied) {
  const SliderIndex &index = SliderIndexes[static_cast<unsigned>(square)];
  return index.Bishop[_pext_u64(occupied, index.BishopMask)];
}

#else

Bitboard RookAttacks(int square, Bitboard occupied);
Bitboard BishopAttacks(int square, Bitboard occupied);

#endif

inline Bitboard QueenAttacks(int square, Bitboard occupied) {
  return RookAttacks(square, occupied) | BishopAttacks(square, occupied);
}

} // namespace zorvane

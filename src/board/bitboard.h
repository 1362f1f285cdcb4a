// Sets of squares as 64-bit words, and the attack sets of the pieces.
//
// Bit n is square n, so taking the lowest bit first walks the board row by row from a8: the order in which the engine
// tries its moves.
#pragma once

#include <bit>
#include <cassert>
#include <cstddef>

#include "base/array.h"
#include "board/types.h"

namespace zorvane {

constexpr Bitboard kFileA = 0x0101010101010101U;
constexpr Bitboard kFileH = kFileA << 7;
constexpr Bitboard kRow0 = 0xFFU;                          // the eighth rank
constexpr Bitboard kPromotionRows = kRow0 | (kRow0 << 56); // of both sides
constexpr Bitboard kAllSquares = ~Bitboard{0};

constexpr Bitboard Bit(int square) { return Bitboard{1} << square; }
constexpr Bitboard RowMask(int row) { return kRow0 << (row * 8); }
constexpr Bitboard FileMask(int file) { return kFileA << file; }
constexpr int Lsb(Bitboard set) { return std::countr_zero(set); }
constexpr bool MoreThanOne(Bitboard set) { return (set & (set - 1)) != 0; }
constexpr bool Contains(Bitboard set, int square) { return ((set >> square) & 1U) != 0; }

// Removes the lowest square from a set, which must not be empty, and returns it.
constexpr int PopLsb(Bitboard &set) {
  assert(set != 0);
  const int square = std::countr_zero(set);
  set &= set - 1;
  return square;
}

constexpr int PopCount(Bitboard set) {
#if defined(__x86_64__) && !defined(__POPCNT__)
  // Without an instruction for counting, squares are removed one by one: most sets have few, and searches gain 5 %.
  int count = 0;
  for (; set != 0; set &= set - 1)
    ++count;
  return count;
#else
  return std::popcount(set);
#endif
}

// All squares of a set moved one step: in the direction of a side's pawns or against it, towards file a or file h.
// Squares that would leave the board are dropped.
template <Side Us> constexpr Bitboard ShiftForward(Bitboard set) { return Us == kWhite ? set >> 8 : set << 8; }
template <Side Us> constexpr Bitboard ShiftBackward(Bitboard set) { return Us == kWhite ? set << 8 : set >> 8; }
constexpr Bitboard ShiftWest(Bitboard set) { return (set & ~kFileA) >> 1; }
constexpr Bitboard ShiftEast(Bitboard set) { return (set & ~kFileH) << 1; }

// The squares on which pawns of a side capture.
template <Side Us> constexpr Bitboard PawnCaptures(Bitboard pawns) {
  return ShiftWest(ShiftForward<Us>(pawns)) | ShiftEast(ShiftForward<Us>(pawns));
}

// Attacks of kings, knights and pawns by from-square, for pawns by side first.
extern const Array<Bitboard, kSquares> kKingAttacks;
extern const Array<Bitboard, kSquares> kKnightAttacks;
extern const Array<Array<Bitboard, kSquares>, 2> kPawnAttacks;

// Between: the squares strictly between two squares on a rank, file or diagonal. LineThrough: that whole line, from
// edge to edge. Both are empty for squares on no common line. InitializeBitboards fills them.
extern Array<Array<Bitboard, kSquares>, kSquares> Between;
extern Array<Array<Bitboard, kSquares>, kSquares> LineThrough;

// Fills the tables that are not constants. Must run before anything else in the engine.
void InitializeBitboards();

// The attacks of a rook or bishop from one square, for every occupancy that makes a difference.
struct SliderEntry {
  Bitboard Mask; // the relevant occupancy: its rays without the edge of the board
#if !defined(ZORVANE_PEXT)
  Bitboard Factor; // the magic number
  int Shift;       // 64 less the number of squares in Mask
#endif
  const Bitboard *Attacks; // by SliderIndex
};

// One cache line, or half of one with PEXT, so that a queen's lookup touches only one.
struct alignas(std::bit_ceil(2 * sizeof(SliderEntry))) SliderPair {
  SliderEntry Rook;
  SliderEntry Bishop;
};

extern Array<SliderPair, kSquares> SliderPairs;

// The index of the attacks for an occupancy: by PEXT, or by magic multiplication on processors without a fast PEXT.
inline std::size_t SliderIndex(const SliderEntry &entry, Bitboard occupied) {
#if defined(ZORVANE_PEXT)
  return __builtin_ia32_pext_di(occupied, entry.Mask); // immintrin.h would double the compile time
#else
  return static_cast<std::size_t>(((occupied & entry.Mask) * entry.Factor) >> entry.Shift);
#endif
}

// The squares that a rook or bishop on square attacks: up to and including the first occupied one of each ray.
inline Bitboard RookAttacks(int square, Bitboard occupied) {
  const SliderEntry &entry = SliderPairs[square].Rook;
  return entry.Attacks[SliderIndex(entry, occupied)];
}

inline Bitboard BishopAttacks(int square, Bitboard occupied) {
  const SliderEntry &entry = SliderPairs[square].Bishop;
  return entry.Attacks[SliderIndex(entry, occupied)];
}

inline Bitboard QueenAttacks(int square, Bitboard occupied) {
  return RookAttacks(square, occupied) | BishopAttacks(square, occupied);
}

} // namespace zorvane

// Sets of squares as 64-bit words, and the attack sets of the pieces.
//
// Bit n is square n, so taking the lowest bit first walks the board row by row from a8: the order in which
// the engine tries its moves.
#pragma once

#include <array>
#include <bit>
#include <cstddef>

#if defined(ZORVANE_PEXT)
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
constexpr bool HasSeveral(Bitboard set) { return (set & (set - 1)) != 0; }
constexpr bool Contains(Bitboard set, int square) { return ((set >> square) & 1U) != 0; }

// Removes the lowest square of a set that is not empty and returns it.
constexpr int PopSquare(Bitboard &set) {
  const int square = std::countr_zero(set);
  set &= set - 1;
  return square;
}

constexpr int CountSquares(Bitboard set) {
#if defined(__x86_64__) && !defined(__POPCNT__)
  // Without an instruction that counts, squares are taken off one by one: most sets have few, and searches gain 5 %.
  int count = 0;
  for (; set != 0; set &= set - 1)
    ++count;
  return count;
#else
  return std::popcount(set);
#endif
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

// Where the attacks of one slider from one square lie in the table of slider attacks.
struct SliderEntry {
  Bitboard Mask; // the inner squares of its lines: whatever stands on others hides nothing
#if !defined(ZORVANE_PEXT)
  Bitboard Factor; // a magic number: brings the occupied squares under Mask to the top of the word
  int Shift;       // from there down to an index
#endif
  const Bitboard *Attacks; // a set for each occupation of Mask
};

// A rook and a bishop on one square: a cache line with magic numbers, half of one without.
struct alignas(2 * sizeof(SliderEntry)) SliderPair {
  SliderEntry Rook;
  SliderEntry Bishop;
};

extern std::array<SliderPair, kSquares> SliderPairs;

// Which of the sets of an entry belongs to the occupied squares. Processors that carry out PEXT step by step are
// quicker with a multiplication, and most others have no PEXT.
inline std::size_t SliderIndex(const SliderEntry &entry, Bitboard occupied) {
#if defined(ZORVANE_PEXT)
  return _pext_u64(occupied, entry.Mask);
#else
  return ((occupied & entry.Mask) * entry.Factor) >> entry.Shift;
#endif
}

// Squares that a rook or bishop on square bears on: up to and including the first occupied one of each ray.
inline Bitboard RookAttacks(int square, Bitboard occupied) {
  const SliderEntry &entry = SliderPairs[static_cast<unsigned>(square)].Rook;
  return entry.Attacks[SliderIndex(entry, occupied)];
}

inline Bitboard BishopAttacks(int square, Bitboard occupied) {
  const SliderEntry &entry = SliderPairs[static_cast<unsigned>(square)].Bishop;
  return entry.Attacks[SliderIndex(entry, occupied)];
}

inline Bitboard QueenAttacks(int square, Bitboard occupied) {
  return RookAttacks(square, occupied) | BishopAttacks(square, occupied);
}

} // namespace zorvane

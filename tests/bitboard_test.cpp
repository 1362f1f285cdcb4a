// Compares the table of slider attacks with walks along the rays, for every occupancy that makes a difference.
#include <initializer_list>

#include <gtest/gtest.h>

#include "board/bitboard.h"

using namespace zorvane;

namespace {

struct Step {
  int File;
  int Row;
};

constexpr std::initializer_list<Step> kRookSteps = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
constexpr std::initializer_list<Step> kBishopSteps = {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}};

Bitboard WalkedAttacks(int square, Bitboard occupied, std::initializer_list<Step> steps) {
  Bitboard attacks = 0;
  for (const Step step : steps) {
    int file = FileOf(square) + step.File;
    int row = RowOf(square) + step.Row;
    for (bool free = true; free && file >= 0 && file <= 7 && row >= 0 && row <= 7; file += step.File, row += step.Row) {
      attacks |= Bit(MakeSquare(file, row));
      free = !Contains(occupied, MakeSquare(file, row));
    }
  }
  return attacks;
}

// Occupancies that wrongly share an entry, as with a wrong magic number, are found unless their attacks are the same.
// Squares off the rays are tried both empty and occupied.
TEST(BitboardTest, SlidersOnEveryOccupationOfTheirRays) {
  InitializeBitboards();
  for (int square = 0; square < kSquares; ++square) {
    for (const bool rook : {true, false}) {
      const auto steps = rook ? kRookSteps : kBishopSteps;
      const auto attacks = rook ? RookAttacks : BishopAttacks;
      const Bitboard rays = WalkedAttacks(square, 0, steps);
      Bitboard occupied = 0;
      do {
        const Bitboard expected = WalkedAttacks(square, occupied, steps);
        ASSERT_EQ(attacks(square, occupied), expected) << square << ' ' << occupied;
        ASSERT_EQ(attacks(square, occupied | ~rays), expected) << square << ' ' << occupied;
        occupied = (occupied - rays) & rays;
      } while (occupied != 0);
    }
  }
}

} // namespace

#include "board/draw_rules.h"

namespace zorvane {

namespace {

constexpr Bitboard kLightSquares = 0xAA55AA55AA55AA55U; // a8 is one

} // namespace

bool IsDeadMinorEnding() {
  const Bitboard minors = Pieces(kKnight, kBishop);
  if (!MoreThanOne(minors))
    return true;
  const Bitboard white = Pieces(kWhite, kBishop);
  const Bitboard black = Pieces(kBlack, kBishop);
  return PopCount(minors) == 2 && white != 0 && black != 0 &&
         ((minors & kLightSquares) == minors || (minors & kLightSquares) == 0);
}

} // namespace zorvane

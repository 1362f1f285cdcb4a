#include "evaluation/mating_drive.h"

#include <algorithm>

#include "board/legal_moves.h"

namespace zorvane {

namespace {

constexpr int kPerMissingMove = 16; // centipawns for each move that the bare king has fewer than kMostKingMoves
constexpr int kPerStepToEdge = 35;  // for each step closer to the edge than the centre
constexpr int kPerStepOfKings = 18; // for each step that the kings are closer than corner to corner
constexpr int kMostKingMoves = 8;
constexpr int kCentreFromEdge = 3;

// The bonus of Us for driving the bare king of the other side.
template <Side Us> int Drive() {
  constexpr Side bareSide = Opposite(Us);
  const int own = FindKingSquare(Us);
  const int bare = FindKingSquare(bareSide);
  const int file = FileOf(bare);
  const int row = RowOf(bare);
  const int fromEdge = std::min({file, 7 - file, row, 7 - row});
  const int moves = PopCount(KingSteps<bareSide>(bare, kAllSquares));
  return (kMostKingMoves - moves) * kPerMissingMove + (kCentreFromEdge - fromEdge) * kPerStepToEdge +
         (kFarthestApart - ManhattanDistance(own, bare)) * kPerStepOfKings;
}

} // namespace

int DriveAgainstBareKing() {
  if (IsBare(kBlack) && Pieces(kWhite, kRook, kQueen) != 0)
    return Drive<kWhite>();
  if (IsBare(kWhite) && Pieces(kBlack, kRook, kQueen) != 0)
    return -Drive<kBlack>();
  return 0;
}

} // namespace zorvane

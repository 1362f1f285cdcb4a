// How far the game has gone from the full set of pieces to bare kings.
#pragma once

#include <algorithm>

#include "board/position.h"

namespace zorvane {

constexpr int kFullPhase = 6400;

// Both add up to kFullPhase; GamePhase is at kFullPhase while all pieces are on, or more.
struct Phase {
  int GamePhase;
  int EndgameWeight;
};

inline Phase CurrentPhase() {
  const int gamePhase = std::min(Position.MaterialSum, kFullPhase);
  return {gamePhase, kFullPhase - gamePhase};
}

} // namespace zorvane

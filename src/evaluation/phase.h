// How far the game has progressed from the full set of pieces to bare kings, and the terms that depend on that alone.
#pragma once

#include "base/array.h"
#include "board/position.h"

namespace zorvane {

constexpr int kFullPhase = 6400; // the material sum of the initial position, centipawns

// Every piece's material is a multiple of this, so there are few different phases.
constexpr int kPhaseUnit = 10;
constexpr int kPhases = kFullPhase / kPhaseUnit + 1;

// Centipawns.
constexpr int kHighestRawPenalty = 260; // of an attack with a queen on a king, at full phase
constexpr int kCentralPawn = 18;        // at full phase
constexpr int kRaceLimit = 24;          // of a RaceTerm, either way

// What a passed pawn earns at phase 0, centipawns.
constexpr int PassedEndgameLimit(int relativeRank) { return 3 * relativeRank * relativeRank; }

// The terms of one phase, centipawns; one cache line.
struct alignas(64) Phase {
  std::int16_t GamePhase;          // the material sum, but at most kFullPhase
  std::int16_t EndgameWeight;      // kFullPhase less GamePhase
  std::int16_t HighestQueenAttack; // the highest penalty of an attack with a queen on a king
  std::int8_t CentralPawnBonus;
  std::int8_t QueenSortiePenalty;
  Array<std::int16_t, 8> PassedEndgameTerm; // by relative rank

  // For a passed pawn, by the enemy king's distance from it less the own king's, plus kFarthestApart.
  Array<std::int8_t, 2 * kFarthestApart + 1> RaceTerms;
};

// By GamePhase in units.
extern const Array<Phase, kPhases> kPhaseTable;

inline const Phase &CurrentPhase() {
  const int material = NonPawnMaterial();
  return kPhaseTable[(material < kFullPhase ? material : kFullPhase) / kPhaseUnit];
}

} // namespace zorvane

// How far the game has gone from the full set of pieces to bare kings, and the terms that follow from that alone.
#pragma once

#include <algorithm>

#include "board/array.h"
#include "board/position.h"

namespace zorvane {

constexpr int kFullPhase = 6400;

// Every piece's material is a multiple of this, so there are few different phases.
constexpr int kPhaseUnit = 10;
constexpr int kPhases = kFullPhase / kPhaseUnit + 1;

constexpr int kHighestRawPenalty = 260; // of an attack on a king, at full phase
constexpr int kCentralPawn = 18;
constexpr int kRaceLimit = 24;

// What a passed pawn earns with all pieces gone.
constexpr int PassedEndgameLimit(int relativeRank) { return 3 * relativeRank * relativeRank; }

struct alignas(64) Phase {
  std::int16_t GamePhase;            // kFullPhase while all pieces are on, or more
  std::int16_t EndgameWeight;        // what GamePhase lacks of kFullPhase
  std::int16_t HighestAttackPenalty; // of the attackers around a king
  std::int8_t CentralPawnBonus;
  std::int8_t QueenSortiePenalty;
  Array<std::int16_t, 8> PassedEndgameTerm;             // by relative rank
  Array<std::int8_t, 2 * kFarthestApart + 1> RaceTerms; // by the own king's lead in steps, from -14 on
};

// By GamePhase in units.
extern const Array<Phase, kPhases> PhaseTable;

inline const Phase &CurrentPhase() { return PhaseTable[std::min(MaterialSum(), kFullPhase) / kPhaseUnit]; }

} // namespace zorvane

#include "evaluation/phase.h"

#include "base/array.h"

namespace zorvane {

namespace {

constexpr int kQueenSortie = 15; // centipawns at full phase
constexpr int kRaceFactor = 4;   // for each step of a lead, at phase 0

constexpr std::int8_t RaceTerm(int lead, int endgameWeight) {
  const int term = kRaceFactor * lead * endgameWeight / kFullPhase;
  return static_cast<std::int8_t>(term < -kRaceLimit ? -kRaceLimit : term > kRaceLimit ? kRaceLimit : term);
}

constexpr Phase MakePhase(int gamePhase) {
  const int endgameWeight = kFullPhase - gamePhase;
  Phase phase{};
  phase.GamePhase = static_cast<std::int16_t>(gamePhase);
  phase.EndgameWeight = static_cast<std::int16_t>(endgameWeight);
  phase.HighestQueenAttack = static_cast<std::int16_t>(kHighestRawPenalty * gamePhase / kFullPhase);
  phase.CentralPawnBonus = static_cast<std::int8_t>(kCentralPawn * gamePhase / kFullPhase);
  phase.QueenSortiePenalty = static_cast<std::int8_t>(kQueenSortie * gamePhase / kFullPhase);
  for (int rank = 0; rank < 8; ++rank)
    phase.PassedEndgameTerm[rank] = static_cast<std::int16_t>(PassedEndgameLimit(rank) * endgameWeight / kFullPhase);
  for (int lead = -kFarthestApart; lead <= kFarthestApart; ++lead)
    phase.RaceTerms[lead + kFarthestApart] = RaceTerm(lead, endgameWeight);
  return phase;
}

constexpr Array<Phase, kPhases> MakePhaseTable() {
  Array<Phase, kPhases> table{};
  for (int unit = 0; unit < kPhases; ++unit)
    table[unit] = MakePhase(unit * kPhaseUnit);
  return table;
}

} // namespace

constexpr Array<Phase, kPhases> kPhaseTable = MakePhaseTable();

} // namespace zorvane

// The terms of the pawns, and the cache of what depends on the pawns alone.
#pragma once

#include "base/array.h"
#include "board/position.h"
#include "evaluation/phase.h"

namespace zorvane {

// What follows from the placement of pawns alone: a slot of the pawn cache, one cache line. All zero, as a new cache
// is, it is correct for a board without pawns.
struct alignas(64) PawnStructure {
  Array<Bitboard, 2> Pawns;  // by side; the placement that the other fields describe
  Array<Bitboard, 2> Passed; // by side
  Array<Bitboard, 2> Files;  // by side: all squares of the files on which it has pawns

  // Centipawns, White's minus Black's: doubled, isolated and passed pawns. Not used when IsFractional.
  std::int32_t Score;

  // Pawns that earn CentralPawnBonus, White's minus Black's.
  std::int16_t CentralPawns;

  // Bounds of PawnPhaseScore.
  std::int16_t LowestPhaseTerms;
  std::int16_t HighestPhaseTerms;

  // Five or seven pawns of a side on a file: their terms are not exact in binary, so the order of summation counts.
  bool IsFractional;
};

// Turns the cache on or off; scores do not depend on it. RunSearch sets it for each search from its options; at program
// start it is on.
void EnablePawnCache(bool enabled);

// The structure of the pawns on the board, cached or computed. The reference is valid until the next call. Allocates
// the cache on first use, and ends the process with exit code 2 if there is no memory.
const PawnStructure &CurrentPawnStructure();

// The terms that depend on phase and kings, centipawns, White's minus Black's: central pawns, passed pawns in the
// endgame, and the kings' distances from them.
int PawnPhaseScore(const PawnStructure &structure, const Phase &phase);

// The whole term of the pawn on square, centipawns from its own side's view, with its fraction.
double PawnTerm(const PawnStructure &structure, const Phase &phase, int square);

} // namespace zorvane

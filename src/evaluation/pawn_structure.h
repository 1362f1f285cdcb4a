// The terms of the pawns, and the cache of what depends on the pawns alone.
#pragma once

#include "board/array.h"
#include "board/position.h"
#include "evaluation/phase.h"

namespace zorvane {

// What follows from a placement of pawns alone. A slot of the PawnCache is one of these; all zero, as it is at first,
// it is right for a board without pawns.
struct alignas(64) PawnStructure {
  Array<Bitboard, 2> Pawns; // by side; the placement that the other fields are about
  Array<Bitboard, 2> Passed;
  Array<Bitboard, 2> Files;      // all squares of the files that hold pawns of the side
  std::int32_t Score;            // centipawns beyond PlacementTerm, White's minus Black's
  std::int16_t CentralPawns;     // pawns that earn CentralPawnBonus, White's minus Black's
  std::int16_t LowestPhaseTerms; // what phase and kings may add to Score, at the least and at the most
  std::int16_t HighestPhaseTerms;
  bool IsFractional; // five or seven pawns of a side on a file: doubled terms that are inexact fractions
};

// With false nothing is cached, and every value stays the same. On at program start.
void EnablePawnCache(bool enabled);

// The structure of the pawns on the board, from the cache or worked out. Good until the next call. Allocates the cache
// on first use.
const PawnStructure &CurrentPawnStructure();

// The terms of all pawns that depend on phase and kings, centipawns, White's minus Black's.
int PawnPhaseScore(const PawnStructure &structure, const Phase &phase);

// The term of the one pawn on square, unsigned for colour, with its fraction.
double PawnTerm(const PawnStructure &structure, const Phase &phase, int square);

} // namespace zorvane

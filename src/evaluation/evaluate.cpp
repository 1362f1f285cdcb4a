#include "evaluation/evaluate.h"

#include <cassert>

#include "board/piece_values.h"
#include "evaluation/king_terms.h"
#include "evaluation/mating_drive.h"
#include "evaluation/pawn_structure.h"
#include "evaluation/phase.h"
#include "evaluation/piece_terms.h"

namespace zorvane {

namespace {

// Each king is worth this. The two cancel, but not before they have rounded partial sums that hold fractions.
constexpr double kKingConstant = 20000;

// The whole term of the piece of Us on square, unsigned for colour.
template <Side Us> double TermOn(const PawnStructure &pawns, const Phase &phase, int square) {
  const PieceType type = TypeOf(PieceOn(square));
  if (type == kPawn)
    return PawnTerm(pawns, phase, square);
  if (type == kKing)
    return kKingConstant + KingPlacementTerm<Us>(phase) - KingAttackPenalty<Us>(phase);
  return PlacementTerm(Us, type, square) + PieceTerms<Us>(pawns, phase, Bit(square));
}

// The exact sum for positions whose doubled pawns have fractional terms. Doubles round, and the total is truncated: the
// order of summation decides the last centipawn, so the terms are added square by square.
int SumInScanOrder(const PawnStructure &pawns, const Phase &phase) {
  double score = 0;
  for (Bitboard pieces = Occupied(); pieces != 0;) {
    const int square = PopLsb(pieces);
    if (SideOf(PieceOn(square)) == kWhite)
      score += TermOn<kWhite>(pawns, phase, square);
    else
      score -= TermOn<kBlack>(pawns, phase, square);
  }
  score += BishopPairTerm<kWhite>();
  score -= BishopPairTerm<kBlack>();
  return static_cast<int>(score + MatingDrive());
}

} // namespace

int Evaluate(ScoreRange range) {
  assert(range.Floor < range.Ceiling);
  const Phase &phase = CurrentPhase();
  const PawnStructure &pawns = CurrentPawnStructure();
  if (pawns.IsFractional) [[unlikely]]
    return SumInScanOrder(pawns, phase);

  // Terms that are cheap. The rest have bounds: nine evaluations of ten end at one.
  int score = PlacementScore() + pawns.Score + PieceTerms<kWhite>(pawns, phase, kAllSquares) -
              PieceTerms<kBlack>(pawns, phase, kAllSquares) + BishopPairTerm<kWhite>() - BishopPairTerm<kBlack>() +
              MatingDrive();
  const int mostLowering = HighestAttackPenalty<kWhite>(phase);
  const int mostLifting = HighestAttackPenalty<kBlack>(phase);
  const int highest = score + pawns.HighestPhaseTerms + kKingPlacementSpread + mostLifting;
  const int lowest = score + pawns.LowestPhaseTerms - kKingPlacementSpread - mostLowering;
  if (highest <= range.Floor)
    return highest;
  if (lowest >= range.Ceiling)
    return lowest;

  // Passed pawns and the kings' places, which need the phase.
  score += PawnPhaseScore(pawns, phase) + KingPlacementTerm<kWhite>(phase) - KingPlacementTerm<kBlack>(phase);
  if (score + mostLifting <= range.Floor)
    return score + mostLifting;
  if (score - mostLowering >= range.Ceiling)
    return score - mostLowering;

  // King attacks, the costliest. The attack on White's king only lowers the score, that on Black's only lifts it: at or
  // beyond an end of the range the one attack that leads back decides whether the other one matters.
  if (score <= range.Floor) {
    const int lifted = score + KingAttackPenalty<kBlack>(phase);
    return lifted <= range.Floor ? lifted : lifted - KingAttackPenalty<kWhite>(phase);
  }
  const int lowered = score - KingAttackPenalty<kWhite>(phase);
  return lowered >= range.Ceiling ? lowered : lowered + KingAttackPenalty<kBlack>(phase);
}

} // namespace zorvane

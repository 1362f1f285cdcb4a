#include "evaluation/evaluate.h"

#include <cassert>

#include "board/piece_square_terms.h"
#include "evaluation/king_terms.h"
#include "evaluation/mating_drive.h"
#include "evaluation/pawn_structure.h"
#include "evaluation/phase.h"
#include "evaluation/piece_terms.h"

namespace zorvane {

namespace {

// Each king's value in centipawns. The two cancel, but adding so much to a sum with fractions rounds off its last bits,
// and those decide the last centipawn.
constexpr double kKingConstant = 20000;

// The whole term of a piece of Us, from its own side's view.
template <Side Us> double TermOn(const PawnStructure &pawns, const Phase &phase, int square) {
  const PieceType type = TypeOf(PieceOn(square));
  if (type == kPawn)
    return PawnTerm(pawns, phase, square);
  if (type == kKing)
    return kKingConstant + KingPlacementTerm<Us>(phase) - KingAttackPenalty<Us>(phase);
  return PieceSquareTerm(Us, type, square) + PieceTerms<Us>(pawns, phase, Bit(square));
}

// Doubles round, and the total is truncated: with fractional terms the order of summation decides the last centipawn.
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

int EvaluateInScanOrder() { return SumInScanOrder(CurrentPawnStructure(), CurrentPhase()); }

int Evaluate(ScoreRange range) {
  assert(range.Floor < range.Ceiling);
  const Phase &phase = CurrentPhase();
  const PawnStructure &pawns = CurrentPawnStructure();
  if (pawns.IsFractional) [[unlikely]]
    return SumInScanOrder(pawns, phase);

  // Cheap terms first. The rest are bounded, and nine evaluations in ten return at a bound.
  int score = PieceSquareScore() + pawns.Score + PieceTerms<kWhite>(pawns, phase, kAllSquares) -
              PieceTerms<kBlack>(pawns, phase, kAllSquares) + BishopPairTerm<kWhite>() - BishopPairTerm<kBlack>() +
              MatingDrive();
  const int highestWhiteKingPenalty = HighestAttackPenalty<kWhite>(phase);
  const int highestBlackKingPenalty = HighestAttackPenalty<kBlack>(phase);
  const int highest = score + pawns.HighestPhaseTerms + kKingPlacementSpread + highestBlackKingPenalty;
  const int lowest = score + pawns.LowestPhaseTerms - kKingPlacementSpread - highestWhiteKingPenalty;
  if (highest <= range.Floor)
    return highest;
  if (lowest >= range.Ceiling)
    return lowest;

  // Terms that need the phase: passed pawns and the kings' squares.
  score += PawnPhaseScore(pawns, phase) + KingPlacementTerm<kWhite>(phase) - KingPlacementTerm<kBlack>(phase);
  if (score + highestBlackKingPenalty <= range.Floor)
    return score + highestBlackKingPenalty;
  if (score - highestWhiteKingPenalty >= range.Ceiling)
    return score - highestWhiteKingPenalty;

  // King attacks, the most expensive term. An attack on White's king only lowers the score, one on Black's only raises
  // it. Outside the range, the one that could bring the score back comes first, and usually shows that it does not.
  if (score <= range.Floor) {
    const int raised = score + KingAttackPenalty<kBlack>(phase);
    return raised <= range.Floor ? raised : raised - KingAttackPenalty<kWhite>(phase);
  }
  const int lowered = score - KingAttackPenalty<kWhite>(phase);
  return lowered >= range.Ceiling ? lowered : lowered + KingAttackPenalty<kBlack>(phase);
}

} // namespace zorvane

#include "evaluation/evaluate.h"

#include "evaluation/king_terms.h"
#include "evaluation/mating_drive.h"
#include "evaluation/pawn_structure.h"
#include "evaluation/phase.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kBishopPair = 30;
constexpr int kHalfOpenFile = 12;
constexpr int kOpenFile = 10;           // on top of the half-open file
constexpr double kKingConstant = 20000; // cancels, but rounds sums with fractions on the way

// Where a queen pays for having come out: all but its own first two ranks.
constexpr Bitboard kSortieSquares[2] = {~(RowMask(7) | RowMask(6)), ~(RowMask(0) | RowMask(1))};

template <Side Us> int RookFileScore(const PawnStructure &pawns) {
  const Bitboard halfOpen = Pieces(Us, kRook) & ~pawns.Files[Us];
  return kHalfOpenFile * CountSquares(halfOpen) + kOpenFile * CountSquares(halfOpen & ~pawns.Files[Opposite(Us)]);
}

template <Side Us> int BishopPairScore() { return HasSeveral(Pieces(Us, kBishop)) ? kBishopPair : 0; }

template <Side Us> int PieceScore(const PawnStructure &pawns, const Phase &phase) {
  return RookFileScore<Us>(pawns) + BishopPairScore<Us>() -
         phase.QueenSortiePenalty * CountSquares(Pieces(Us, kQueen) & kSortieSquares[Us]);
}

// The term of the piece on square other than a pawn, unsigned for colour.
template <Side Us> double PieceTerm(const PawnStructure &pawns, const Phase &phase, int square) {
  const PieceType type = TypeOf(PieceOn(square));
  if (type == kKing)
    return kKingConstant + KingPlaceTerm<Us>(phase) - KingAttackPenalty<Us>(phase);
  int term = PlacementTerm(Us, type, square);
  if (type == kRook && !Contains(pawns.Files[Us], square))
    term += kHalfOpenFile + (Contains(pawns.Files[Opposite(Us)], square) ? 0 : kOpenFile);
  if (type == kQueen && Contains(kSortieSquares[Us], square))
    term -= phase.QueenSortiePenalty;
  return term;
}

// With fractions in the sum its order decides the last bits, so the terms are added up square by square.
int SumInScanOrder(const PawnStructure &pawns, const Phase &phase) {
  double score = 0;
  for (Bitboard men = Occupied(); men != 0;) {
    const int square = PopSquare(men);
    const Piece piece = PieceOn(square);
    const double term = TypeOf(piece) == kPawn    ? PawnTerm(pawns, phase, square)
                        : SideOf(piece) == kWhite ? PieceTerm<kWhite>(pawns, phase, square)
                                                  : PieceTerm<kBlack>(pawns, phase, square);
    score += SideOf(piece) == kWhite ? term : -term;
  }
  score += BishopPairScore<kWhite>();
  score -= BishopPairScore<kBlack>();
  return static_cast<int>(score + MatingDrive());
}

// From cheap terms to costly ones, for as long as those left over could lift the score out of its end of the range.
int WorkOutWithin(ScoreRange range) {
  const Phase &phase = CurrentPhase();
  const PawnStructure &pawns = CurrentPawnStructure();
  if (pawns.IsFractional) [[unlikely]]
    return SumInScanOrder(pawns, phase);
  int score = PlacementScore() + pawns.Score + PieceScore<kWhite>(pawns, phase) - PieceScore<kBlack>(pawns, phase) +
              MatingDrive();
  const int mostLowering = HighestAttackPenalty<kWhite>(phase);
  const int mostLifting = HighestAttackPenalty<kBlack>(phase);
  const int highest = score + pawns.HighestPhaseTerms + kKingPlaceSpread + mostLifting;
  const int lowest = score + pawns.LowestPhaseTerms - kKingPlaceSpread - mostLowering;
  if (highest <= range.Floor)
    return highest;
  if (lowest >= range.Ceiling)
    return lowest;

  score += PawnPhaseScore(pawns, phase) + KingPlaceTerm<kWhite>(phase) - KingPlaceTerm<kBlack>(phase);
  if (score + mostLifting <= range.Floor)
    return score + mostLifting;
  if (score - mostLowering >= range.Ceiling)
    return score - mostLowering;

  // The attack on White's king only lowers the score, that on Black's only lifts it. So an end of the range is certain
  // once the one attack that leads away from it is known.
  if (score <= range.Floor) {
    const int lifted = score + KingAttackPenalty<kBlack>(phase);
    return lifted <= range.Floor ? lifted : lifted - KingAttackPenalty<kWhite>(phase);
  }
  const int lowered = score - KingAttackPenalty<kWhite>(phase);
  return lowered >= range.Ceiling ? lowered : lowered + KingAttackPenalty<kBlack>(phase);
}

} // namespace

int ComputeEvaluation() { return WorkOutWithin(kAllScores); }

int EvaluateWithin(ScoreRange range) {
  DisplaceOtherPosition(SideToMove);
  return WorkOutWithin(range);
}

int Evaluate() { return EvaluateWithin(kAllScores); }

} // namespace zorvane

#include "board/perft.h"

#include "board/legal_moves.h"

namespace zorvane {

namespace {

constexpr std::array<PieceType, 4> kPromotions{kRook, kKnight, kBishop, kQueen};

int CountWithPromotions(Bitboard pawnTargets) {
  return CountSquares(pawnTargets) + 3 * CountSquares(pawnTargets & kLastRows);
}

// The moves of the pawns given, which are all free or all held to one line.
template <Side Us> int CountPawnMoves(Bitboard pawns, Bitboard allowed) {
  const Bitboard single = SinglePushes<Us>(pawns);
  const Bitboard captures = allowed & Position.BySide[Opposite(Us)] & ~Pieces(kKing);
  return CountWithPromotions(single & allowed) + CountSquares(DoublePushes<Us>(single) & allowed) +
         CountWithPromotions(TowardsA(Ahead<Us>(pawns)) & captures) +
         CountWithPromotions(TowardsH(Ahead<Us>(pawns)) & captures);
}

// Counts the legal moves without listing them.
template <Side Us> int CountLeaves() {
  const KingDanger danger = FindKingDanger<Us>();
  const Bitboard steps = KingSteps<Us>(danger.King, kAllSquares);
  int count = CountSquares(steps);
  const Bitboard resolving = ResolvingSquares(danger);
  if (resolving == 0)
    return count;
  count += CountSquares(CastlingTargets<Us>(danger, steps)) + CountSquares(EnPassantCapturers<Us>());

  const Bitboard held = PinnedMen<Us>(danger);
  const Bitboard allowed = resolving & ~Position.BySide[Us] & ~Pieces(kKing);
  const Bitboard occupied = Occupied();
  Bitboard knights = Pieces(Us, kKnight) & ~held;
  while (knights != 0)
    count += CountSquares(KnightAttacks[static_cast<unsigned>(PopSquare(knights))] & allowed);
  Bitboard diagonal = Pieces(Us, kBishop, kQueen);
  while (diagonal != 0) {
    const int from = PopSquare(diagonal);
    count += CountSquares(BishopAttacks(from, occupied) & allowed & PinLine(danger, held, from));
  }
  Bitboard straight = Pieces(Us, kRook, kQueen);
  while (straight != 0) {
    const int from = PopSquare(straight);
    count += CountSquares(RookAttacks(from, occupied) & allowed & PinLine(danger, held, from));
  }

  const Bitboard pawns = Pieces(Us, kPawn);
  count += CountPawnMoves<Us>(pawns & ~held, allowed);
  Bitboard pinned = pawns & held;
  while (pinned != 0) {
    const int from = PopSquare(pinned);
    count += CountPawnMoves<Us>(Bit(from), allowed & PinLine(danger, held, from));
  }
  return count;
}

template <Side Us> std::uint64_t PerftOf(int depth) {
  constexpr Side them = Opposite(Us);
  if (depth == 1)
    return static_cast<std::uint64_t>(CountLeaves<Us>());
  const KingDanger danger = FindKingDanger<Us>();
  const BoardState saved = Position;
  std::uint64_t leaves = 0;
  MoveSets moves;
  SetLegalMoves<Us>(moves, danger);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    const bool isPawn = TypeOf(PieceOn(from)) == kPawn;
    Bitboard targets = moves.Targets[static_cast<unsigned>(from)];
    while (targets != 0) {
      const int to = PopSquare(targets);
      MakeMoveOf<Us>(from, to);
      if (isPawn && Contains(kLastRows, to)) {
        for (const PieceType promotion : kPromotions) {
          RemovePiece(to);
          PutPiece(to, MakePiece(Us, promotion));
          leaves += PerftOf<them>(depth - 1);
        }
      } else {
        leaves += PerftOf<them>(depth - 1);
      }
      Position = saved;
    }
  }
  return leaves;
}

} // namespace

std::uint64_t Perft(int depth) {
  if (depth == 0)
    return 1;
  return SideToMove == kWhite ? PerftOf<kWhite>(depth) : PerftOf<kBlack>(depth);
}

} // namespace zorvane

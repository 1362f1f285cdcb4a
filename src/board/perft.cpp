#include "board/perft.h"

#include <cassert>

#include "base/array.h"
#include "board/legal_moves.h"

namespace zorvane {

namespace {

constexpr Array<PieceType, 4> kPromotions{kRook, kKnight, kBishop, kQueen};

int CountWithPromotions(Bitboard pawnTargets) {
  return PopCount(pawnTargets) + 3 * PopCount(pawnTargets & kPromotionRows);
}

// Counts the moves of pawns that are either all free or all pinned to the same line.
template <Side Us> int CountPawnMoves(Bitboard pawns, Bitboard allowed) {
  const Bitboard single = SinglePushes<Us>(pawns);
  const Bitboard captures = allowed & Board.BySide[Opposite(Us)] & ~Pieces(kKing);
  return CountWithPromotions(single & allowed) + PopCount(DoublePushes<Us>(single) & allowed) +
         CountWithPromotions(ShiftWest(ShiftForward<Us>(pawns)) & captures) +
         CountWithPromotions(ShiftEast(ShiftForward<Us>(pawns)) & captures);
}

// Counts the legal moves without generating them.
template <Side Us> int CountLeaves() {
  const CheckInfo info = FindCheckInfo<Us>();
  const Bitboard steps = KingSteps<Us>(info.King, kAllSquares);
  int count = PopCount(steps);
  const Bitboard resolving = EvasionTargets(info);
  if (resolving == 0)
    return count;
  count += PopCount(CastlingTargets<Us>(info, steps)) + PopCount(EnPassantCapturers<Us>());

  const Bitboard held = PinnedPieces<Us>(info);
  const Bitboard allowed = resolving & ~Board.BySide[Us] & ~Pieces(kKing);
  const Bitboard occupied = Occupied();
  for (Bitboard knights = Pieces(Us, kKnight) & ~held; knights != 0;)
    count += PopCount(kKnightAttacks[PopLsb(knights)] & allowed);
  for (Bitboard diagonal = Pieces(Us, kBishop, kQueen) & ~held; diagonal != 0;)
    count += PopCount(BishopAttacks(PopLsb(diagonal), occupied) & allowed);
  for (Bitboard straight = Pieces(Us, kRook, kQueen) & ~held; straight != 0;)
    count += PopCount(RookAttacks(PopLsb(straight), occupied) & allowed);
  count += CountPawnMoves<Us>(Pieces(Us, kPawn) & ~held, allowed);
  for (Bitboard pinned = held; pinned != 0;) {
    const int from = PopLsb(pinned);
    const Bitboard onLine = allowed & LineThrough[info.King][from];
    count +=
        TypeOf(PieceOn(from)) == kPawn ? CountPawnMoves<Us>(Bit(from), onLine) : PopCount(PieceAttacks(from) & onLine);
  }
  return count;
}

template <Side Us> std::uint64_t Perft(int depth) {
  constexpr Side them = Opposite(Us);
  assert(depth >= 1 && PositionIsOk());
  if (depth == 1)
    return static_cast<std::uint64_t>(CountLeaves<Us>());
  const CheckInfo info = FindCheckInfo<Us>();
  const BoardState saved = Board;
  std::uint64_t leaves = 0;
  MoveSets moves;
  GenerateLegalMoves<Us>(moves, info);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    const bool isPawn = TypeOf(PieceOn(from)) == kPawn;
    Bitboard targets = moves.Targets[from];
    while (targets != 0) {
      const int to = PopLsb(targets);
      MakeMove<Us>(from, to);
      if (isPawn && Contains(kPromotionRows, to)) {
        for (const PieceType promotion : kPromotions) {
          RemovePiece(to);
          PutPiece(to, MakePiece(Us, promotion));
          leaves += Perft<them>(depth - 1);
        }
      } else {
        leaves += Perft<them>(depth - 1);
      }
      RestoreState(saved);
    }
  }
  return leaves;
}

} // namespace

std::uint64_t Perft(int depth) {
  if (depth == 0)
    return 1;
  return SideToMove == kWhite ? Perft<kWhite>(depth) : Perft<kBlack>(depth);
}

} // namespace zorvane

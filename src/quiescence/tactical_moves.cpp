#include "quiescence/tactical_moves.h"

#include <cassert>

#include "board/check_squares.h"
#include "quiescence/threats.h"

namespace zorvane {

namespace {

template <Side Us> Bitboard Victims() { return Board.BySide[Opposite(Us)] & ~Pieces(kKing); }

// Captures on victims, without en passant, and pushes to pushSquares. Always inlined, as most arguments are constants
// where it is called.
template <Side Us>
[[gnu::always_inline]] inline void GenerateCapturesAndPushes(MoveSets &moves, const CheckInfo &info, Bitboard victims,
                                                             Bitboard pushSquares) {
  moves.Froms = 0;
  GeneratePieceMoves<Us>(moves, SameForAll(victims));
  GeneratePawnMoves<Us>(moves, victims, pushSquares);
  RestrictPinned<Us>(moves, info);
  SetTargets(moves, info.King, KingSteps<Us>(info.King, victims));
}

// Keeps captures on the squares given and captures that give check.
void KeepRecapturesAndChecks(MoveSets &moves, Bitboard recaptures, const CheckSquares &checks) {
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    RestrictTargets(moves, from, recaptures | CheckingTargets(checks, from, TypeOf(PieceOn(from))));
  }
}

// Adds the moves by which a piece uncovers a check: to squares of wanted, or for pawns to those of wantedOfPawns.
template <Side Us>
void AddDiscoveries(MoveSets &moves, const CheckInfo &info, const CheckSquares &checks, Bitboard wanted,
                    Bitboard wantedOfPawns) {
  if (checks.Discoverers == 0)
    return;
  MoveSets all;
  GenerateLegalMoves<Us>(all, info);
  for (Bitboard movers = checks.Discoverers & all.Froms; movers != 0;) {
    const int from = PopLsb(movers);
    const PieceType type = TypeOf(PieceOn(from));
    Bitboard targets = all.Targets[from] & (type == kPawn ? wantedOfPawns : wanted);
    if (type == kKing) // castling has rules of its own
      targets &= kKingAttacks[from];
    AddTargets(moves, from, targets & ~LineThrough[checks.EnemyKing][from]);
  }
}

// En-passant captures that give check, tried when the pawn gives it or uncovers it.
template <Side Us> void AddEnPassantChecks(MoveSets &moves, const CheckSquares &checks) {
  const int to = Board.EnPassantSquare;
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;) {
    const int from = PopLsb(pawns);
    const bool mayCheck = Contains(checks.From[kPawn], to) || Contains(checks.Discoverers, from);
    if (mayCheck && MoveGivesCheck(from, to))
      AddTargets(moves, from, Bit(to));
  }
}

// Castling that gives check, tried when the king uncovers a line; a check by the rook alone is not looked for.
template <Side Us> void AddCastlingChecks(MoveSets &moves, const CheckInfo &info, const CheckSquares &checks) {
  if (!Contains(checks.Discoverers, info.King))
    return;
  const Bitboard steps = KingSteps<Us>(info.King, kAllSquares);
  for (Bitboard targets = CastlingTargets<Us>(info, steps); targets != 0;) {
    const int to = PopLsb(targets);
    if (MoveGivesCheck(info.King, to))
      AddTargets(moves, info.King, Bit(to));
  }
}

} // namespace

template <Side Us> void GenerateCaptureZone(MoveSets &moves, const CheckInfo &info, bool withForkPushes) {
  assert(info.Checkers == 0);
  GenerateCapturesAndPushes<Us>(moves, info, Victims<Us>(),
                                kPromotionRows | (withForkPushes ? PawnForkSquares<Us>() : 0));
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;)
    AddTargets(moves, PopLsb(pawns), EnPassantSet());
}

template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const CheckInfo &info, int target) {
  assert(info.Checkers == 0);
  const Bitboard diagonals = BishopAttacks(target, 0) & ~Occupied();
  const Bitboard pinned = PinnedPieces<Us>(info);
  const BoardState saved = Board;
  for (Bitboard bishops = Pieces(Us, kBishop); bishops != 0;) {
    const int from = PopLsb(bishops);
    const Bitboard reach = BishopAttacks(from, Occupied());
    if (Contains(reach, target))
      continue;
    for (Bitboard targets = reach & diagonals & PinLine(info, pinned, from); targets != 0;) {
      const int to = PopLsb(targets);
      MakeMove<Us>(from, to);
      const bool counts = IsLegalMove(to, target);
      RestoreState(saved);
      if (counts)
        AddTargets(moves, from, Bit(to));
    }
  }
}

template <Side Us>
void GenerateRecaptures(MoveSets &moves, const CheckInfo &info, Bitboard ownBefore, bool withChecks) {
  const Bitboard victims = Victims<Us>();
  const Bitboard recaptures = ownBefore & victims;
  GenerateCapturesAndPushes<Us>(moves, info, withChecks ? victims : recaptures, 0);
  // Often nothing can be taken at all, and the checks need not be known.
  if (withChecks && moves.Froms != 0)
    KeepRecapturesAndChecks(moves, recaptures, FindCheckSquares<Us>());
}

template <Side Us> void GenerateQuietChecks(MoveSets &moves, const CheckInfo &info, bool afterCaptureZone) {
  const Bitboard empty = ~Occupied();
  const CheckSquares checks = FindCheckSquares<Us>();
  const auto from = [&](PieceType type) { return empty & checks.From[type]; };
  moves.Froms = 0;
  GeneratePieceMoves<Us>(
      moves, {.Rook = from(kRook), .Knight = from(kKnight), .Bishop = from(kBishop), .Queen = from(kQueen)});
  GeneratePawnMoves<Us>(moves, 0, from(kPawn));
  RestrictPinned<Us>(moves, info);
  AddDiscoveries<Us>(moves, info, checks, empty, empty & ~EnPassantSet() & ~(afterCaptureZone ? kPromotionRows : 0));
  AddCastlingChecks<Us>(moves, info, checks);
  if (!afterCaptureZone)
    AddEnPassantChecks<Us>(moves, checks);
}

template void GenerateCaptureZone<kWhite>(MoveSets &moves, const CheckInfo &info, bool withForkPushes);
template void GenerateCaptureZone<kBlack>(MoveSets &moves, const CheckInfo &info, bool withForkPushes);
template void AddBishopManoeuvres<kWhite>(MoveSets &moves, const CheckInfo &info, int target);
template void AddBishopManoeuvres<kBlack>(MoveSets &moves, const CheckInfo &info, int target);
template void GenerateRecaptures<kWhite>(MoveSets &moves, const CheckInfo &info, Bitboard ownBefore, bool withChecks);
template void GenerateRecaptures<kBlack>(MoveSets &moves, const CheckInfo &info, Bitboard ownBefore, bool withChecks);
template void GenerateQuietChecks<kWhite>(MoveSets &moves, const CheckInfo &info, bool afterCaptureZone);
template void GenerateQuietChecks<kBlack>(MoveSets &moves, const CheckInfo &info, bool afterCaptureZone);

} // namespace zorvane

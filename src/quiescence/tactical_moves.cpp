#include "quiescence/tactical_moves.h"

#include "quiescence/check_targets.h"
#include "quiescence/predicates.h"

namespace zorvane {

namespace {

template <Side Us> Bitboard Victims() { return Position.BySide[Opposite(Us)] & ~Pieces(kKing); }

// Captures on the squares given, en passant apart, and pushes onto others. Inlined, as the calls know half of it.
template <Side Us>
[[gnu::always_inline]] inline void SetCaptures(MoveSets &moves, const KingDanger &danger, Bitboard victims,
                                               Bitboard pushSquares) {
  moves.Froms = 0;
  SetPieceMoves<Us>(moves, SameForAll(victims));
  SetPawnMoves<Us>(moves, victims, pushSquares);
  HoldPinned<Us>(moves, danger);
  SetMoves(moves, danger.King, KingSteps<Us>(danger.King, victims));
}

// Leaves of the captures those on the squares given and, of the others, those that give check.
void KeepRecapturesAndChecks(MoveSets &moves, Bitboard retaken, const CheckTargets &checks) {
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    KeepMoves(moves, from, retaken | CheckingTargets(checks, from, TypeOf(PieceOn(from))));
  }
}

// Adds the moves to squares of wanted by which a piece uncovers a check; pawns have a wish of their own.
template <Side Us>
void AddDiscoveries(MoveSets &moves, const KingDanger &danger, const CheckTargets &checks, Bitboard wanted,
                    Bitboard wantedOfPawns) {
  if (checks.Discoverers == 0)
    return;
  MoveSets all;
  SetLegalMoves<Us>(all, danger);
  for (Bitboard men = checks.Discoverers & all.Froms; men != 0;) {
    const int from = PopSquare(men);
    const PieceType type = TypeOf(PieceOn(from));
    Bitboard targets = all.Targets[static_cast<unsigned>(from)] & (type == kPawn ? wantedOfPawns : wanted);
    if (type == kKing) // castling has rules of its own
      targets &= KingAttacks[static_cast<unsigned>(from)];
    AddMoves(moves, from, targets & ~Line[static_cast<unsigned>(checks.EnemyKing)][static_cast<unsigned>(from)]);
  }
}

// En-passant captures that give check, tried when the pawn gives it or uncovers it.
template <Side Us> void AddEnPassantChecks(MoveSets &moves, const CheckTargets &checks, int level) {
  const int to = Position.EnPassantSquare;
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;) {
    const int from = PopSquare(pawns);
    const bool mayCheck = Contains(checks.From[kPawn], to) || Contains(checks.Discoverers, from);
    if (mayCheck && MoveGivesCheck(level, from, to))
      AddMoves(moves, from, Bit(to));
  }
}

// Castling that gives check, tried when the king uncovers a line; a check by the rook alone is not looked for.
template <Side Us>
void AddCastlingChecks(MoveSets &moves, const KingDanger &danger, const CheckTargets &checks, int level) {
  if (!Contains(checks.Discoverers, danger.King))
    return;
  const Bitboard steps = KingSteps<Us>(danger.King, kAllSquares);
  for (Bitboard targets = CastlingTargets<Us>(danger, steps); targets != 0;) {
    const int to = PopSquare(targets);
    if (MoveGivesCheck(level, danger.King, to))
      AddMoves(moves, danger.King, Bit(to));
  }
}

} // namespace

template <Side Us> void SetCaptureZoneMoves(MoveSets &moves, const KingDanger &danger, bool withForkPushes) {
  SetCaptures<Us>(moves, danger, Victims<Us>(), kLastRows | (withForkPushes ? PawnForkSquares<Us>() : 0));
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;)
    AddMoves(moves, PopSquare(pawns), EnPassantSet());
}

template <Side Us> void AddBishopManoeuvres(MoveSets &moves, const KingDanger &danger, int target, int level) {
  const Bitboard diagonals = BishopAttacks(target, 0) & ~Occupied();
  const Bitboard pinned = PinnedMen<Us>(danger);
  SaveState(level);
  for (Bitboard bishops = Pieces(Us, kBishop); bishops != 0;) {
    const int from = PopSquare(bishops);
    const Bitboard reach = BishopAttacks(from, Occupied());
    if (Contains(reach, target))
      continue;
    for (Bitboard targets = reach & diagonals & PinLine(danger, pinned, from); targets != 0;) {
      const int to = PopSquare(targets);
      MakeMoveOf<Us>(from, to);
      const bool counts = IsLegalMove(to, target);
      RestoreState(level);
      if (counts)
        AddMoves(moves, from, Bit(to));
    }
  }
}

template <Side Us> void SetRecaptures(MoveSets &moves, const KingDanger &danger, Bitboard retaken, bool withChecks) {
  const Bitboard victims = Victims<Us>();
  retaken &= victims;
  SetCaptures<Us>(moves, danger, withChecks ? victims : retaken, 0);
  // Often nothing can be taken at all, and the checks need not be known.
  if (withChecks && moves.Froms != 0)
    KeepRecapturesAndChecks(moves, retaken, FindCheckTargets<Us>());
}

template <Side Us> void SetQuietChecks(MoveSets &moves, const KingDanger &danger, bool behindCaptureZone, int level) {
  const Bitboard empty = ~Occupied();
  const CheckTargets checks = FindCheckTargets<Us>();
  const auto from = [&](PieceType type) { return empty & checks.From[type]; };
  moves.Froms = 0;
  SetPieceMoves<Us>(moves, {from(kRook), from(kKnight), from(kBishop), from(kQueen)});
  SetPawnMoves<Us>(moves, 0, from(kPawn));
  HoldPinned<Us>(moves, danger);
  AddDiscoveries<Us>(moves, danger, checks, empty, empty & ~EnPassantSet() & ~(behindCaptureZone ? kLastRows : 0));
  AddCastlingChecks<Us>(moves, danger, checks, level);
  if (!behindCaptureZone)
    AddEnPassantChecks<Us>(moves, checks, level);
}

template void SetCaptureZoneMoves<kWhite>(MoveSets &moves, const KingDanger &danger, bool withForkPushes);
template void SetCaptureZoneMoves<kBlack>(MoveSets &moves, const KingDanger &danger, bool withForkPushes);
template void AddBishopManoeuvres<kWhite>(MoveSets &moves, const KingDanger &danger, int target, int level);
template void AddBishopManoeuvres<kBlack>(MoveSets &moves, const KingDanger &danger, int target, int level);
template void SetRecaptures<kWhite>(MoveSets &moves, const KingDanger &danger, Bitboard retaken, bool withChecks);
template void SetRecaptures<kBlack>(MoveSets &moves, const KingDanger &danger, Bitboard retaken, bool withChecks);
template void SetQuietChecks<kWhite>(MoveSets &moves, const KingDanger &danger, bool behindCaptureZone, int level);
template void SetQuietChecks<kBlack>(MoveSets &moves, const KingDanger &danger, bool behindCaptureZone, int level);

} // namespace zorvane

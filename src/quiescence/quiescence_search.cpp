#include "quiescence/quiescence_search.h"

#include <algorithm>

#include "evaluation/evaluate.h"
#include "evaluation/king_terms.h"
#include "quiescence/check_targets.h"
#include "quiescence/predicates.h"
#include "search/search_driver.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kEntryDepth = 4;
constexpr int kEntryCredit = 3;

// Each rule holds at plies below its limit; every line ends at kLastPly.
constexpr int kBishopMoveLimit = 7;
constexpr int kThreatLimit = 8;
constexpr int kForkPushLimit = 9;
constexpr int kFollowUpLimit = 9;
constexpr int kCheckLimit = 10;
constexpr int kLastPly = 11;

constexpr int kQuietCheckNodeBudget = 32; // nodes behind quiet moves before new quiet checks end
constexpr int kQuietLineNodeCap = 64;     // nodes behind quiet moves before depth is cut to 1
constexpr int kPlainLineNodeCap = 64;     // the same on plain lines
constexpr int kHorizonExtraChecks = 2;
constexpr int kFollowUpExtraChecks = 1;
constexpr int kExtraFloorPlies = 2;
constexpr int kBishopMovesPerNode = 2;

// Why a node has no stand-pat although it is not in check.
enum ForcedReply : int {
  kNotForced = 0,
  kForkOnBoard = 1,   // the parent's fork or bishop move, or a fresh enemy knight fork
  kPawnForkThreat = 2 // also costs the children a quiet move
};

// One set of counters for the tree below one entry.
int QuietLineDepth; // quiet tactical moves on the current line
int QuietLineNodes; // nodes visited behind one
int PlainLineNodes; // the others

// What a node is asked, and the locals that its passes share.
struct Node {
  int Depth; // remaining capture depth, may be negative
  int Ply;
  int Alpha;
  int Beta;
  int QuietCredit;  // quiet tactical moves that the line may still hold
  int Forced;       // a ForcedReply
  ScoreRange Range; // what the callers can tell apart of the node's score
  int FloorPlies;   // plies for which the depth does not fall below 1

  int Best;
  int ExtraChecks; // quiet checks allowed beyond the budget
  int BishopMoves; // bishop manoeuvres played
  int QueenTarget; // what they aim at, kNoSquare for none
};

// The squares of a set from which each kind of piece gives check.
PieceSquares CheckingSquares(Bitboard set, const CheckTargets &checks) {
  return {set & checks.From[kRook], set & checks.From[kKnight], set & checks.From[kBishop], set & checks.From[kQueen]};
}

// What discoverers add to the moves of their type: wanted moves that leave the line; pawns have a wish of their own.
template <Side Us>
void AddDiscoveries(MoveSets &moves, Bitboard wanted, Bitboard wantedOfPawns, const CheckTargets &checks,
                    const KingDanger &danger) {
  if (checks.Discoverers == 0)
    return;
  MoveSets all;
  SetLegalMoves<Us>(all, danger);
  for (Bitboard men = checks.Discoverers & all.Froms; men != 0;) {
    const int from = PopSquare(men);
    const PieceType type = TypeOf(PieceOn(from));
    Bitboard targets = all.Targets[static_cast<unsigned>(from)] & (type == kPawn ? wantedOfPawns : wanted);
    if (type == kKing)
      targets &= KingAttacks[static_cast<unsigned>(from)];
    AddMoves(moves, from, targets & ~Line[static_cast<unsigned>(checks.EnemyKing)][static_cast<unsigned>(from)]);
  }
}

// En-passant captures that give check, tried when the pawn gives it or uncovers it.
template <Side Us> void AddEnPassantChecks(MoveSets &moves, int ply, const CheckTargets &checks) {
  const int to = Position.EnPassantSquare;
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;) {
    const int from = PopSquare(pawns);
    const bool mayCheck = Contains(checks.From[kPawn], to) || Contains(checks.Discoverers, from);
    if (mayCheck && MoveGivesCheck(ply, from, to))
      AddMoves(moves, from, Bit(to));
  }
}

// Castling that gives check, tried when the king uncovers a line; a check by the rook alone is not looked for.
template <Side Us>
void AddCastlingChecks(MoveSets &moves, int ply, const CheckTargets &checks, const KingDanger &danger) {
  if (!Contains(checks.Discoverers, danger.King))
    return;
  for (Bitboard targets = CastlingTargets<Us>(danger); targets != 0;) {
    const int to = PopSquare(targets);
    if (MoveGivesCheck(ply, danger.King, to))
      AddMoves(moves, danger.King, Bit(to));
  }
}

// Bishop moves to empty squares from which the bishop, and not from where it stands, can take the queen's target.
template <Side Us> void AddBishopMoves(MoveSets &moves, const Node &node, const KingDanger &danger) {
  const Bitboard diagonals = BishopAttacks(node.QueenTarget, 0) & ~Occupied();
  const Bitboard pinned = PinnedMen<Us>(danger);
  SaveState(node.Ply);
  for (Bitboard bishops = Pieces(Us, kBishop); bishops != 0;) {
    const int from = PopSquare(bishops);
    const Bitboard reach = BishopAttacks(from, Occupied());
    if (Contains(reach, node.QueenTarget))
      continue;
    for (Bitboard targets = reach & diagonals & PinLine(danger.King, pinned, from); targets != 0;) {
      const int to = PopSquare(targets);
      MakeMoveOf<Us>(from, to);
      const bool counts = PieceAttacksSquare(to, node.QueenTarget) && IsLegalMove(to, node.QueenTarget);
      RestoreState(node.Ply);
      if (counts)
        AddMoves(moves, from, Bit(to));
    }
  }
}

// The first pass of a node that is not forced, in the capture zone: captures, en passant, promotions, fork pushes and
// bishop moves.
template <Side Us> void SetCaptureZoneMoves(MoveSets &moves, const Node &node, const KingDanger &danger) {
  const Bitboard victims = Position.BySide[Opposite(Us)] & ~Pieces(kKing);
  const bool withForks = node.QuietCredit > 0 && node.Ply < kForkPushLimit;
  SetPieceMoves<Us>(moves, {victims, victims, victims, victims});
  SetPawnMoves<Us>(moves, victims, kLastRows | (withForks ? PawnForkSquares<Us>() : 0));
  HoldPinned<Us>(moves, danger);
  SetMoves(moves, danger.King, KingSteps<Us>(danger.King, victims));
  for (Bitboard pawns = EnPassantCapturers<Us>(); pawns != 0;)
    AddMoves(moves, PopSquare(pawns), EnPassantSet());
  if (node.QueenTarget != kNoSquare)
    AddBishopMoves<Us>(moves, node, danger);
}

// Leaves of the captures only those on the squares given and those of others that give check.
inline void KeepRecapturesAndChecks(MoveSets &moves, Bitboard retaken, const CheckTargets &checks) {
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    Bitboard &targets = moves.Targets[static_cast<unsigned>(from)];
    targets &= retaken | CheckingTargets(checks, from, TypeOf(PieceOn(from)));
    moves.Froms ^= static_cast<Bitboard>(targets == 0) << from;
  }
}

// The first pass of a node that is not forced, in the recapture zone: recaptures on the square of the enemy's last
// capture, and other captures that give check.
template <Side Us> void SetRecaptures(MoveSets &moves, const Node &node, const KingDanger &danger) {
  const Bitboard victims = Position.BySide[Opposite(Us)] & ~Pieces(kKing);
  const Bitboard retaken = victims & UndoStack[static_cast<unsigned>(node.Ply - 1)].BySide[Us];
  const Bitboard wanted = node.Ply < kCheckLimit ? victims : retaken;
  SetPieceMoves<Us>(moves, {wanted, wanted, wanted, wanted});
  SetPawnMoves<Us>(moves, wanted, 0);
  HoldPinned<Us>(moves, danger);
  SetMoves(moves, danger.King, KingSteps<Us>(danger.King, wanted));
  // Mostly nothing can be taken at all, and the checks need not be known.
  if (wanted != retaken && moves.Froms != 0)
    KeepRecapturesAndChecks(moves, retaken, FindCheckTargets<Us>());
}

// The second pass: quiet moves that give check. Promotions and en passant have had their turn in the capture zone.
template <Side Us> void SetQuietChecks(MoveSets &moves, const Node &node, const KingDanger &danger) {
  const bool captureZone = node.Depth > 0;
  const Bitboard empty = ~Occupied();
  const CheckTargets checks = FindCheckTargets<Us>();
  SetPieceMoves<Us>(moves, CheckingSquares(empty, checks));
  SetPawnMoves<Us>(moves, 0, checks.From[kPawn]);
  HoldPinned<Us>(moves, danger);
  AddDiscoveries<Us>(moves, empty, empty & ~EnPassantSet() & ~(captureZone ? kLastRows : 0), checks, danger);
  AddCastlingChecks<Us>(moves, node.Ply, checks, danger);
  if (!captureZone)
    AddEnPassantChecks<Us>(moves, node.Ply, checks);
}

bool MayPlayQuietCheck(const Node &node) { return QuietLineNodes < kQuietCheckNodeBudget || node.ExtraChecks > 0; }

enum MoveKind { kOrdinaryMove, kQuietCheck, kForkPush, kBishopMove };

// What the moves of a pass are tried as.
enum class Pass { kOrdinary, kCaptureZone, kQuietChecks };

// The kind of a move of the capture zone.
MoveKind CaptureZoneKind(const Node &node, int from, int to) {
  if (PieceOn(to) != kNoPiece)
    return kOrdinaryMove;
  const PieceType type = TypeOf(PieceOn(from));
  if (type == kBishop && node.QueenTarget != kNoSquare)
    return kBishopMove;
  const bool isPush = type == kPawn && FileOf(from) == FileOf(to);
  return isPush && !Contains(kLastRows, to) ? kForkPush : kOrdinaryMove;
}

template <Side Us> int Search(Node &node);

// A child's score changes nothing where the best one so far is as good for the mover, nor where the node's own score
// is no news to its callers.
template <Side Us> ScoreRange ChildRange(const Node &node) {
  if constexpr (Us == kWhite)
    return {std::max(node.Range.Floor, node.Best), node.Range.Ceiling};
  else
    return {node.Range.Floor, std::min(node.Range.Ceiling, node.Best)};
}

// Plays one move and returns the child's score.
template <Side Us> int SearchMove(Node &node, MoveKind kind, int from, int to) {
  const int decayed = node.FloorPlies > 1 ? node.FloorPlies - 1 : 0;
  Node child;
  child.Ply = node.Ply + 1;
  child.Alpha = node.Alpha;
  child.Beta = node.Beta;
  child.Range = ChildRange<Us>(node);
  child.Forced = kind == kForkPush || kind == kBishopMove ? kForkOnBoard : kNotForced;
  child.FloorPlies = kind == kBishopMove ? kExtraFloorPlies : decayed;
  if (kind == kOrdinaryMove) {
    child.Depth = node.Depth - 1;
    child.QuietCredit = node.QuietCredit - (node.Forced == kPawnForkThreat ? 1 : 0);
  } else {
    child.Depth = node.Depth + 1;
    child.QuietCredit = node.QuietCredit - 1;
    if (kind == kQuietCheck && QuietLineNodes >= kQuietCheckNodeBudget) {
      --node.ExtraChecks;
      child.FloorPlies = kExtraFloorPlies;
    }
    ++QuietLineDepth;
  }
  MakeMoveOf<Us>(from, to);
  const int score = Search<Opposite(Us)>(child);
  if (kind != kOrdinaryMove)
    --QuietLineDepth;
  RestoreState(node.Ply);
  return score;
}

// Takes a child's score in; true when the node is cut.
template <Side Us> bool Improve(Node &node, int score) {
  if constexpr (Us == kWhite) {
    node.Best = std::max(node.Best, score);
    node.Alpha = std::max(node.Alpha, node.Best);
  } else {
    node.Best = std::min(node.Best, score);
    node.Beta = std::min(node.Beta, node.Best);
  }
  return node.Alpha >= node.Beta;
}

// Tries the moves of a pass in scan order; true when the node is cut or the search stopped.
template <Side Us, Pass Tried> bool TryMoves(Node &node, const MoveSets &moves) {
  if (moves.Froms == 0)
    return false;
  SaveState(node.Ply);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    for (Bitboard targets = moves.Targets[static_cast<unsigned>(from)]; targets != 0;) {
      const int to = PopSquare(targets);
      const MoveKind kind = Tried == Pass::kOrdinary      ? kOrdinaryMove
                            : Tried == Pass::kQuietChecks ? kQuietCheck
                                                          : CaptureZoneKind(node, from, to);
      if (kind == kQuietCheck && !MayPlayQuietCheck(node))
        return false;
      if (kind == kBishopMove && node.BishopMoves++ >= kBishopMovesPerNode)
        continue;
      const int score = SearchMove<Us>(node, kind, from, to);
      if (SearchAborted || Improve<Us>(node, score))
        return true;
    }
  }
  return false;
}

// Threats from the side that has just moved: with one, the node must answer and has no stand-pat.
template <Side Us> int ForcedReplyOf(const Node &node, int remaining) {
  constexpr Side them = Opposite(Us);
  // One branch for all three, as none of them is foreseeable.
  if ((node.Forced != kNotForced) | (node.Ply >= kThreatLimit) | (remaining < 2))
    return node.Forced;
  if (node.QuietCredit >= 2 && QuietLineNodes < kQuietCheckNodeBudget && HasPawnForkPush<them>())
    return kPawnForkThreat;
  if (node.Ply >= 2 && node.QuietCredit == kEntryCredit && node.Ply == CurrentDepth &&
      HasFreshKnightFork<them>(node.Ply))
    return kForkOnBoard;
  return kNotForced;
}

// Quiet checks that a node may play after the budget is used up: the horizon node, and the own move two plies later.
int ExtraChecksOf(const Node &node) {
  if (node.QuietCredit == kEntryCredit && node.Ply == CurrentDepth)
    return kHorizonExtraChecks;
  const bool followsUp = node.QuietCredit == kEntryCredit - 1 && QuietLineDepth > 0 && node.Ply < kFollowUpLimit &&
                         node.Ply == CurrentDepth + 2 && QuietLineNodes >= kQuietCheckNodeBudget;
  return followsUp ? kFollowUpExtraChecks : 0;
}

template <Side Us> int QueenTargetOf(const Node &node, int remaining) {
  const bool wanted = node.QuietCredit >= 2 && node.Ply < kBishopMoveLimit && (remaining >= 2 || node.FloorPlies > 0) &&
                      QuietLineDepth > 0 && node.Ply == CurrentDepth + 2;
  return wanted ? FindQueenTarget<Us>() : kNoSquare;
}

// Counts the node and returns the depth that its kind of line still allows.
int CountNode(int remaining) {
  int &counter = QuietLineDepth > 0 ? QuietLineNodes : PlainLineNodes;
  const int cap = QuietLineDepth > 0 ? kQuietLineNodeCap : kPlainLineNodeCap;
  const bool capped = counter >= cap;
  ++counter;
  ++Nodes;
  return capped ? std::min(remaining, 1) : remaining;
}

// The two passes of a node that need not answer anything.
template <Side Us> int TryPasses(Node &node, MoveSets &moves, const KingDanger &danger) {
  moves.Froms = 0;
  bool finished = false;
  if (node.Depth > 0) {
    SetCaptureZoneMoves<Us>(moves, node, danger);
    finished = TryMoves<Us, Pass::kCaptureZone>(node, moves);
  } else {
    SetRecaptures<Us>(moves, node, danger);
    finished = TryMoves<Us, Pass::kOrdinary>(node, moves);
  }
  if (finished)
    return node.Best;
  if (node.QuietCredit <= 0 || node.Ply >= kCheckLimit || !MayPlayQuietCheck(node))
    return node.Best;
  moves.Froms = 0;
  SetQuietChecks<Us>(moves, node, danger);
  TryMoves<Us, Pass::kQuietChecks>(node, moves);
  return node.Best;
}

template <Side Us> int Search(Node &node) {
  if (PollStop() || IsRepetitionDraw(Us, node.Ply))
    return 0;
  const int remaining = std::min(kLastPly - node.Ply, node.Depth);
  const KingDanger danger = FindKingDanger<Us>();
  const bool inCheck = danger.Checkers != 0;
  node.ExtraChecks = 0;
  node.BishopMoves = 0;
  node.QueenTarget = kNoSquare;
  if (!inCheck) {
    node.Forced = ForcedReplyOf<Us>(node, remaining);
    if (node.Forced == kNotForced) {
      node.ExtraChecks = ExtraChecksOf(node);
      node.QueenTarget = QueenTargetOf<Us>(node, remaining);
    }
  }
  MoveSets moves;
  if (inCheck) {
    SetLegalMoves<Us>(moves, danger);
    if (moves.Froms == 0)
      return MatedScore(Us, node.Ply);
  } else if (!HasLegalMoveOf<Us>(danger)) {
    return 0;
  }
  node.Depth = CountNode(remaining);
  if (Position.HalfmoveClock >= kFiftyMoveLimit || IsInsufficientMaterial())
    return 0;

  if (node.Ply >= kLastPly)
    return EvaluateWithin(node.Range);
  node.Depth = std::max(node.Depth, node.FloorPlies > 0 || inCheck ? 1 : node.Depth);
  node.Best = Us == kWhite ? -kInfinity : kInfinity;
  if (!inCheck && node.Forced == kNotForced)
    return Improve<Us>(node, EvaluateWithin(node.Range)) ? node.Best : TryPasses<Us>(node, moves, danger);
  if (!inCheck)
    SetLegalMoves<Us>(moves, danger);
  TryMoves<Us, Pass::kOrdinary>(node, moves);
  return node.Best;
}

} // namespace

void ResetQuiescenceCounters() { QuietLineDepth = QuietLineNodes = PlainLineNodes = 0; }

template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range) {
  ResetQuiescenceCounters();
  Node node;
  node.Depth = kEntryDepth;
  node.Ply = ply;
  node.Alpha = alpha;
  node.Beta = beta;
  node.Range = range;
  node.QuietCredit = kEntryCredit;
  node.Forced = kNotForced;
  node.FloorPlies = 0;
  return Search<Us>(node);
}

template int EnterQuiescence<kWhite>(int ply, int alpha, int beta, ScoreRange range);
template int EnterQuiescence<kBlack>(int ply, int alpha, int beta, ScoreRange range);

} // namespace zorvane

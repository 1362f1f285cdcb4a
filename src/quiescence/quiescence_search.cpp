#include "quiescence/quiescence_search.h"

#include <algorithm>
#include <cassert>

#include "board/draw_rules.h"
#include "board/plies.h"
#include "evaluation/evaluate.h"
#include "quiescence/tactical_moves.h"
#include "quiescence/threats.h"
#include "tree/node_count.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kEntryDepth = 4;  // remaining depth at entry from a level
constexpr int kEntryCredit = 3; // quiet tactical moves that a line may contain

// Each rule applies at plies below its limit.
constexpr int kBishopMoveLimit = 7;
constexpr int kThreatLimit = 8;
constexpr int kForkPushLimit = 9;
constexpr int kFollowUpLimit = 9; // the extra quiet check two plies below the horizon
constexpr int kCheckLimit = 10;

constexpr int kFirstForkPly = 2;     // no search for a fresh knight fork at ply 1
constexpr int kThreatDepth = 2;      // threats count with at least this depth left
constexpr int kTacticsCredit = 2;    // fork threats and bishop moves need this much credit left
constexpr int kFollowUpDistance = 2; // plies from the horizon to the same side's next node

constexpr int kQuietCheckNodeBudget = 32; // after so many nodes on quiet lines, no new quiet check is played,
constexpr int kHorizonExtraChecks = 2;    // except these at the horizon node
constexpr int kFollowUpExtraChecks = 1;   // and this one at the same side's next node

constexpr int kQuietLineNodeCap = 64; // after so many nodes on quiet lines, depth is cut to kCappedDepth
constexpr int kPlainLineNodeCap = 64; // the same for nodes on plain lines
constexpr int kCappedDepth = 1;

constexpr int kExtraFloorPlies = 2; // FloorPlies of the line after a bishop move or extra check
constexpr int kBishopMovesPerNode = 2;

// Why a node may not stand pat although it is not in check.
enum ForcedReply {
  kNotForced,
  kForkOnBoard,   // after a fork push, a bishop move or a fresh enemy knight fork
  kPawnForkThreat // an enemy pawn threatens to fork; replying costs the line one credit
};

// What EnterQuiescence sets for the tree of one entry.
int Horizon;        // the ply of the entry
int QuietLineDepth; // quiet tactical moves on the current line
int QuietLineNodes; // nodes visited on quiet lines, after such a move
int PlainLineNodes; // nodes visited on plain lines, the others

// The arguments of a node, followed by what its stages share.
struct QuiescenceNode {
  int Depth; // remaining capture depth; may be negative
  int Ply;
  int Alpha;
  int Beta;
  int QuietCredit; // quiet tactical moves that the line may still contain
  ForcedReply Forced;
  ScoreRange Range; // the scores that callers can tell apart
  int FloorPlies;   // plies, this one included, with a depth of at least 1; 0 for none

  int Best;
  int ExtraChecks;  // quiet checks that may still be played over the budget
  int BishopMoves;  // bishop manoeuvres tried
  int BishopTarget; // their target, kNoSquare for none
};

// The first node of a quiescence tree.
bool IsHorizon(const QuiescenceNode &node) { return node.Ply == Horizon; }

bool MayPlayQuietCheck(const QuiescenceNode &node) {
  return QuietLineNodes < kQuietCheckNodeBudget || node.ExtraChecks > 0;
}

enum MoveKind { kOrdinaryMove, kQuietCheck, kForkPush, kBishopMove };

// The stages of a node: one ordinary stage if it must reply; else captures (or recaptures, which are ordinary too),
// then quiet checks.
enum class Stage { kOrdinary, kCaptureZone, kQuietChecks };

// The kind of a move tried in the capture zone.
MoveKind CaptureZoneKind(const QuiescenceNode &node, int from, int to) {
  if (PieceOn(to) != kNoPiece)
    return kOrdinaryMove;
  const PieceType type = TypeOf(PieceOn(from));
  if (type == kBishop && node.BishopTarget != kNoSquare)
    return kBishopMove;
  const bool isPush = type == kPawn && FileOf(from) == FileOf(to);
  return isPush && !Contains(kPromotionRows, to) ? kForkPush : kOrdinaryMove;
}

template <Side Us> int QuiescenceSearch(QuiescenceNode &node);

// A child's score has no effect if the best so far is as good for the mover, nor if the node's own callers cannot tell
// it from others: unlike at a level, there is no best line that it could change.
template <Side Us> ScoreRange ChildRange(const QuiescenceNode &node) {
  if constexpr (Us == kWhite)
    return {std::max(node.Range.Floor, node.Best), node.Range.Ceiling};
  else
    return {node.Range.Floor, std::min(node.Range.Ceiling, node.Best)};
}

// Makes a move, searches the child with the depth, credit and floor that follow from the kind of move, and takes the
// move back. Returns the child's score. Always inlined: as a call it would cost a search a percent.
template <Side Us> [[gnu::always_inline]] inline int SearchMove(QuiescenceNode &node, MoveKind kind, int from, int to) {
  const int decayed = node.FloorPlies > 1 ? node.FloorPlies - 1 : 0;
  QuiescenceNode child;
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
  MakeMove<Us>(from, to);
  const int score = QuiescenceSearch<Opposite(Us)>(child);
  if (kind != kOrdinaryMove)
    --QuietLineDepth;
  RestoreState(node.Ply);
  return score;
}

// Updates the node with the score of a child or of standing pat; true if the node is cut.
template <Side Us> bool Improve(QuiescenceNode &node, int score) {
  if constexpr (Us == kWhite) {
    node.Best = std::max(node.Best, score);
    node.Alpha = std::max(node.Alpha, node.Best);
  } else {
    node.Best = std::min(node.Best, score);
    node.Beta = std::min(node.Beta, node.Best);
  }
  return node.Alpha >= node.Beta;
}

// Tries the moves of a stage in scan order; true if the node is cut or the search stopped.
template <Side Us, Stage Tried> bool TryMoves(QuiescenceNode &node, const MoveSets &moves) {
  if (moves.Froms == 0)
    return false;
  SaveState(node.Ply);
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    for (Bitboard targets = moves.Targets[from]; targets != 0;) {
      const int to = PopLsb(targets);
      const MoveKind kind = Tried == Stage::kOrdinary      ? kOrdinaryMove
                            : Tried == Stage::kQuietChecks ? kQuietCheck
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

// Threats by the side that has just moved: with one, the node must reply and may not stand pat.
template <Side Us> ForcedReply FindForcedReply(const QuiescenceNode &node, int remaining) {
  constexpr Side them = Opposite(Us);
  // One branch for all three, since none of them can be predicted.
  if ((node.Forced != kNotForced) | (node.Ply >= kThreatLimit) | (remaining < kThreatDepth))
    return node.Forced;
  if (node.QuietCredit >= kTacticsCredit && QuietLineNodes < kQuietCheckNodeBudget && HasPawnForkPush<them>())
    return kPawnForkThreat;
  if (node.Ply >= kFirstForkPly && IsHorizon(node) && HasFreshKnightFork(them, node.Ply))
    return kForkOnBoard;
  return kNotForced;
}

// The quiet checks that a node may play over the budget: at the horizon, and at the same side's next node after a quiet
// move.
int AllowExtraChecks(const QuiescenceNode &node) {
  if (IsHorizon(node))
    return kHorizonExtraChecks;
  const bool followsUp = node.QuietCredit == kEntryCredit - 1 && QuietLineDepth > 0 && node.Ply < kFollowUpLimit &&
                         node.Ply == Horizon + kFollowUpDistance && QuietLineNodes >= kQuietCheckNodeBudget;
  return followsUp ? kFollowUpExtraChecks : 0;
}

// The target of bishop manoeuvres at this node, kNoSquare for none.
template <Side Us> int ChooseBishopTarget(const QuiescenceNode &node, int remaining) {
  const bool wanted = node.QuietCredit >= kTacticsCredit && node.Ply < kBishopMoveLimit &&
                      (remaining >= kThreatDepth || node.FloorPlies > 0) && QuietLineDepth > 0 &&
                      node.Ply == Horizon + kFollowUpDistance;
  return wanted ? FindQueenTarget(Us) : kNoSquare;
}

// Counts the node, and returns its depth, cut to kCappedDepth if the cap of its kind of line is reached.
int CountTowardsCaps(int remaining) {
  int &counter = QuietLineDepth > 0 ? QuietLineNodes : PlainLineNodes;
  const int cap = QuietLineDepth > 0 ? kQuietLineNodeCap : kPlainLineNodeCap;
  const bool capped = counter >= cap;
  ++counter;
  CountNode();
  return capped ? std::min(remaining, kCappedDepth) : remaining;
}

// The evaluation, as exact as the node's callers need it.
int StaticScore(const QuiescenceNode &node) {
  DisplaceOtherPosition();
  return Evaluate(node.Range);
}

// The first stage of a node that need not reply: the capture zone while there is depth left, else the recapture zone.
// True if the node is cut or the search stopped.
template <Side Us> bool TryCaptures(QuiescenceNode &node, MoveSets &moves, const CheckInfo &info) {
  if (node.Depth > 0) {
    GenerateCaptureZone<Us>(moves, info, node.QuietCredit > 0 && node.Ply < kForkPushLimit);
    if (node.BishopTarget != kNoSquare)
      AddBishopManoeuvres<Us>(moves, info, node.BishopTarget);
    return TryMoves<Us, Stage::kCaptureZone>(node, moves);
  }
  // A capture on a square where an own piece was before the enemy's move is a recapture.
  const Bitboard ownBefore = UndoStack[node.Ply - 1].BySide[Us];
  GenerateRecaptures<Us>(moves, info, ownBefore, node.Ply < kCheckLimit);
  return TryMoves<Us, Stage::kOrdinary>(node, moves);
}

// The second stage of such a node.
template <Side Us> void TryQuietChecks(QuiescenceNode &node, MoveSets &moves, const CheckInfo &info) {
  if (node.QuietCredit <= 0 || node.Ply >= kCheckLimit || !MayPlayQuietCheck(node))
    return;
  GenerateQuietChecks<Us>(moves, info, node.Depth > 0);
  TryMoves<Us, Stage::kQuietChecks>(node, moves);
}

// Finds threats that must be answered, or else what the node is allowed. Runs before the node is counted, so it sees
// the counters as earlier nodes left them.
template <Side Us> void PrepareTactics(QuiescenceNode &node, int remaining, bool inCheck) {
  node.ExtraChecks = 0;
  node.BishopMoves = 0;
  node.BishopTarget = kNoSquare;
  if (inCheck)
    return;
  node.Forced = FindForcedReply<Us>(node, remaining);
  if (node.Forced != kNotForced)
    return;
  node.ExtraChecks = AllowExtraChecks(node);
  node.BishopTarget = ChooseBishopTarget<Us>(node, remaining);
}

template <Side Us> int QuiescenceSearch(QuiescenceNode &node) {
  assert(node.Ply >= 1 && node.Ply <= kLastPly && node.Alpha < node.Beta && PositionIsOk());

  // 1. Stops and repetitions.
  if (PollStop() || IsRepetitionDraw(Us, node.Ply))
    return 0;

  // 2. Checks, threats, allowances.
  const int remaining = std::min(kLastPly - node.Ply, node.Depth);
  const CheckInfo info = FindCheckInfo<Us>();
  const bool inCheck = info.Checkers != 0;
  PrepareTactics<Us>(node, remaining, inCheck);

  // 3. Mate and stalemate take precedence over the remaining draws, and such nodes are not counted.
  MoveSets moves;
  if (inCheck) {
    GenerateLegalMoves<Us>(moves, info);
    if (moves.Froms == 0)
      return MatedScore(Us, node.Ply);
  } else if (!HasLegalMove<Us>(info)) {
    return 0;
  }

  // 4. Count the node; the other draws.
  node.Depth = CountTowardsCaps(remaining);
  if (IsMaterialOrClockDraw())
    return 0;

  // 5. The hard end of every line, in check or not. Above it, a check or a floor raises depth to 1.
  if (node.Ply >= kLastPly)
    return StaticScore(node);
  node.Depth = std::max(node.Depth, node.FloorPlies > 0 || inCheck ? 1 : node.Depth);
  node.Best = Us == kWhite ? -kInfinity : kInfinity;

  // 6. A node that must reply tries all legal moves and does not stand pat.
  if (inCheck || node.Forced != kNotForced) {
    if (!inCheck)
      GenerateLegalMoves<Us>(moves, info);
    TryMoves<Us, Stage::kOrdinary>(node, moves);
    return node.Best;
  }

  // 7. Any other node stands pat, then tries captures, then quiet checks.
  const bool cut = Improve<Us>(node, StaticScore(node));
  if (!cut && !TryCaptures<Us>(node, moves, info))
    TryQuietChecks<Us>(node, moves, info);
  return node.Best;
}

} // namespace

template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range) {
  Horizon = ply;
  QuietLineDepth = QuietLineNodes = PlainLineNodes = 0;
  QuiescenceNode node;
  node.Depth = kEntryDepth;
  node.Ply = ply;
  node.Alpha = alpha;
  node.Beta = beta;
  node.Range = range;
  node.QuietCredit = kEntryCredit;
  node.Forced = kNotForced;
  node.FloorPlies = 0;
  return QuiescenceSearch<Us>(node);
}

template int EnterQuiescence<kWhite>(int ply, int alpha, int beta, ScoreRange range);
template int EnterQuiescence<kBlack>(int ply, int alpha, int beta, ScoreRange range);

} // namespace zorvane

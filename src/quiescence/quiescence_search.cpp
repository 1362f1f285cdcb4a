#include "quiescence/quiescence_search.h"

#include <algorithm>

#include "board/draw_rules.h"
#include "board/plies.h"
#include "evaluation/evaluate.h"
#include "quiescence/predicates.h"
#include "quiescence/tactical_moves.h"
#include "search/search_state.h"
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

constexpr int kQuietCheckNodeBudget = 32; // nodes behind quiet moves before new quiet checks end
constexpr int kQuietLineNodeCap = 64;     // nodes behind quiet moves before depth is cut to 1
constexpr int kPlainLineNodeCap = 64;     // the same on plain lines
constexpr int kHorizonExtraChecks = 2;
constexpr int kFollowUpExtraChecks = 1;
constexpr int kExtraFloorPlies = 2;
constexpr int kBishopMovesPerNode = 2;

// Why a node has no stand-pat although it is not in check.
enum ForcedReply {
  kNotForced,
  kForkOnBoard,   // the parent's fork or bishop move, or a fresh enemy knight fork
  kPawnForkThreat // also costs the children a quiet move
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
  int QuietCredit; // quiet tactical moves that the line may still hold
  ForcedReply Forced;
  ScoreRange Range; // what the callers can tell apart of the node's score
  int FloorPlies;   // plies for which the depth does not fall below 1

  int Best;
  int ExtraChecks; // quiet checks allowed beyond the budget
  int BishopMoves; // bishop manoeuvres that had their turn
  int QueenTarget; // what they aim at, kNoSquare for none
};

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

// A child's score changes nothing where the best one so far is as good for the mover, nor where the node's own callers
// cannot tell it from others: there is no best line here that it could change.
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

// Takes in the score of a child, or of standing pat; true when the node is cut.
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
    const int from = PopLsb(froms);
    for (Bitboard targets = moves.Targets[from]; targets != 0;) {
      const int to = PopLsb(targets);
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
template <Side Us> ForcedReply FindForcedReply(const Node &node, int remaining) {
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
int AllowExtraChecks(const Node &node) {
  if (node.QuietCredit == kEntryCredit && node.Ply == CurrentDepth)
    return kHorizonExtraChecks;
  const bool followsUp = node.QuietCredit == kEntryCredit - 1 && QuietLineDepth > 0 && node.Ply < kFollowUpLimit &&
                         node.Ply == CurrentDepth + 2 && QuietLineNodes >= kQuietCheckNodeBudget;
  return followsUp ? kFollowUpExtraChecks : 0;
}

template <Side Us> int FindBishopTarget(const Node &node, int remaining) {
  const bool wanted = node.QuietCredit >= 2 && node.Ply < kBishopMoveLimit && (remaining >= 2 || node.FloorPlies > 0) &&
                      QuietLineDepth > 0 && node.Ply == CurrentDepth + 2;
  return wanted ? FindQueenTarget<Us>() : kNoSquare;
}

// Counts the node and returns the depth that the node caps leave to it.
int CountTowardsCaps(int remaining) {
  int &counter = QuietLineDepth > 0 ? QuietLineNodes : PlainLineNodes;
  const int cap = QuietLineDepth > 0 ? kQuietLineNodeCap : kPlainLineNodeCap;
  const bool capped = counter >= cap;
  ++counter;
  CountNode();
  return capped ? std::min(remaining, 1) : remaining;
}

// The evaluation, as exact as the node's callers can tell.
int StaticScore(const Node &node) {
  DisplaceOtherPosition();
  return Evaluate(node.Range);
}

// The first pass of a node that need not answer anything; true when the node is cut or the search stopped.
template <Side Us> bool TryCaptures(Node &node, MoveSets &moves, const CheckInfo &info) {
  if (node.Depth > 0) {
    GenerateCaptureZone<Us>(moves, info, node.QuietCredit > 0 && node.Ply < kForkPushLimit);
    if (node.QueenTarget != kNoSquare)
      AddBishopManoeuvres<Us>(moves, info, node.QueenTarget, node.Ply);
    return TryMoves<Us, Pass::kCaptureZone>(node, moves);
  }
  const Bitboard takenByThem = UndoStack[node.Ply - 1].BySide[Us];
  GenerateRecaptures<Us>(moves, info, takenByThem, node.Ply < kCheckLimit);
  return TryMoves<Us, Pass::kOrdinary>(node, moves);
}

// Its second pass.
template <Side Us> void TryQuietChecks(Node &node, MoveSets &moves, const CheckInfo &info) {
  if (node.QuietCredit <= 0 || node.Ply >= kCheckLimit || !MayPlayQuietCheck(node))
    return;
  GenerateQuietChecks<Us>(moves, info, node.Depth > 0, node.Ply);
  TryMoves<Us, Pass::kQuietChecks>(node, moves);
}

template <Side Us> int Search(Node &node) {
  if (PollStop() || IsRepetitionDraw(Us, node.Ply))
    return 0;
  const int remaining = std::min(kLastPly - node.Ply, node.Depth);
  const CheckInfo info = FindCheckInfo<Us>();
  const bool inCheck = info.Checkers != 0;
  node.ExtraChecks = 0;
  node.BishopMoves = 0;
  node.QueenTarget = kNoSquare;
  if (!inCheck) {
    node.Forced = FindForcedReply<Us>(node, remaining);
    if (node.Forced == kNotForced) {
      node.ExtraChecks = AllowExtraChecks(node);
      node.QueenTarget = FindBishopTarget<Us>(node, remaining);
    }
  }
  MoveSets moves;
  if (inCheck) {
    GenerateLegalMoves<Us>(moves, info);
    if (moves.Froms == 0)
      return MatedScore(Us, node.Ply);
  } else if (!HasLegalMoveOf<Us>(info)) {
    return 0;
  }
  node.Depth = CountTowardsCaps(remaining);
  if (IsMaterialOrClockDraw())
    return 0;

  if (node.Ply >= kLastPly)
    return StaticScore(node);
  node.Depth = std::max(node.Depth, node.FloorPlies > 0 || inCheck ? 1 : node.Depth);
  node.Best = Us == kWhite ? -kInfinity : kInfinity;
  if (inCheck || node.Forced != kNotForced) {
    if (!inCheck)
      GenerateLegalMoves<Us>(moves, info);
    TryMoves<Us, Pass::kOrdinary>(node, moves);
    return node.Best;
  }
  const bool cut = Improve<Us>(node, StaticScore(node));
  if (!cut && !TryCaptures<Us>(node, moves, info))
    TryQuietChecks<Us>(node, moves, info);
  return node.Best;
}

} // namespace

template <Side Us> int EnterQuiescence(int ply, int alpha, int beta, ScoreRange range) {
  QuietLineDepth = QuietLineNodes = PlainLineNodes = 0;
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

#include "search/root_search.h"

#include <algorithm>
#include <cstring>

#include "board/legal_moves.h"
#include "board/move_text.h"
#include "board/position_key.h"
#include "evaluation/evaluate.h"
#include "quiescence/move_lists.h"
#include "quiescence/quiescence_search.h"
#include "search/best_line.h"
#include "search/search_driver.h"
#include "search/search_levels.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

RootResultList RootResults;
RootResultList PreviousRootResults;
HintCollection HintList;
bool UseHints;
bool UseEndgameHints;

namespace {

constexpr int kQuietCheckOrder = -1000000;
constexpr int kSeenQuietOrder = -2000001; // on top of the last iteration's score
constexpr int kUnseenQuietOrder = -3000002;

constexpr int kRepeatPenalty = 60;
constexpr int kRepeatThreshold = 200;

constexpr int kThirdIteration = 3;
constexpr int kTieSearches = 2;
constexpr int kOpeningHintPlies = 16;
constexpr int kEndgameHintLeastMen = 3;
constexpr int kEndgameHintMostMen = 8;

enum class HintMode { kNone, kOpening, kEndgame };

enum Reason : int { kByScore = 0, kByOpeningHint = 1, kByBetterOpeningHint = 2, kByEndgameHint = 3 };

struct RootMove {
  PackedMove Move;
  int Order;
};

struct {
  int Count;
  std::array<RootMove, kRootMoveLimit> Moves;
} RootMoveList;

struct HintValues {
  double Bonus;
  double Penalty;
};

// The locals of a pass.
struct Pass {
  HintMode Hints;
  int StaticScore; // from RootSide's view
  int StartScore;  // worse than any score
  int Best;
  HintValues BestHint;
  PackedMove BestMove;
  Piece BestMover;
  int TieSearches;
  bool Searched;
};

int SearchChild(Side side, int alpha, int beta) {
  return CurrentDepth == kThirdIteration ? ThirdIteration(side, alpha, beta) : SearchLevels(side, alpha, beta);
}

bool IsBetter(int score, int best) { return RootSide == kWhite ? score > best : score < best; }

// Calls visit with every legal root move in scan order.
template <Side Us, typename Visit> void VisitLegalMoves(Visit visit) {
  MoveSets moves;
  SetLegalMoves<Us>(moves, FindKingDanger<Us>());
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    for (Bitboard targets = moves.Targets[static_cast<unsigned>(from)]; targets != 0;)
      visit(from, PopSquare(targets));
  }
}

int RootOrderScore(int from, int to) {
  if (IsCaptureMove(from, to))
    return MoveOrderScore(from, to);
  if (MoveGivesCheck(0, from, to))
    return kQuietCheckOrder;
  const PackedMove move = PackMove(from, to);
  for (int i = 0; i < PreviousRootResults.Count; ++i) {
    const RootResult &seen = PreviousRootResults.Moves[static_cast<unsigned>(i)];
    if (seen.Move == move)
      return std::clamp(seen.Score, -kInfinity, kInfinity) + kSeenQuietOrder;
  }
  return kUnseenQuietOrder;
}

// Below all moves with an equal or greater score, so that of equals the first stays ahead.
void InsertRootMove(int from, int to) {
  if (RootMoveList.Count == kRootMoveLimit)
    return;
  const RootMove move{PackMove(from, to), RootOrderScore(from, to)};
  int place = RootMoveList.Count++;
  for (; place > 0 && RootMoveList.Moves[static_cast<unsigned>(place - 1)].Order < move.Order; --place)
    RootMoveList.Moves[static_cast<unsigned>(place)] = RootMoveList.Moves[static_cast<unsigned>(place - 1)];
  RootMoveList.Moves[static_cast<unsigned>(place)] = move;
}

void BuildRootMoveList() {
  RootMoveList.Count = 0;
  if (RootSide == kWhite)
    VisitLegalMoves<kWhite>(InsertRootMove);
  else
    VisitLegalMoves<kBlack>(InsertRootMove);
}

HintMode ChooseHintMode() {
  if (!UseHints)
    return HintMode::kNone;
  const int men = CountSquares(Occupied());
  if (men >= kEndgameHintLeastMen && men <= kEndgameHintMostMen && UseEndgameHints)
    return HintMode::kEndgame;
  return GamePly < kOpeningHintPlies ? HintMode::kOpening : HintMode::kNone;
}

// The hint for a move, 0 and 0 when there is none. Endgame hints have no penalty.
HintValues FindHint(HintMode mode, Piece mover, int from, int to) {
  if (mode == HintMode::kNone)
    return {0, 0};
  BoundedString text;
  if (mode == HintMode::kOpening)
    MoveText(text, mover, from, to);
  else
    MoveIdTextForPiece(text, mover, from, to);
  for (int i = 0; i < HintList.Count; ++i) {
    const Hint &hint = HintList.Hints[static_cast<unsigned>(i)];
    if (std::strcmp(hint.Text.data(), text.Text.data()) == 0)
      return {hint.Bonus, mode == HintMode::kOpening ? hint.Penalty : 0};
  }
  return {0, 0};
}

// Draws a clearly good score towards equality when the move on the board repeats a position of the game.
int RepeatPenalty(const Pass &pass, int score) {
  if (Absolute(score) >= kMateThreshold || pass.StaticScore < kRepeatThreshold ||
      CountRepetitions(Opposite(RootSide), 1, 1) == 0)
    return score;
  if (RootSide == kWhite)
    return score >= kRepeatThreshold ? score - kRepeatPenalty : score;
  return score <= -kRepeatThreshold ? score + kRepeatPenalty : score;
}

// Makes the move, searches it, and takes it back.
int SearchRootMove(const Pass &pass, int from, int to, int alpha, int beta) {
  SaveState(0);
  MakeMove(from, to);
  const int score = RepeatPenalty(pass, SearchChild(Opposite(RootSide), alpha, beta));
  RestoreState(0);
  return score;
}

// Whether a move of the best score replaces the best by its hint: searched again, it must keep its score. reason is
// set when it does. Sets SearchAborted when it was stopped.
bool WinsTie(Pass &pass, const HintValues &hint, int from, int to, int &score, int &reason) {
  if (pass.Hints == HintMode::kNone || score != pass.Best || !(hint.Bonus > pass.BestHint.Bonus) ||
      pass.TieSearches >= kTieSearches)
    return false;
  score = SearchRootMove(pass, from, to, -kInfinity, kInfinity);
  if (ShouldStop())
    return false;
  ++pass.TieSearches;
  if (score != pass.Best)
    return false;
  const bool better = pass.BestHint.Bonus - pass.BestHint.Penalty < hint.Bonus - hint.Penalty;
  reason = pass.Hints == HintMode::kEndgame ? kByEndgameHint : better ? kByBetterOpeningHint : kByOpeningHint;
  return true;
}

void AppendResult(PackedMove move, int score) {
  if (RootResults.Count == kRootMoveLimit)
    return;
  RootResults.Moves[static_cast<unsigned>(RootResults.Count++)] = {move, RootSide == kWhite ? score : -score};
}

void MakeBest(Pass &pass, PackedMove move, int score, int reason, const HintValues &hint) {
  const int from = FromOf(move);
  const int to = ToOf(move);
  pass.Best = score;
  pass.BestHint = hint;
  pass.BestMove = move;
  pass.BestMover = PieceOn(from);
  Result.BestMoveReason = reason;
  PvStore(0, RootSide, from, to);
  if (CurrentDepth == 1) {
    FallbackBest.BestMove = move;
    FallbackBest.BestScore = score;
    FallbackBest.BestMoveReason = reason;
    MoveText(FallbackBest.BestMoveText, pass.BestMover, from, to);
    HaveFallbackBest = true;
  }
}

// Searches one root move, again with the full window when it improves, and records it. False when it was stopped.
bool TryRootMove(Pass &pass, PackedMove move) {
  const int from = FromOf(move);
  const int to = ToOf(move);
  ++Nodes;
  int score = RootSide == kWhite ? SearchRootMove(pass, from, to, pass.Best, kInfinity)
                                 : SearchRootMove(pass, from, to, -kInfinity, pass.Best);
  if (ShouldStop())
    return false;
  if (pass.Best != pass.StartScore && IsBetter(score, pass.Best)) {
    score = SearchRootMove(pass, from, to, -kInfinity, kInfinity);
    if (ShouldStop())
      return false;
  }
  const HintValues hint = FindHint(pass.Hints, PieceOn(from), from, to);
  int reason = kByScore;
  const bool best = IsBetter(score, pass.Best) || WinsTie(pass, hint, from, to, score, reason);
  if (SearchAborted)
    return false;
  AppendResult(move, score);
  if (best)
    MakeBest(pass, move, score, reason, hint);
  pass.Searched = true;
  return true;
}

// Tries the first move and then the list. False when the pass was stopped.
bool TryRootMoves(Pass &pass) {
  if (PreviousBestMove != kNoMove && IsLegalMoveOf(RootSide, PreviousBestMove) &&
      (ShouldStop() || !TryRootMove(pass, PreviousBestMove)))
    return false;
  for (int i = 0; i < RootMoveList.Count; ++i) {
    const PackedMove move = RootMoveList.Moves[static_cast<unsigned>(i)].Move;
    if (ShouldStop())
      return false;
    if (move != PreviousBestMove && !TryRootMove(pass, move))
      return false;
  }
  return true;
}

void PublishPass(const Pass &pass) {
  if (!pass.Searched)
    return;
  StoreTransposition(0);
  Result.BestScore = pass.Best;
  Result.BestMove = pass.BestMove;
  MoveText(Result.BestMoveText, pass.BestMover, FromOf(pass.BestMove), ToOf(pass.BestMove));
}

} // namespace

int CountLegalMoves(Side side) {
  return side == kWhite ? CountLegalMovesOf<kWhite>(FindKingDanger<kWhite>())
                        : CountLegalMovesOf<kBlack>(FindKingDanger<kBlack>());
}

void SearchRoot() {
  Result.BestMoveReason = kByScore;
  RootResults.Count = 0;
  PvClearFrom(0);
  if (ShouldStop())
    return;
  Result.BestMove = kNoMove;
  Nodes = 0;
  ResetQuiescenceCounters();
  Pass pass{};
  pass.StaticScore = RootSide == kWhite ? Evaluate() : -Evaluate();
  LegalMoveCount = CountLegalMoves(RootSide);
  pass.Hints = ChooseHintMode();
  const PackedMove remembered = ProbeTransposition(0, RootSide);
  if (PreviousBestMove == kNoMove)
    PreviousBestMove = remembered;
  BuildRootMoveList();
  if (ShouldStop())
    return;
  pass.StartScore = pass.Best = RootSide == kWhite ? -kInfinity : kInfinity;
  pass.BestHint = {-kInfinity, 0};
  pass.BestMove = kNoMove;
  if (TryRootMoves(pass))
    PublishPass(pass);
}

} // namespace zorvane

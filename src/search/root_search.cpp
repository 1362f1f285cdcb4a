#include "search/root_search.h"

#include "board/position_key.h"
#include "board/rules.h"
#include "evaluation/evaluate.h"
#include "search/best_line.h"
#include "search/root_moves.h"
#include "search/search_levels.h"
#include "tree/node_count.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kRepeatPenalty = 60;    // centipawns
constexpr int kRepeatThreshold = 200; // centipawns; repeating is penalised from this score on

constexpr int kTieSearches = 2; // second searches in a pass because of hints

RootList RootMoveList;

// The state of one pass.
struct RootPass {
  int Depth;
  RootHints Hints;
  int StaticScore; // from the root side's view
  RootChoice &Best;
  HintValues BestHint;
  int TieSearches;
};

bool IsBetter(int score, int best) { return RootSide() == kWhite ? score > best : score < best; }

// Moves a clearly good score towards equality if the move on the board repeats a position of the game.
int ApplyRepeatPenalty(const RootPass &pass, int score) {
  if (IsMateScore(score) || pass.StaticScore < kRepeatThreshold || CountRepetitions(Opposite(RootSide()), 1, 1) == 0)
    return score;
  if (RootSide() == kWhite)
    return score >= kRepeatThreshold ? score - kRepeatPenalty : score;
  return score <= -kRepeatThreshold ? score + kRepeatPenalty : score;
}

// Makes the move, searches it, and takes it back.
int SearchChild(const RootPass &pass, PackedMove move, int alpha, int beta) {
  SaveState(0);
  MakeMove(FromOf(move), ToOf(move));
  const int score = ApplyRepeatPenalty(pass, SearchLevels(Opposite(RootSide()), pass.Depth, alpha, beta));
  RestoreState(0);
  return score;
}

HintValues HintFor(const RootPass &pass, PackedMove move) {
  if (pass.Hints.Mode == HintMode::kNone)
    return {0, 0};
  return FindHint(*pass.Hints.List, pass.Hints.Mode, PieceOn(FromOf(move)), FromOf(move), ToOf(move));
}

// True if a move whose score equals the best may replace it because of its hint.
bool MayWinTie(const RootPass &pass, const HintValues &hint, int score) {
  return pass.Hints.Mode != HintMode::kNone && score == pass.Best.Score && hint.Bonus > pass.BestHint.Bonus &&
         pass.TieSearches < kTieSearches;
}

// The reason to report for a move that has won a tie.
MoveReason TieReason(const RootPass &pass, const HintValues &hint) {
  if (pass.Hints.Mode == HintMode::kEndgame)
    return MoveReason::kEndgameHint;
  return pass.BestHint.Bonus - pass.BestHint.Penalty < hint.Bonus - hint.Penalty ? MoveReason::kBetterOpeningHint
                                                                                 : MoveReason::kOpeningHint;
}

// Searches one root move and records it. A move that improves on the best is searched again with the full window, which
// also updates table, killers and history: the second search is part of the tree. False if the search was stopped.
bool TryRootMove(RootPass &pass, PackedMove move) {
  CountNode();
  int score = RootSide() == kWhite ? SearchChild(pass, move, pass.Best.Score, kInfinity)
                                   : SearchChild(pass, move, -kInfinity, pass.Best.Score);
  if (ShouldStop())
    return false;
  if (pass.Best.Move != kNoMove && IsBetter(score, pass.Best.Score)) {
    score = SearchChild(pass, move, -kInfinity, kInfinity);
    if (ShouldStop())
      return false;
  }
  const HintValues hint = HintFor(pass, move);
  bool isBest = IsBetter(score, pass.Best.Score);
  MoveReason reason = MoveReason::kScore;
  if (!isBest && MayWinTie(pass, hint, score)) {
    // The score may be a bound that only seems equal, so it must still be equal when searched with the full window.
    score = SearchChild(pass, move, -kInfinity, kInfinity);
    if (ShouldStop())
      return false;
    ++pass.TieSearches;
    isBest = score == pass.Best.Score;
    reason = TieReason(pass, hint);
  }
  AddRootResult(move, score);
  if (isBest) {
    pass.Best = {move, score, reason};
    pass.BestHint = hint;
    StoreLine(RootSide(), 0, FromOf(move), ToOf(move));
  }
  return true;
}

// Tries the first move and then the list. False if the pass was stopped.
bool TryRootMoves(RootPass &pass, PackedMove firstMove) {
  if (firstMove != kNoMove && (ShouldStop() || !TryRootMove(pass, firstMove)))
    return false;
  for (int i = 0; i < RootMoveList.Count; ++i) {
    const PackedMove move = RootMoveList.Moves[i].Move;
    if (ShouldStop())
      return false;
    if (move != firstMove && !TryRootMove(pass, move))
      return false;
  }
  return true;
}

} // namespace

bool SearchRoot(int depth, PackedMove firstMove, const RootHints &hints, RootChoice &best) {
  best = {kNoMove, RootSide() == kWhite ? -kInfinity : kInfinity, MoveReason::kScore};
  BeginRootResults();
  ClearLine(0);
  if (ShouldStop())
    return false;

  DisplaceOtherPosition();
  const int staticScore = RootSide() == kWhite ? Evaluate() : -Evaluate();
  const PackedMove remembered = ProbeTransposition(RootSide(), 0);
  BuildRootMoveList(RootMoveList);
  if (ShouldStop())
    return false;

  RootPass pass{depth, hints, staticScore, best, {}, 0};
  if (!TryRootMoves(pass, firstMove == kNoMove ? remembered : firstMove))
    return false;
  if (best.Move != kNoMove)
    StoreTransposition(0, best.Move);
  return true;
}

} // namespace zorvane

#include "search/root_search.h"

#include "board/position_key.h"
#include "board/rules.h"
#include "evaluation/evaluate.h"
#include "search/best_line.h"
#include "search/root_moves.h"
#include "search/search_levels.h"
#include "search/search_state.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kRepeatPenalty = 60;    // centipawns
constexpr int kRepeatThreshold = 200; // centipawns; from this score on repeating is penalised

constexpr int kTieSearches = 2; // second searches for hints in a pass

RootList RootMoveList;

// The state of one pass.
struct RootPass {
  HintMode Hints;
  int StaticScore; // from the root side's view
  RootChoice &Best;
  HintValues BestHint;
  int TieSearches;
};

bool IsBetter(int score, int best) { return RootSide() == kWhite ? score > best : score < best; }

// Draws a clearly good score towards equality when the move on the board repeats a position of the game.
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
  const int score = ApplyRepeatPenalty(pass, SearchLevels(Opposite(RootSide()), alpha, beta));
  RestoreState(0);
  return score;
}

// Whether a move with the best score replaces the best by its hint. The score may be a bound that only looks equal, so
// the move is searched again, with the full window, and must keep it; score becomes that of the second search in any
// case. Sets reason when the tie is won. False also when it was stopped.
bool WinsTie(RootPass &pass, const HintValues &hint, PackedMove move, int &score, MoveReason &reason) {
  if (pass.Hints == HintMode::kNone || score != pass.Best.Score || !(hint.Bonus > pass.BestHint.Bonus) ||
      pass.TieSearches >= kTieSearches)
    return false;
  score = SearchChild(pass, move, -kInfinity, kInfinity);
  if (ShouldStop())
    return false;
  ++pass.TieSearches;
  if (score != pass.Best.Score)
    return false;
  const bool better = pass.BestHint.Bonus - pass.BestHint.Penalty < hint.Bonus - hint.Penalty;
  reason = pass.Hints == HintMode::kEndgame ? MoveReason::kEndgameHint
           : better                         ? MoveReason::kBetterOpeningHint
                                            : MoveReason::kOpeningHint;
  return true;
}

// Searches one root move and records it. One that improves on the best is searched again with the full window, which
// also fills table, killers and history: the second search is part of the tree. False when it was stopped.
bool TryRootMove(RootPass &pass, PackedMove move) {
  const int from = FromOf(move);
  const int to = ToOf(move);
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
  const HintValues hint = FindHint(pass.Hints, PieceOn(from), from, to);
  MoveReason reason = MoveReason::kScore;
  const bool isBest = IsBetter(score, pass.Best.Score) || WinsTie(pass, hint, move, score, reason);
  if (SearchAborted)
    return false;
  AddRootResult(move, score);
  if (isBest) {
    pass.Best = {move, score, reason};
    pass.BestHint = hint;
    PvStore(0, RootSide(), from, to);
  }
  return true;
}

// Tries the first move and then the list. False when the pass was stopped.
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

bool SearchRoot(PackedMove firstMove, HintMode hints, RootChoice &best) {
  best = {kNoMove, RootSide() == kWhite ? -kInfinity : kInfinity, MoveReason::kScore};
  BeginRootResults();
  PvClearFrom(0);
  if (ShouldStop())
    return false;

  DisplaceOtherPosition();
  const int staticScore = RootSide() == kWhite ? Evaluate() : -Evaluate();
  const PackedMove remembered = ProbeTransposition(0, RootSide());
  BuildRootMoveList(RootMoveList);
  if (ShouldStop())
    return false;

  RootPass pass{hints, staticScore, best, {}, 0};
  if (!TryRootMoves(pass, firstMove == kNoMove ? remembered : firstMove))
    return false;
  if (best.Move != kNoMove)
    StoreTransposition(0, best.Move);
  return true;
}

} // namespace zorvane

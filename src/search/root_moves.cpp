#include "search/root_moves.h"

#include <algorithm>

#include "board/legal_moves.h"
#include "evaluation/score.h"
#include "search/move_lists.h"
#include "tree/node_count.h"

namespace zorvane {

namespace {

// Below quiet checks come quiet moves that the last pass scored, with room for the whole range of scores, and then the
// others.
constexpr int kSeenQuietOrder = kQuietCheckScore - kInfinity - 1; // plus the last pass's score
constexpr int kUnseenQuietOrder = kSeenQuietOrder - kInfinity - 1;

// Scores from the root side's view, in the order of search.
RootList RootResults;
RootList PreviousRootResults; // of the last finished pass

int RootOrderScore(int from, int to) {
  if (IsCaptureMove(from, to))
    return MoveOrderScore(from, to);
  if (MoveGivesCheck(from, to))
    return kQuietCheckScore;
  const PackedMove move = PackMove(from, to);
  for (int i = 0; i < PreviousRootResults.Count; ++i) {
    const ScoredMove &seen = PreviousRootResults.Moves[i];
    if (seen.Move == move)
      return std::clamp(seen.Score, -kInfinity, kInfinity) + kSeenQuietOrder;
  }
  return kUnseenQuietOrder;
}

} // namespace

void ClearRootResults() { RootResults.Count = PreviousRootResults.Count = 0; }

void BeginRootResults() { RootResults.Count = 0; }

void AddRootResult(PackedMove move, int score) { Append(RootResults, {RootSide() == kWhite ? score : -score, move}); }

void KeepRootResults() { PreviousRootResults = RootResults; }

void BuildRootMoveList(RootList &list) {
  list.Count = 0;
  MoveSets moves;
  GenerateLegalMoves(moves, RootSide());
  for (Bitboard froms = moves.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    for (Bitboard targets = moves.Targets[from]; targets != 0;) {
      const int to = PopLsb(targets);
      InsertSorted(list, {RootOrderScore(from, to), PackMove(from, to)});
    }
  }
}

} // namespace zorvane

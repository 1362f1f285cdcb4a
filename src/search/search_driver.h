// Iterative deepening: limits and options go in, a result comes out.
#pragma once

#include "board/bounded_string.h"
#include "board/plies.h"
#include "search/root_search.h"

namespace zorvane {

struct SearchLimits {
  int MaxDepth = kDepthLimit;     // iterations, 1 to kDepthLimit
  double TimeLimitSeconds = 10.0; // above 0, with a fraction
};

// A request sets these; they steer this search alone.
struct SearchOptions {
  bool UseTranspositionMoves = true; // moves are read from the table and stored
  bool PawnCacheEnabled = true;      // pawn structures are remembered; values are the same without
  bool UseHints = false;             // hints decide between root moves of equal score
  bool UseEndgameHints = true;       // with few pieces on the board, hints are endgame hints
};

// What a search leaves; beside it stands the best line, FinalPv. Nobody may read either during a search.
struct SearchResult {
  PackedMove BestMove;        // kNoMove when the side has no legal move
  BoundedString BestMoveText; // "---" for no move
  int BestScore; // centipawns from White's view; a mate is kMateValue less its ply, negative for a mated White
  MoveReason BestMoveReason;
  int CompletedDepth; // the last finished iteration, 0 for none
  std::int64_t Nodes; // of all iterations, one that was cut off included
  double ElapsedMs;
  int LegalMoveCount; // of the position searched, each promotion counted once
};

// Searches the position for SideToMove. Blocks until the search ends; prints nothing. Call ClearStopRequest before: an
// earlier request would end it at once.
void RunSearch(const SearchLimits &limits, const SearchOptions &options = {});

// Of the last RunSearch.
const SearchResult &Result();

} // namespace zorvane

// Iterative deepening, and what a search leaves for its caller.
#pragma once

#include "board/bounded_string.h"
#include "board/types.h"

namespace zorvane {

constexpr int kDepthLimit = 8; // the root and seven levels
constexpr double kDefaultTimeLimitSeconds = 10.0;

// The limits of the next search, set by its caller.
extern int MaxDepth;            // iterations, 1 to kDepthLimit
extern double TimeLimitSeconds; // may be fractional

extern int CurrentDepth; // the running iteration; written by RunSearch alone

// Nodes of the running iteration; of the whole search once it is over. Raised by root, levels and quiescence.
extern std::int64_t Nodes;

// The first move of the next root pass, kNoMove for none.
extern PackedMove PreviousBestMove;

// What the caller reads after RunSearch; nobody may read it during a search.
struct SearchResult {
  PackedMove BestMove;        // kNoMove when the side has no legal move
  BoundedString BestMoveText; // "---" for no move
  int BestScore;              // centipawns from White's view; a mate is kMateValue less its ply
  int BestMoveReason;         // 0 by score, 1 or 2 by an opening hint, 3 by an endgame hint
};

extern SearchResult Result;
extern int CompletedDepth; // the last finished iteration, 0 for none
extern double ElapsedMs;
extern int LegalMoveCount;

// The best move so far of iteration 1, for the case that it is cut off. Written by SearchRoot.
extern SearchResult FallbackBest;
extern bool HaveFallbackBest;

// Gives the fields above their values of program start.
void ResetSearchState();

// Searches the position for RootSide within the limits and leaves the result in the fields above. Blocks until the
// search ends; the caller clears StopFlag before. Prints nothing.
void RunSearch();

// Writes the info and bestmove lines of the last search to standard output.
void PrintSearchResult();

} // namespace zorvane

// Iterative deepening: limits and options in, a result out.
#pragma once

#include <cstdint>

#include "board/plies.h"
#include "search/best_line.h"
#include "search/root_search.h"

namespace zorvane {

// The shortest and longest time limit that a user or host may set, in milliseconds.
constexpr double kShortestTimeMs = 1;
constexpr double kLongestTimeMs = 300000;

struct SearchLimits {
  int MaxDepth = kDepthLimit; // iterations, 1 to kDepthLimit
  double TimeMs = 10000;      // above 0, with a fraction
};

// They apply to one search. Callers keep them and pass them in each time; the search does not remember them.
struct SearchOptions {
  bool UseTranspositionMoves = true; // moves are read from the table and stored in it
  bool PawnCacheEnabled = true;      // pawn structures are cached; scores are the same without
  bool UseEndgameHints = true;       // with few pieces on the board, hints are endgame hints
  const HintList *Hints = nullptr;   // decide between root moves of equal score; null for none
};

// What a search found.
struct SearchResult {
  Side RootSide;       // the side to move
  PackedMove BestMove; // kNoMove if that side has no legal move
  Piece BestMover;     // the piece that makes it, kNoPiece without a move
  int BestScore;       // centipawns from White's view; a mate is kMateValue less its ply, negative for a mated White
  MoveReason BestMoveReason;
  int CompletedDepth; // the last finished iteration, 0 for none
  std::int64_t Nodes; // of all iterations, one that was cut off included
  double ElapsedMs;
  int LegalMoveCount; // of the position searched, each promotion counted once
  BestLine Line;      // of the last finished iteration
};

// Searches the position for SideToMove. Blocks until the search ends; prints nothing. Call ClearStopRequest first, or
// an earlier request ends the search at once.
SearchResult RunSearch(const SearchLimits &limits, const SearchOptions &options);

} // namespace zorvane

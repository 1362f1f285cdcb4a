// The plain counterpart of the last stage of a search line, down to the node count.
#pragma once

#include "plain_rules.h"

namespace plain {

// What a search holds besides the position.
struct SearchLine {
  std::vector<std::string> GameHistory; // position keys of the game
  Row<std::string, 13> PathKeys;        // of the running line by ply, written by CountRepetitions
  Row<BoardState, 13> Undo;             // by ply, before the move of that ply
  int CurrentDepth = 1;
  long long Nodes = 0;
};

extern SearchLine Line;

int CountRepetitions(int side, int ply);

// Searches the position with side to move from ply on, Line.Undo and Line.PathKeys being filled up to there. Returns
// the score from White's view and adds the nodes to Line.Nodes. No table, no clock.
int EnterQuiescence(int side, int ply, int alpha, int beta);

} // namespace plain

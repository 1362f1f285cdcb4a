// What the C++ tests share: tables of cases, and random positions of all kinds for the comparisons with the plain
// counterparts, the same in every run.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "board/position.h"
#include "plain/plain_rules.h"

// Starts the engine afresh, and the random numbers too.
class EngineTest : public testing::Test {
protected:
  void SetUp() override;
};

// A random number below limit.
int RandomBelow(int limit);

// The rows of a table in tests/data, as columns; lines that begin with "#" say what they mean.
std::vector<std::vector<std::string>> ReadTable(const std::string &name);

// The position of the engine, SideToMove included.
std::string CurrentFen();

// Calls visit on count positions and a few more: all of positions.tsv, then random walks from its games and, every
// second time, from odd positions. A walk plays for SideToMove by MakeMove, whatever visit leaves on the board. Ends at
// the first failure, having told the position.
void ForRandomPositions(int count, const std::function<void()> &visit);

// The engine's legal moves in its order.
std::vector<zorvane::PackedMove> LegalMoveList(zorvane::Side side);

// A legal move of SideToMove, kNoMove when there is none.
zorvane::PackedMove RandomMove();

// Plays a legal move for SideToMove, which changes. The game history stays.
void PlayMove(zorvane::PackedMove move);

// Between the two worlds.
plain::BoardState PlainBoard();
void SetPlainPosition();

// In both worlds: starts a game and a line of the search at the position on the board, plays a move of the game, and
// takes the line one ply further, as a level does. Returns how often that position has been there.
void BeginLine();
void PlayInGame(const char *move);
int Descend(zorvane::PackedMove move);

inline int PlainSide(zorvane::Side side) { return side == zorvane::kWhite ? 1 : 2; }
inline plain::Square PlainSquare(int square) {
  return square == zorvane::kNoSquare ? plain::Square{} : plain::Square{square % 8, square / 8};
}
inline plain::Move PlainMove(zorvane::PackedMove move) {
  return {PlainSquare(zorvane::FromOf(move)), PlainSquare(zorvane::ToOf(move))};
}
inline int EngineSquare(plain::Square s) { return s.X < 0 ? zorvane::kNoSquare : zorvane::MakeSquare(s.X, s.Y); }
inline zorvane::PackedMove EngineMove(plain::Move m) {
  return zorvane::PackMove(EngineSquare(m.From), EngineSquare(m.To));
}

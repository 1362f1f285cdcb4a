// What the C++ tests share: a fresh engine, the tables of tests/data, and positions to try a property on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "board/position.h"

// Starts the engine afresh, and the random numbers too.
class EngineTest : public testing::Test {
protected:
  void SetUp() override;
};

// A random number below limit, the same sequence in every run.
int RandomBelow(int limit);

// The rows of a table in tests/data, as columns; lines that begin with "#" say what they mean.
std::vector<std::vector<std::string>> ReadTable(const std::string &name);

// The position, without the move number; empty squares one by one.
std::string CurrentFen();

// The same game with the colours exchanged.
std::string MirroredFen();

// Calls visit on every recorded position and on a few random moves from each. Ends at the first failure, having told
// the position.
void ForEachPosition(const std::function<void()> &visit);

// The engine's legal moves in its order.
std::vector<zorvane::PackedMove> LegalMoveList(zorvane::Side side);

// A legal move of SideToMove, kNoMove when there is none.
zorvane::PackedMove RandomMove();

// Plays a legal move as a level of the search does: from ply, whose snapshot it leaves in UndoStack.
void PlayFrom(int ply, zorvane::PackedMove move);

// True when all that a move changes is the same in both.
bool SameState(const zorvane::BoardState &one, const zorvane::BoardState &other);

zorvane::PackedMove MoveOfText(const std::string &text);

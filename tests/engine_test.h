// Shared by the C++ tests: a fresh engine, the tables of tests/data, and positions for testing properties.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "board/position.h"

// Starts every test with a fresh engine and the same random numbers.
class EngineTest : public testing::Test {
protected:
  void SetUp() override;
};

// A random number below limit, the same sequence in every run.
int RandomBelow(int limit);

// The rows of a table in tests/data, split into columns. Lines that begin with "#" describe the columns and are
// skipped.
std::vector<std::vector<std::string>> ReadTable(const std::string &name);

// Calls `answer` on every row of a table to fill in the engine's answers, and compares the result with the row. With
// ZORVANE_RECORD set to a folder, writes the answered rows to a file of the table's name there instead.
void CheckAnswers(const std::string &name, const std::function<void(std::vector<std::string> &)> &answer);

// The position as a FEN without the move number; each empty square is a "1".
std::string CurrentFen();

// The same position with colours exchanged.
std::string MirroredFen();

// Calls visit for every recorded position and after a few random moves from each. Stops at the first failure and prints
// the position.
void ForEachPosition(const std::function<void()> &visit);

// The legal moves in the engine's order.
std::vector<zorvane::PackedMove> LegalMoveList(zorvane::Side side);

// A random legal move of SideToMove, kNoMove if there is none.
zorvane::PackedMove RandomMove();

// Plays a legal move as a level of the search does at ply, with the snapshot in UndoStack.
void PlayFrom(int ply, zorvane::PackedMove move);

// True if everything that a move changes is the same in both.
bool SameState(const zorvane::BoardState &one, const zorvane::BoardState &other);

zorvane::PackedMove MoveOfText(const std::string &text);

#include "frontend/uci_loop.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "base/exit_code.h"
#include "base/parse_integer.h"
#include "board/fen.h"
#include "board/move_text.h"
#include "frontend/search_thread.h"
#include "frontend/text_line.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr char kHashOption[] = "setoption name Hash value";
constexpr char kPositionCommand[] = "position ";
constexpr char kFenWord[] = "fen ";

// The options for the next searches. Hash is not among them: it sets the size of the table at once.
SearchOptions Options;

void Say(const char *line) { std::printf("%s\n", line); }

void Identify() {
  Say("id name Zorvane Engine 1.0 Beta 1 - QuietChecks Test");
  Say("id author Zorvane project");
  Say("option name Hash type spin default 1 min 0 max 1");
  Say("uciok");
}

void StartNewGame() {
  StopSearchThread();
  ClearTransposition();
  LoadFen(kStartFen);
}

// The option is a switch: any number but 0 means the default size.
void SetHash(const char *value) {
  StopSearchThread();
  ResizeTransposition(ParseInteger(value) != 0 ? kDefaultTableKb : 0);
}

void HandlePosition(char *line) {
  StopSearchThread();
  char *position = line + std::strlen(kPositionCommand);
  char *moves = CutMoveList(line);
  // In "position moves ..." the cut removed the blank after "position": no position is named.
  if (std::strlen(line) < std::strlen(kPositionCommand)) {
    Say("info string invalid position");
    return;
  }
  const char *fen = std::strcmp(position, "startpos") == 0 ? kStartFen
                    : StartsWith(position, kFenWord)       ? position + std::strlen(kFenWord)
                                                           : nullptr;
  if (fen == nullptr || !LoadFen(fen)) {
    Say("info string invalid position");
    return;
  }
  if (moves != nullptr && !ApplyMoveList(moves))
    Say("info string invalid move in position");
}

} // namespace

bool HandleUciCommand(char *line) {
  CutLineEnd(line);
  const auto is = [line](const char *command) { return std::strcmp(line, command) == 0; };
  if (is("uci")) {
    Identify();
  } else if (is("isready")) {
    Say("readyok");
  } else if (is("stop")) {
    StopSearchThread();
  } else if (is("quit")) {
    StopSearchThread();
    return false;
  } else if (is("ucinewgame")) {
    StartNewGame();
  } else if (StartsWith(line, kHashOption)) {
    SetHash(line + std::strlen(kHashOption));
  } else if (StartsWith(line, kPositionCommand)) {
    HandlePosition(line);
  } else if (StartsWith(line, "go")) {
    StartSearchThread(line, Options);
  }
  return true;
}

int RunUciLoop() {
  std::array<char, kTextLineSize> line;
  while (std::fgets(line.data(), static_cast<int>(line.size()), stdin) != nullptr) {
    const bool goOn = HandleUciCommand(line.data());
    std::fflush(stdout);
    if (!goOn)
      return kSuccess;
  }
  StopSearchThread();
  return kSuccess;
}

} // namespace zorvane

#include "frontend/search_thread.h"

#include <cstdio>

#include "frontend/go_command.h"
#include "frontend/search_report.h"
#include "platform/platform.h"
#include "search/stop_control.h"

namespace zorvane {

namespace {

constexpr int kInfinitePollMs = 10;

// Touched by the main thread alone: true from a worker's creation until it is joined.
bool IsSearchThreadRunning;

// What the worker does; written before it starts.
GoCommand Command;

void SearchThreadMain() {
  RunSearch(Command.Limits);
  while (Command.IsInfinite && !IsStopRequested())
    SleepMilliseconds(kInfinitePollMs);
  PrintSearchResult();
}

} // namespace

void StartSearchThread(const char *goLine) {
  StopSearchThread();
  Command = ReadGoCommand(goLine);
  ClearStopRequest();
  IsSearchThreadRunning = StartWorker(SearchThreadMain);
  if (!IsSearchThreadRunning)
    std::printf("info string thread creation failed\n");
}

void StopSearchThread() {
  if (!IsSearchThreadRunning)
    return;
  RequestStop();
  JoinWorker();
  IsSearchThreadRunning = false;
}

} // namespace zorvane

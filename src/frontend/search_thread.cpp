#include "frontend/search_thread.h"

#include <cstdio>

#include "frontend/go_command.h"
#include "frontend/search_report.h"
#include "platform/platform.h"
#include "tree/stop_control.h"

namespace zorvane {

namespace {

constexpr int kInfinitePollMs = 10;

// Used by the main thread only: true from a worker's start until it is joined.
bool HasWorker;

// What the worker does; written before it is started.
GoCommand Command;
SearchOptions Options;

void SearchThreadMain() {
  const SearchResult result = RunSearch(Command.Limits, Options);
  while (Command.IsInfinite && !IsStopRequested())
    SleepMilliseconds(kInfinitePollMs);
  PrintSearchResult(result);
}

} // namespace

void StartSearchThread(const char *goLine, const SearchOptions &options) {
  StopSearchThread();
  Command = ReadGoCommand(goLine);
  Options = options;
  ClearStopRequest();
  HasWorker = StartWorker(SearchThreadMain);
  if (!HasWorker)
    std::printf("info string thread creation failed\n");
}

void StopSearchThread() {
  if (!HasWorker)
    return;
  RequestStop();
  JoinWorker();
  HasWorker = false;
}

} // namespace zorvane

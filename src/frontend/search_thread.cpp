#include "frontend/search_thread.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "board/number_text.h"
#include "board/position.h"
#include "frontend/search_report.h"
#include "platform/platform.h"
#include "search/search_driver.h"
#include "search/stop_control.h"

namespace zorvane {

namespace {

constexpr double kDepthTimeLimitSeconds = 300.0;
constexpr double kInfiniteTimeLimitSeconds = 86400.0;
constexpr double kShortestTimeMs = 1.0;
constexpr double kClockShare = 30.0;     // of the clock for one move
constexpr double kClockReserveMs = 50.0; // always left on the clock
constexpr int kInfinitePollMs = 10;

// Main thread alone: from a worker's creation until it is joined.
bool IsSearchThreadRunning;

// Written before the worker starts.
SearchLimits Limits;
bool IsInfiniteSearch;

// The text behind a word of the line, null when the word is not there.
const char *Behind(const char *line, const char *word) {
  const char *found = std::strstr(line, word);
  return found == nullptr ? nullptr : found + std::strlen(word);
}

// The order of the arguments gives what is no number the shortest time.
void SetTimeLimitMs(double milliseconds) { Limits.TimeLimitSeconds = std::max(kShortestTimeMs, milliseconds) / 1000.0; }

void ReadLimits(const char *line) {
  Limits = {};
  IsInfiniteSearch = false;
  if (const char *depth = Behind(line, " depth ")) {
    Limits.MaxDepth = std::clamp(ParseInteger(depth), 1, kDepthLimit);
    Limits.TimeLimitSeconds = kDepthTimeLimitSeconds;
  }
  if (const char *moveTime = Behind(line, " movetime ")) {
    SetTimeLimitMs(std::strtod(moveTime, nullptr));
  } else if (const char *clock = Behind(line, SideToMove == kWhite ? " wtime " : " btime ")) {
    const double left = std::strtod(clock, nullptr);
    SetTimeLimitMs(std::min(left / kClockShare, left - kClockReserveMs));
  }
  if (Behind(line, " infinite") != nullptr) {
    Limits.TimeLimitSeconds = kInfiniteTimeLimitSeconds;
    IsInfiniteSearch = true;
  }
}

void SearchThreadMain() {
  RunSearch(Limits);
  while (IsInfiniteSearch && !IsStopRequested())
    SleepMilliseconds(kInfinitePollMs);
  PrintSearchResult();
}

} // namespace

void StartSearchThread(const char *goLine) {
  StopSearchThread();
  ReadLimits(goLine);
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

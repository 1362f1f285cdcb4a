#include "search/stop_control.h"

#include <array>
#include <atomic>
#include <cassert>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "platform/platform.h"

namespace zorvane {

bool SearchAborted;
int NodesToStopTest;

namespace {

constexpr int kNodesPerStopTest = 64;
constexpr double kCancelPollMs = 10;

// The one value that two threads write.
std::atomic<std::int32_t> StopFlag;

bool DeadlineArmed;
double Deadline; // milliseconds on ProgramClock
double ProgramStartMs;

std::array<char, 4096> CancelPath; // empty for none
double LastCancelPoll;             // milliseconds on ProgramClock

void PollCancelFile() {
  const double now = ProgramClock();
  if (now - LastCancelPoll < kCancelPollMs)
    return;
  LastCancelPoll = now;
  if (CanOpenForReading(CancelPath.data()))
    RequestStop();
}

} // namespace

void RequestStop() { StopFlag.exchange(1); }
void ClearStopRequest() { StopFlag.exchange(0); }
bool IsStopRequested() { return StopFlag.load(std::memory_order_relaxed) != 0; }

void WatchCancelFile(const char *path) {
  assert(std::strlen(path) < CancelPath.size());
  std::snprintf(CancelPath.data(), CancelPath.size(), "%s", path);
}

void StartProgramClock() { ProgramStartMs = PerformanceMilliseconds(); }

double ProgramClock() { return PerformanceMilliseconds() - ProgramStartMs; }

void ResetStopControl() {
  DeadlineArmed = SearchAborted = false;
  NodesToStopTest = 0;
}

void ArmDeadline(double milliseconds) {
  Deadline = milliseconds;
  DeadlineArmed = true;
}

void DisarmDeadline() { DeadlineArmed = false; }

bool ShouldStop() {
  if (CancelPath[0] != '\0')
    PollCancelFile();
  if (IsStopRequested()) {
    SearchAborted = true;
    return true;
  }
  // A position without a legal move has no time limit, and its answer is the same in any case.
  if (!DeadlineArmed)
    return false;
  if (!SearchAborted && ProgramClock() >= Deadline)
    SearchAborted = true;
  return SearchAborted;
}

bool AskShouldStop() {
  NodesToStopTest = kNodesPerStopTest;
  return ShouldStop();
}

} // namespace zorvane

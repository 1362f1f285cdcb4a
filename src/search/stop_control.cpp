#include "search/stop_control.h"

#include "platform/platform.h"

namespace zorvane {

std::atomic<std::int32_t> StopFlag;
bool SearchAborted;
bool DeadlineArmed;
double Deadline;
std::array<char, kPathBufferSize> CancelPath;
int NodesToStopTest;

namespace {

constexpr double kCancelPollMs = 10;

double ProgramStartMs;
double LastCancelPoll;

void PollCancelFile() {
  const double now = ProgramClock();
  if (now - LastCancelPoll < kCancelPollMs)
    return;
  LastCancelPoll = now;
  if (CanOpenForReading(CancelPath.data()))
    StopFlag.exchange(1);
}

} // namespace

void StartProgramClock() { ProgramStartMs = PerformanceMilliseconds(); }

double ProgramClock() { return PerformanceMilliseconds() - ProgramStartMs; }

bool ShouldStop() {
  if (CancelPath[0] != '\0')
    PollCancelFile();
  if (StopFlag.load(std::memory_order_relaxed) != 0) {
    SearchAborted = true;
    return true;
  }
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

#include "tree/stop_control.h"

#include <atomic>
#include <cassert>
#include <cstdio>
#include <cstring>

#include "base/program_clock.h"
#include "platform/platform.h"

namespace zorvane {

bool SearchAborted;
int NodesToStopTest;

namespace {

constexpr int kNodesPerStopTest = 64;
constexpr double kCancelPollMs = 10;

// The only value that two threads write.
std::atomic<bool> StopFlag;

bool DeadlineArmed;
double Deadline; // milliseconds on ProgramClock

char CancelPath[kPathBufferSize]; // empty for none
double LastCancelPoll;            // milliseconds on ProgramClock

void PollCancelFile() {
  const double now = ProgramClock();
  if (now - LastCancelPoll < kCancelPollMs)
    return;
  LastCancelPoll = now;
  if (CanOpenForReading(CancelPath))
    RequestStop();
}

} // namespace

void RequestStop() { StopFlag = true; }
void ClearStopRequest() { StopFlag = false; }
bool IsStopRequested() { return StopFlag.load(std::memory_order_relaxed); }

void WatchCancelFile(const char *path) {
  assert(std::strlen(path) < sizeof CancelPath);
  std::snprintf(CancelPath, sizeof CancelPath, "%s", path);
}

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
  if (!DeadlineArmed)
    return false;
  if (!SearchAborted && ProgramClock() >= Deadline)
    SearchAborted = true;
  return SearchAborted;
}

bool PollNow() {
  NodesToStopTest = kNodesPerStopTest;
  return ShouldStop();
}

} // namespace zorvane

#include "base/program_clock.h"

#include "platform/platform.h"

namespace zorvane {

namespace {

double ProgramStartMs;

} // namespace

void StartProgramClock() { ProgramStartMs = PerformanceMilliseconds(); }

double ProgramClock() { return PerformanceMilliseconds() - ProgramStartMs; }

} // namespace zorvane

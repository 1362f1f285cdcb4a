// Part of the x86-64-v3 programs only, and itself compiled for any x86-64: on
// a processor that lacks those instructions the program says so and ends,
// where it would else die of an illegal instruction.
#include <cstdlib>

#include "platform/platform.h"

namespace zorvane {

namespace {

constexpr int kExitCode = 2;

// Runs ahead of every other initialisation of the program, since any of it may
// already hold such instructions.
[[gnu::constructor(101)]] void RequireProcessor() {
  __builtin_cpu_init();
  const bool suitable = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                        __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma") &&
                        __builtin_cpu_supports("popcnt");
  if (!suitable) {
    ReportStartFailure("This build of Zorvane needs a processor with AVX2 and BMI2; use the portable build.");
    std::_Exit(kExitCode);
  }
}

} // namespace

} // namespace zorvane

// The two exit codes of the process.
#pragma once

namespace zorvane {

constexpr int kSuccess = 0;
constexpr int kFailure = 2;

} // namespace zorvane

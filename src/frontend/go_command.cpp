#include "frontend/go_command.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "board/number_text.h"
#include "board/position.h"

namespace zorvane {

namespace {

constexpr double kDepthTimeLimitSeconds = 300.0;
constexpr double kInfiniteTimeLimitSeconds = 86400.0;
constexpr double kShortestTimeMs = 1.0;
constexpr double kClockShare = 30.0;     // a move gets one part of so many of the clock
constexpr double kClockReserveMs = 50.0; // always left on the clock

// The text behind a word of the line, null when the word is not there.
const char *TextBehind(const char *line, const char *word) {
  const char *found = std::strstr(line, word);
  return found == nullptr ? nullptr : found + std::strlen(word);
}

// In this order of arguments, what is not a number gives the shortest time.
double TimeLimitSeconds(double milliseconds) { return std::max(kShortestTimeMs, milliseconds) / 1000.0; }

} // namespace

GoCommand ReadGoCommand(const char *line) {
  GoCommand command{{}, false};
  if (const char *depth = TextBehind(line, " depth "))
    command.Limits = {std::clamp(ParseInteger(depth), 1, kDepthLimit), kDepthTimeLimitSeconds};
  if (const char *moveTime = TextBehind(line, " movetime ")) {
    command.Limits.TimeLimitSeconds = TimeLimitSeconds(std::strtod(moveTime, nullptr));
  } else if (const char *clock = TextBehind(line, SideToMove == kWhite ? " wtime " : " btime ")) {
    const double left = std::strtod(clock, nullptr);
    command.Limits.TimeLimitSeconds = TimeLimitSeconds(std::min(left / kClockShare, left - kClockReserveMs));
  }
  if (TextBehind(line, " infinite") != nullptr) {
    command.Limits.TimeLimitSeconds = kInfiniteTimeLimitSeconds;
    command.IsInfinite = true;
  }
  return command;
}

} // namespace zorvane

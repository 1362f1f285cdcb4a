#include "frontend/go_command.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/parse_integer.h"
#include "board/position.h"
#include "platform/platform.h"

namespace zorvane {

namespace {

constexpr double kInfiniteTimeMs = 86400000;
constexpr double kClockShare = 30;     // a move gets this part of the clock
constexpr double kClockReserveMs = 50; // always left on the clock

// The text after a word in the line, null if the word is missing.
const char *TextAfter(const char *line, const char *word) {
  const char *found = std::strstr(line, word);
  return found == nullptr ? nullptr : found + std::strlen(word);
}

// With the arguments of std::max in this order, NaN gives the shortest time.
double AtLeastShortest(double milliseconds) { return std::max(kShortestTimeMs, milliseconds); }

} // namespace

GoCommand ReadGoCommand(const char *line) {
  GoCommand command{{}, false};
  if (const char *depth = TextAfter(line, " depth "))
    command.Limits = {std::clamp(ParseInteger(depth), 1, kDepthLimit), kLongestTimeMs};
  if (const char *moveTime = TextAfter(line, " movetime ")) {
    command.Limits.TimeMs = AtLeastShortest(std::strtod(moveTime, nullptr));
  } else if (const char *clock = TextAfter(line, SideToMove == kWhite ? " wtime " : " btime ")) {
    const double left = std::strtod(clock, nullptr);
    command.Limits.TimeMs = AtLeastShortest(std::min(left / kClockShare, left - kClockReserveMs));
  }
  if (TextAfter(line, " infinite") != nullptr) {
    // Without threads no stop could reach the search: it goes to its depth instead.
    command.IsInfinite = HasThreads();
    command.Limits.TimeMs = command.IsInfinite ? kInfiniteTimeMs : kLongestTimeMs;
  }
  return command;
}

} // namespace zorvane

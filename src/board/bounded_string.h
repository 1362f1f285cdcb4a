// A text of at most 511 characters in a fixed buffer.
#pragma once

#include <array>

namespace zorvane {

constexpr unsigned kBoundedStringSize = 512;

struct BoundedString {
  std::array<char, kBoundedStringSize> Text{}; // terminated, zero beyond the text
};

// Makes out the text. A text of 512 characters or more ends the process with exit code 2.
void BoundedStringFromText(BoundedString &out, const char *text);

} // namespace zorvane

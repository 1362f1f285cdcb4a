// A text of at most 511 characters in a fixed buffer, the engine's string.
#pragma once

#include <array>

namespace zorvane {

constexpr unsigned kBoundedStringSize = 512;

struct BoundedString {
  std::array<char, kBoundedStringSize> Text{}; // zero-terminated, and zero beyond the text
};

// Copies the text to out. One of 512 characters or more ends the process: "string capacity exceeded" on standard error,
// exit code 2.
void BoundedStringFromText(BoundedString &out, const char *text);

} // namespace zorvane

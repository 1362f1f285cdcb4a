#include "board/bounded_string.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zorvane {

void BoundedStringFromText(BoundedString &out, const char *text) {
  const std::size_t length = std::strlen(text);
  if (length >= kBoundedStringSize) {
    std::fputs("string capacity exceeded\n", stderr);
    std::exit(2);
  }
  out.Text.fill('\0');
  std::memcpy(out.Text.data(), text, length);
}

} // namespace zorvane

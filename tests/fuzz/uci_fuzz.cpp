// Any bytes as the lines of a UCI session. A search only lasts until the next line that stops it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "frontend/engine_main.h"
#include "frontend/search_thread.h"
#include "frontend/text_line.h"
#include "frontend/uci_loop.h"

using namespace zorvane;

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
  return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  StartEngine();
  static std::array<char, kTextLineSize> line;
  const std::uint8_t *const end = data + size;
  while (data < end) {
    const std::uint8_t *lineEnd = std::find(data, end, '\n');
    lineEnd = std::min(lineEnd == end ? end : lineEnd + 1, data + line.size() - 1);
    const auto length = static_cast<std::size_t>(lineEnd - data);
    std::memcpy(line.data(), data, length);
    line[length] = '\0';
    data = lineEnd;
    if (!HandleUciCommand(line.data()))
      break;
  }
  StopSearchThread();
  return 0;
}

// Any bytes as a request file, run through the whole request mode in a folder that is removed at the end.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "frontend/engine_main.h"
#include "frontend/request_file.h"
#include "frontend/text_line.h"
#include "tree/stop_control.h"

using namespace zorvane;

namespace {

// Of the buffer for the token.
constexpr std::size_t kTokenSize = 128;

constexpr std::array kEndings{".response", ".response.tmp", ".cancel", ".error.txt"};

std::string Folder;
std::string Request;

void RemoveFiles() {
  unlink(Request.c_str());
  for (const char *ending : kEndings)
    unlink((Request + ending).c_str());
}

void RemoveFolder() {
  RemoveFiles();
  rmdir(Folder.c_str());
}

// The request with its search, if it has one, reduced to depth 1 and one millisecond.
std::string WithSmallLimits(std::string text) {
  const auto lineEnd = [&text](std::size_t start, std::size_t bufferSize) {
    const std::size_t end = text.find('\n', start);
    return std::min({end == std::string::npos ? end : end + 1, start + bufferSize - 1, text.size()});
  };
  const std::size_t start = lineEnd(lineEnd(0, kTextLineSize), kTokenSize);
  const std::string line = text.substr(start, lineEnd(start, kTextLineSize) - start);
  double time = 0;
  int depth = 0;
  int after = 0;
  if (std::sscanf(line.c_str(), "%lf %d%n", &time, &depth, &after) == 2 && time >= 1 && time <= 300000 && depth >= 1 &&
      depth <= 8)
    text.replace(start, static_cast<std::size_t>(after), "1 1");
  return text;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
  std::string name = "/tmp/zorvane-fuzz-XXXXXX";
  if (mkdtemp(name.data()) == nullptr)
    return 1;
  Folder = name;
  Request = Folder + "/r";
  std::atexit(RemoveFolder);
  // Hides the message of every failed request; the fuzzer keeps its own stream.
  stderr = std::fopen("/dev/null", "w");
  return stderr == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  StartEngine();
  ClearStopRequest();
  const std::string text = WithSmallLimits({reinterpret_cast<const char *>(data), size});
  std::FILE *file = std::fopen(Request.c_str(), "wb");
  if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() || std::fclose(file) != 0)
    std::abort();

  const int code = RunRequest(Request.c_str());
  const bool answered = access((Request + ".response").c_str(), F_OK) == 0;
  const bool failed = access((Request + ".error.txt").c_str(), F_OK) == 0;
  // Every request ends with an answer or an error, and leaves no incomplete response.
  if ((code == 0 ? !answered || failed : !failed) || access((Request + ".response.tmp").c_str(), F_OK) == 0)
    std::abort();
  RemoveFiles();
  return 0;
}

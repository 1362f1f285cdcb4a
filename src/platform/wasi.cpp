#include "platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <initializer_list>

namespace zorvane {

bool IsStandardInputUsable() {
  struct stat status {};
  return fstat(STDIN_FILENO, &status) == 0 && !S_ISDIR(status.st_mode);
}

void PrepareStandardStreams() {
  // Some runtimes hand over pipes on which reads and writes fail instead of waiting.
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

bool HasThreads() { return false; }

bool StartWorker(void (*body)()) {
  body();
  return true;
}

void JoinWorker() {}

} // namespace zorvane

// What is the same on POSIX systems and under WASI, which has no threads and no signals.
#include "platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace zorvane {

void ShowMessageBox(const char *caption, const char *text) { std::fprintf(stderr, "%s\n%s\n", caption, text); }

double PerformanceMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

void SleepMilliseconds(int milliseconds) {
  timespec left{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR)
    ;
}

namespace {

// Opens a regular file; -1 for anything else. A folder could be opened and would fail only when read, and a named pipe
// would block until somebody opens its other end.
int OpenRegularFile(const char *path, int flags) {
  constexpr int newFileMode = 0666; // less the bits of the user's mask
  const int descriptor = open(path, flags | O_NONBLOCK | O_CLOEXEC, newFileMode);
  struct stat status {};
  if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

// A stream for the descriptor; null for -1.
std::FILE *MakeStream(int descriptor, const char *mode) {
  std::FILE *file = descriptor < 0 ? nullptr : fdopen(descriptor, mode);
  if (descriptor >= 0 && file == nullptr)
    close(descriptor);
  return file;
}

} // namespace

std::FILE *OpenForReading(const char *path) { return MakeStream(OpenRegularFile(path, O_RDONLY), "rb"); }

std::FILE *OpenForWriting(const char *path) {
  return MakeStream(OpenRegularFile(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW), "wb");
}

bool CanOpenForReading(const char *path) {
  const int descriptor = OpenRegularFile(path, O_RDONLY);
  if (descriptor < 0)
    return false;
  close(descriptor);
  return true;
}

bool RenameFile(const char *from, const char *to) { return std::rename(from, to) == 0; }

bool RemoveFile(const char *path) { return unlink(path) == 0; }

} // namespace zorvane

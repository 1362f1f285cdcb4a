#include "platform/platform.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace zorvane {

namespace {

pthread_t worker;
void (*workerBody)() = nullptr;

void *RunWorkerBody(void * /*unused*/) {
  workerBody();
  return nullptr;
}

} // namespace

bool IsStandardInputUsable() {
  struct stat status {};
  if (fstat(STDIN_FILENO, &status) != 0 || S_ISDIR(status.st_mode)) {
    return false;
  }
  const int flags = fcntl(STDIN_FILENO, F_GETFL);
  return flags >= 0 && (flags & O_ACCMODE) != O_WRONLY;
}

void PrepareStandardStreams() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

void ShowMessageBox(const char *caption, const char *text) { std::fprintf(stderr, "%s\n%s\n", caption, text); }

double PerformanceMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

bool StartWorker(void (*body)()) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) {
    return false;
  }
  workerBody = body;
  const bool started = pthread_attr_setstacksize(&attributes, kWorkerStackBytes) == 0 &&
                       pthread_create(&worker, &attributes, RunWorkerBody, nullptr) == 0;
  pthread_attr_destroy(&attributes);
  return started;
}

void JoinWorker() { pthread_join(worker, nullptr); }

void SleepMilliseconds(int milliseconds) {
  timespec left{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

namespace {

// Opens what can be read as a file, -1 for anything else: a directory opens without complaint and fails only when it
// is read, and a named pipe would hold the engine until somebody writes to it.
int OpenFile(const char *path) {
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  struct stat status {};
  if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

} // namespace

std::FILE *OpenForReading(const char *path) {
  const int descriptor = OpenFile(path);
  std::FILE *file = descriptor < 0 ? nullptr : fdopen(descriptor, "rb");
  if (descriptor >= 0 && file == nullptr) {
    close(descriptor);
  }
  return file;
}

std::FILE *OpenForWriting(const char *path) { return std::fopen(path, "wbe"); }

bool CanOpenForReading(const char *path) {
  const int descriptor = OpenFile(path);
  if (descriptor < 0) {
    return false;
  }
  close(descriptor);
  return true;
}

bool RenameFile(const char *from, const char *to) { return std::rename(from, to) == 0; }

bool RemoveFile(const char *path) { return unlink(path) == 0; }

} // namespace zorvane

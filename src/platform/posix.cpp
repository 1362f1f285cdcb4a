#include "platform/platform.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace zorvane {

namespace {

pthread_t Worker;
void (*WorkerBody)() = nullptr;

void *RunWorkerBody(void * /*unused*/) {
  WorkerBody();
  return nullptr;
}

} // namespace

bool IsStandardInputUsable() {
  struct stat status {};
  if (fstat(STDIN_FILENO, &status) != 0 || S_ISDIR(status.st_mode))
    return false;
  const int flags = fcntl(STDIN_FILENO, F_GETFL);
  return flags >= 0 && (flags & O_ACCMODE) != O_WRONLY;
}

void PrepareStandardStreams() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

bool HasThreads() { return true; }

bool StartWorker(void (*body)()) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0)
    return false;
  WorkerBody = body;
  const bool started = pthread_attr_setstacksize(&attributes, kWorkerStackBytes) == 0 &&
                       pthread_create(&Worker, &attributes, RunWorkerBody, nullptr) == 0;
  pthread_attr_destroy(&attributes);
  return started;
}

void JoinWorker() { pthread_join(Worker, nullptr); }

} // namespace zorvane

// The operating system as the engine sees it. Everything that is not plain
// C++ goes through these procedures; no other folder calls the system.
#pragma once

#include <cstdio>

namespace zorvane {

// True when standard input is a file, a pipe or a character device that can
// be read; false when the process was started without one or with a folder.
bool IsStandardInputUsable();

// Makes a write whose reader has gone, or that a file size limit refuses, an
// ordinary failed write; by default some systems end the process for it. Puts
// the standard streams into binary mode, so that a line ends in a single
// line feed, and standard output into line-buffered mode. Windows knows no
// line buffering: there a line is out at the next std::fflush at the latest,
// so whoever prints lines that another program awaits flushes after them.
void PrepareStandardStreams();

// Shows the two texts to a person. On Windows it is a message box and returns
// when the person has dismissed it; elsewhere the texts go to standard error.
void ShowMessageBox(const char *caption, const char *text);

// Reading of a steady clock in milliseconds, with a fraction. Its zero point
// has no meaning.
double PerformanceMilliseconds();

// The stack of the worker. The defaults differ between systems and shells,
// and std::thread cannot set one; a search must not depend on them. It needs
// a small part of this: quiescence nests eleven plies with some move sets each.
constexpr int kWorkerStackBytes = 8 << 20;

// Starts the one worker thread with body as its work. False when the system
// refuses. A worker that was started must be joined before the next start.
bool StartWorker(void (*body)());

// Waits, without a time limit, until the worker's body has returned.
void JoinWorker();

// Puts the calling thread to sleep for at least that long.
void SleepMilliseconds(int milliseconds);

// Opens an existing file in binary mode; null when it cannot be opened or is no
// regular file. The caller closes it with std::fclose.
std::FILE *OpenForReading(const char *path);

// Creates the file, or empties an existing one, in binary mode; null when that
// fails. The caller closes it with std::fclose.
std::FILE *OpenForWriting(const char *path);

// True when the path is a file that can be opened for reading at this moment. Cheap, never
// blocks, allocates nothing.
bool CanOpenForReading(const char *path);

// Gives a file its final name in one step; nobody ever sees a part of it under
// that name. An existing target is replaced, except on Windows, where it makes
// the rename fail. False on failure.
bool RenameFile(const char *from, const char *to);

// Removes a file; false when that fails, an absent file included.
bool RemoveFile(const char *path);

} // namespace zorvane

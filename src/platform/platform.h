// The operating system as the engine sees it. Everything beyond standard C++ goes through these procedures; no other
// folder calls the system.
#pragma once

#include <cstdio>

namespace zorvane {

// True if standard input is a file, pipe or character device that can be read; false if the process was started without
// one or with a folder.
bool IsStandardInputUsable();

// Makes a write fail in the ordinary way when its reader has gone or a file size limit is reached; by default some
// systems end the process. Sets the standard streams to binary mode, so that a line ends in a single line feed, and
// standard output to line buffering. Windows has no line buffering: there a line may wait until the next std::fflush,
// so code must flush after printing lines that another program waits for.
void PrepareStandardStreams();

// Shows the two texts to the user. On Windows this is a message box, and the call returns when it is dismissed;
// elsewhere the texts go to standard error.
void ShowMessageBox(const char *caption, const char *text);

// The time on a steady clock in milliseconds, with a fraction. Only differences are meaningful.
double PerformanceMilliseconds();

// The stack of the worker. The defaults differ between systems and shells, a search must not depend on them, and
// std::thread cannot set one. A search needs a small part of this: quiescence nests eleven plies with a few move sets
// each.
constexpr int kWorkerStackBytes = 8 << 20;

// True if a worker runs beside its starter; false on systems without threads.
bool HasThreads();

// Starts the one worker thread, which runs body. False if the system refuses. A started worker must be joined before
// the next start. On a system without threads the call runs body itself and returns when it ends.
bool StartWorker(void (*body)());

// Waits, without a time limit, until the worker's body has returned.
void JoinWorker();

// Suspends the calling thread for at least this long.
void SleepMilliseconds(int milliseconds);

// The size of a buffer for a file name, with its terminator.
constexpr int kPathBufferSize = 4096;

// Opens an existing file in binary mode; null if it cannot be opened or is not a regular file. Never blocks. The caller
// closes it with std::fclose.
std::FILE *OpenForReading(const char *path);

// Creates a file or empties an existing one, in binary mode; null if that fails or the name belongs to anything but a
// regular file. Never blocks, and does not follow links. The caller closes it with std::fclose.
std::FILE *OpenForWriting(const char *path);

// True if the path is a file that can be opened for reading now. Cheap; never blocks, allocates nothing.
bool CanOpenForReading(const char *path);

// Renames a file in one step, so that nobody sees an incomplete file under the new name. An existing target is
// replaced, except on Windows, where the rename fails. False on failure.
bool RenameFile(const char *from, const char *to);

// Removes a file; false if that fails, also because there is none.
bool RemoveFile(const char *path);

} // namespace zorvane

// The go command, and the one worker that searches while the main thread reads commands.
#pragma once

namespace zorvane {

// Ends a running search, whose result is printed first, and starts one with the limits of a "go" line. Prints an info
// string when no thread can be had.
void StartSearchThread(const char *goLine);

// Stops and joins the worker, whether it still searches or not. Without one it does nothing.
void StopSearchThread();

} // namespace zorvane

// The go command, and the one worker that searches while the main thread reads commands.
#pragma once

#include "search/search_driver.h"

namespace zorvane {

// Stops a running search, which prints its result, and starts one with the limits of a "go" line. Prints an info string
// if the system refuses a thread.
void StartSearchThread(const char *goLine, const SearchOptions &options);

// Stops and joins the worker, searching or not. Does nothing without one.
void StopSearchThread();

} // namespace zorvane

// The one question that all of the search asks: must I end now? It folds together the deadline, the stop from the
// command loop and the cancel file of a request, and once it has said yes it keeps saying so.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace zorvane {

constexpr unsigned kPathBufferSize = 4096;

// Non-zero asks the search to end. The one value that two threads write.
extern std::atomic<std::int32_t> StopFlag;

extern bool SearchAborted; // latched when the search must end
extern bool DeadlineArmed; // written by RunSearch
extern double Deadline;    // milliseconds on ProgramClock

// The file whose existence cancels the search; empty for none.
extern std::array<char, kPathBufferSize> CancelPath;

// Makes now the zero point of ProgramClock.
void StartProgramClock();

// Milliseconds since program start, with a fraction.
double ProgramClock();

// True when the search must end. Reads the clock; looks for the cancel file at most once in ten milliseconds.
bool ShouldStop();

// The nodes that may still pass before ShouldStop is asked again.
extern int NodesToStopTest;
constexpr int kNodesPerStopTest = 64;

// PollStop's slow half: restarts the count and asks ShouldStop.
bool AskShouldStop();

// ShouldStop for the heads of nodes: asks every kNodesPerStopTest nodes, which take a small part of a millisecond.
inline bool PollStop() { return --NodesToStopTest <= 0 && AskShouldStop(); }

} // namespace zorvane

// The one question that all of the search asks: must I end now? It folds together the deadline, the stop from the
// command loop and the cancel file of a request, and once it has said yes it keeps saying so
// until the search is over.
#pragma once

namespace zorvane {

constexpr int kPathBufferSize = 4096; // for the name of a file, with its terminator

// Asks the search to end, from any thread. The request stays until ClearStopRequest.
void RequestStop();
void ClearStopRequest();
bool IsStopRequested();

// From now on the existence of a file of this name, shorter than kPathBufferSize, asks the search to end.
void WatchCancelFile(const char *path);

// Makes now the zero point of ProgramClock.
void StartProgramClock();

// Milliseconds since StartProgramClock, with a fraction.
double ProgramClock();

// Forgets how the last search ended: no deadline, not aborted. A stop that was requested stays.
void ResetStopControl();

// From now on the search must end at this time of ProgramClock, in milliseconds.
void ArmDeadline(double milliseconds);
void DisarmDeadline();

// True when the search must end. Reads the clock; looks for the cancel file at most once in ten milliseconds.
bool ShouldStop();

// True from the moment that ShouldStop has said yes until the next search. From then on returned scores mean nothing.
extern bool SearchAborted;

// The nodes that may still pass before PollStop asks again.
extern int NodesToStopTest;

// PollStop's slow half: restarts the count and asks ShouldStop.
bool AskShouldStop();

// ShouldStop for the heads of nodes: asks every 64 nodes, which take a small part of a millisecond.
inline bool PollStop() { return --NodesToStopTest <= 0 && AskShouldStop(); }

} // namespace zorvane

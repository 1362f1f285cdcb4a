// Whether the search must end: because of its deadline, a stop from the command loop, or the cancel file of a request.
// Once it must, that does not change until the search is over.
#pragma once

namespace zorvane {

// Asks the search to end, from any thread. The request lasts until ClearStopRequest.
void RequestStop();
void ClearStopRequest();
bool IsStopRequested();

// From now on, the existence of this file asks the search to end. The path must be shorter than kPathBufferSize.
void WatchCancelFile(const char *path);

// Prepares for a new search: no deadline, not aborted. A requested stop remains.
void ResetStopControl();

// Makes the search end at this time of ProgramClock, in milliseconds.
void ArmDeadline(double milliseconds);
void DisarmDeadline();

// True if the search must end. Reads the clock, and looks for the cancel file at most every ten milliseconds.
bool ShouldStop();

// True once ShouldStop has returned true, until the next search. Scores returned from then on are meaningless.
extern bool SearchAborted;

// The nodes left until PollStop asks again.
extern int NodesToStopTest;

// The slow half of PollStop: restarts the count and calls ShouldStop.
bool PollNow();

// ShouldStop for the beginning of nodes: asks only every 64 nodes, which take a small part of a millisecond.
inline bool PollStop() { return --NodesToStopTest <= 0 && PollNow(); }

} // namespace zorvane

// The clock of the process.
#pragma once

namespace zorvane {

// Sets the zero point of ProgramClock to now.
void StartProgramClock();

// Milliseconds since StartProgramClock, with a fraction. Steady; it runs on while the process is suspended.
double ProgramClock();

} // namespace zorvane

// The command line of the program.
#pragma once

namespace zorvane {

// Runs the mode that the arguments name and returns the exit code of the process, 0 or 2. Without arguments, that is
// the UCI loop, or a message box if there is no usable standard input.
int EngineMain(int argc, char **argv);

// Prepares the engine for its first search: tables, clock, initial position.
void StartEngine();

} // namespace zorvane

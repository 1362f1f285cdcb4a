// The UCI mode: commands on standard input, answers on standard output.
#pragma once

namespace zorvane {

// Reads and answers commands until "quit" or the end of the input. Returns the exit code, 0.
int RunUciLoop();

// Handles one command line, which may end in a line feed and is modified. False for "quit".
bool HandleUciCommand(char *line);

} // namespace zorvane

// The batch mode for a host: a request file goes in, one search runs, a response file comes out complete or not at all.
// docs/request-protocol.md has the lines of both.
#pragma once

namespace zorvane {

// Serves the request at the path and returns the exit code: 0 with a response, which for an invalid position or one
// without a legal move names that, or after a cancel; 2 with an error file and, once the token is known, a response
// that names the error.
int RunRequest(const char *requestPath);

} // namespace zorvane

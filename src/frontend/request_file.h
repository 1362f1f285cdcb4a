// The batch mode for a host: a request file in, one search, and a response file out, complete or not at all.
// docs/request-protocol.md describes both.
#pragma once

namespace zorvane {

// Answers the request at the path and returns the exit code: 0 with a response (for an invalid position or one without
// a legal move it says so) or after a cancel; 2 with an error file and, once the token is known, a response that names
// the error.
int RunRequest(const char *requestPath);

} // namespace zorvane

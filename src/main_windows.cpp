#include <windows.h>

#include <cstdlib>

#include "frontend/engine_main.h"

// FENs and paths are taken as they stand; without this the C library would
// expand wildcards in them. The name is the library's own.
int _dowildcard = 0; // NOLINT(bugprone-reserved-identifier)

// The entry of a program for the window subsystem, which opens no console.
int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*show*/) {
  return zorvane::EngineMain(__argc, __argv);
}

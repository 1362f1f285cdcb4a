#include <windows.h>

#include <cstdlib>

#include "frontend/engine_main.h"

// Keeps the C library from expanding wildcards in FENs and paths. The library defines the name.
int _dowildcard = 0; // NOLINT(bugprone-reserved-identifier)

// The entry point of a GUI program, for which Windows opens no console.
int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*show*/) {
  return zorvane::EngineMain(__argc, __argv);
}

#include "frontend/engine_main.h"

int main(int argc, char **argv) { return zorvane::EngineMain(argc, argv); }

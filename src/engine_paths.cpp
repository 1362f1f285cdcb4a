// Chooses among the three engines in the program for every x86-64, compiled from the same sources for different
// processors, each in its own namespace (cmake/EnginePaths.cmake).
#include "frontend/engine_main.h"
#include "platform/processor.h"

namespace zorvane_base {
int EngineMain(int argc, char **argv);
}
namespace zorvane_avx2 {
int EngineMain(int argc, char **argv);
}
namespace zorvane_pext {
int EngineMain(int argc, char **argv);
}

namespace zorvane {

int EngineMain(int argc, char **argv) {
  switch (ChoosePath(IdentifyProcessor())) {
  case kPextPath:
    return zorvane_pext::EngineMain(argc, argv);
  case kAvx2Path:
    return zorvane_avx2::EngineMain(argc, argv);
  default:
    return zorvane_base::EngineMain(argc, argv);
  }
}

} // namespace zorvane

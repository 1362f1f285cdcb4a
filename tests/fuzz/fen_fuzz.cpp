// Any text as a FEN: a rejected one changes nothing, an accepted one can be counted, evaluated and searched.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "board/fen.h"
#include "board/perft.h"
#include "board/position_key.h"
#include "evaluation/evaluate.h"
#include "frontend/engine_main.h"
#include "search/search_driver.h"

using namespace zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  StartEngine();
  PositionKey before = BuildPositionKey(SideToMove);
  const bool accepted = LoadFen(std::string(reinterpret_cast<const char *>(data), size).c_str());
  if (accepted) {
    before = BuildPositionKey(SideToMove);
    Perft(1);
    Evaluate();
    RunSearch({1, kShortestTimeMs}, {});
  }
  if (!(BuildPositionKey(SideToMove) == before))
    std::abort();
  return 0;
}

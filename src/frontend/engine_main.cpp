#include "frontend/engine_main.h"

#include <cstdio>
#include <cstring>

#include "base/exit_code.h"
#include "base/parse_integer.h"
#include "base/program_clock.h"
#include "board/bitboard.h"
#include "board/fen.h"
#include "board/perft.h"
#include "evaluation/evaluate.h"
#include "frontend/request_file.h"
#include "frontend/search_report.h"
#include "frontend/uci_loop.h"
#include "platform/platform.h"
#include "search/search_driver.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr int kDefaultPerftDepth = 3;
constexpr int kHighestPerftDepth = 6;
constexpr int kDefaultBenchDepth = 3;

bool Is(const char *argument, const char *word) { return std::strcmp(argument, word) == 0; }

// Hosts compare this text, the message box and the answer of WriteNoMove in request_file.cpp: German is not a mistake.
int RunStatus() {
  std::fputs("Zorvane C-Engine: OK, bin da.\n"
             "Programmstart erfolgreich. Keine Schachberechnung ausgefuehrt.\n",
             stdout);
  return kSuccess;
}

int RunPerft(int depth) {
  if (depth < 0 || depth > kHighestPerftDepth)
    return kFailure;
  std::printf("%llu\n", static_cast<unsigned long long>(Perft(depth)));
  return kSuccess;
}

int RunEval() {
  std::printf("%d\n", Evaluate());
  return kSuccess;
}

int RunBench(int depth) {
  if (depth < 1 || depth > kDepthLimit)
    return kFailure;
  PrintSearchResult(RunSearch({depth, kLongestTimeMs}, {}));
  return kSuccess;
}

// Runs the mode that the first argument names. Call StartEngine first.
int RunMode(int argc, char **argv) {
  const char *mode = argv[1];
  const bool hasValue = argc > 2;
  if (hasValue && Is(mode, "--request"))
    return RunRequest(argv[2]);
  if (argc > 3 && !LoadFen(argv[3])) {
    std::fputs("Invalid FEN\n", stderr);
    return kFailure;
  }
  const auto number = [&](int absent) { return hasValue ? ParseInteger(argv[2]) : absent; };
  if (Is(mode, "--perft"))
    return RunPerft(number(kDefaultPerftDepth));
  if (Is(mode, "--eval")) // the value is ignored
    return RunEval();
  if (Is(mode, "--bench"))
    return RunBench(number(kDefaultBenchDepth));
  std::fputs("Usage: --perft|--bench depth [FEN], --eval 0 [FEN]\n", stderr);
  return kFailure;
}

} // namespace

void StartEngine() {
  InitializeBitboards();
  StartProgramClock();
  ResizeTransposition(kDefaultTableKb);
  LoadFen(kStartFen);
}

int EngineMain(int argc, char **argv) {
  PrepareStandardStreams();
  if (argc == 1 && !IsStandardInputUsable()) {
    ShowMessageBox("Zorvane C-Engine",
                   "OK, bin da.\n\nZorvane C-Engine wurde gestartet.\nKeine Schachberechnung ausgefuehrt.");
    return kSuccess;
  }
  if (argc == 2 && Is(argv[1], "--status"))
    return RunStatus();
  StartEngine();
  return argc > 1 ? RunMode(argc, argv) : RunUciLoop();
}

} // namespace zorvane

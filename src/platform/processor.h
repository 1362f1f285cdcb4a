// Which of the paths that the engine is compiled for suits a processor. For x86-64 alone: elsewhere there is one path.
#pragma once

#include <cstdint>

namespace zorvane {

enum EnginePath : unsigned {
  kBasePath, // any x86-64
  kAvx2Path, // x86-64-v3, with a PEXT that is slow
  kPextPath, // x86-64-v3, with a quick PEXT
};

// What a processor tells about itself, as far as the choice asks for it.
struct ProcessorIdentity {
  char Vendor[12];                // CPUID 0: EBX, EDX, ECX
  std::uint32_t Version;          // CPUID 1: EAX
  std::uint32_t Features;         // CPUID 1: ECX
  std::uint32_t ExtendedFeatures; // CPUID 7, 0: EBX
  std::uint32_t FurtherFeatures;  // CPUID 0x80000001: ECX
  std::uint32_t SavedRegisters;   // XGETBV 0: the kinds of registers that the operating system saves
};

// The processor that this runs on. Fields that it cannot report are 0.
ProcessorIdentity IdentifyProcessor();

// The fastest path that such a processor can run.
EnginePath ChoosePath(const ProcessorIdentity &processor);

} // namespace zorvane

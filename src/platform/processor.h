// Which of the paths that the engine is compiled for suits a processor. For x86-64 only: elsewhere there is one path.
#pragma once

#include <cstdint>

namespace zorvane {

enum EnginePath : unsigned {
  kBasePath, // any x86-64
  kAvx2Path, // x86-64-v3 with a slow PEXT
  kPextPath, // x86-64-v3 with a fast PEXT
};

// What a processor reports about itself, as far as the choice depends on it.
struct ProcessorIdentity {
  char Vendor[12];                // CPUID 0: EBX, EDX, ECX
  std::uint32_t Version;          // CPUID 1: EAX
  std::uint32_t Features;         // CPUID 1: ECX
  std::uint32_t ExtendedFeatures; // CPUID 7, 0: EBX
  std::uint32_t FurtherFeatures;  // CPUID 0x80000001: ECX
  std::uint32_t SavedRegisters;   // XGETBV 0: which registers the operating system saves
};

// Identifies the processor that this runs on. Fields that it does not report are 0.
ProcessorIdentity IdentifyProcessor();

// The fastest path that the processor can run.
EnginePath ChoosePath(const ProcessorIdentity &processor);

} // namespace zorvane

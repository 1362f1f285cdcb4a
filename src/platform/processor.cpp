#include "platform/processor.h"

#include <cpuid.h>

#include <cstring>
#include <string_view>

namespace zorvane {

namespace {

constexpr std::uint32_t Flag(int bit) { return std::uint32_t{1} << bit; }

// The features that compilers use for x86-64-v3.
constexpr std::uint32_t kSystemSavesRegisters = Flag(27);                        // OSXSAVE: XGETBV may be executed
constexpr std::uint32_t kFeatures = Flag(0) | Flag(9) | Flag(12) | Flag(13) |    // SSE3, SSSE3, FMA, CMPXCHG16B
                                    Flag(19) | Flag(20) | Flag(22) | Flag(23) |  // SSE4.1, SSE4.2, MOVBE, POPCNT
                                    kSystemSavesRegisters | Flag(28) | Flag(29); // AVX, F16C
constexpr std::uint32_t kExtendedFeatures = Flag(3) | Flag(5) | Flag(8);         // BMI1, AVX2, BMI2
constexpr std::uint32_t kFurtherFeatures = Flag(0) | Flag(5);                    // LAHF, LZCNT
constexpr std::uint32_t kVectorRegisters = Flag(1) | Flag(2);                    // XMM, and the upper halves of YMM

constexpr bool HasAll(std::uint32_t flags, std::uint32_t wanted) { return (flags & wanted) == wanted; }

// AVX instructions fault unless the operating system saves their registers, so XGETBV counts as well.
bool RunsVersion3(const ProcessorIdentity &processor) {
  return HasAll(processor.Features, kFeatures) && HasAll(processor.ExtendedFeatures, kExtendedFeatures) &&
         HasAll(processor.FurtherFeatures, kFurtherFeatures) && HasAll(processor.SavedRegisters, kVectorRegisters);
}

// The family, plus the extended family when the family is 15.
int FamilyOf(const ProcessorIdentity &processor) {
  const std::uint32_t family = (processor.Version >> 8) & 0xFU;
  return static_cast<int>(family == 0xFU ? family + ((processor.Version >> 20) & 0xFFU) : family);
}

// PEXT is a fast instruction on Intel processors since it was introduced with Haswell, and on AMD's since Zen 3, which
// is family 0x19. From Excavator to Zen 2, and on Hygon's processors, which are Zen 1, it is microcode that takes a
// step for each bit and is up to a hundred times slower. Nothing is known of others; multiplying instead of PEXT costs
// little.
bool HasQuickPext(const ProcessorIdentity &processor) {
  constexpr int firstQuickAmdFamily = 0x19;
  const std::string_view vendor(processor.Vendor, sizeof processor.Vendor);
  return vendor == "GenuineIntel" || (vendor == "AuthenticAMD" && FamilyOf(processor) >= firstQuickAmdFamily);
}

// Only for processors with kSystemSavesRegisters. All flags that matter are in the lower half.
std::uint32_t ReadSavedRegisters() {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

} // namespace

ProcessorIdentity IdentifyProcessor() {
  ProcessorIdentity processor{};
  std::uint32_t eax = 0;
  std::uint32_t ebx = 0;
  std::uint32_t ecx = 0;
  std::uint32_t edx = 0;
  if (__get_cpuid(0, &eax, &ebx, &ecx, &edx) != 0) {
    std::memcpy(processor.Vendor, &ebx, sizeof ebx);
    std::memcpy(processor.Vendor + 4, &edx, sizeof edx);
    std::memcpy(processor.Vendor + 8, &ecx, sizeof ecx);
  }
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0) {
    processor.Version = eax;
    processor.Features = ecx;
  }
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0)
    processor.ExtendedFeatures = ebx;
  if (__get_cpuid(0x80000001U, &eax, &ebx, &ecx, &edx) != 0)
    processor.FurtherFeatures = ecx;
  if (HasAll(processor.Features, kSystemSavesRegisters))
    processor.SavedRegisters = ReadSavedRegisters();
  return processor;
}

EnginePath ChoosePath(const ProcessorIdentity &processor) {
  if (!RunsVersion3(processor))
    return kBasePath;
  return HasQuickPext(processor) ? kPextPath : kAvx2Path;
}

} // namespace zorvane

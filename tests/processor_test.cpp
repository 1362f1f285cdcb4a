// Which path each kind of processor gets.
#include <cstring>
#include <map>

#include "engine_test.h"
#include "platform/processor.h"

using namespace zorvane;

TEST(ProcessorTest, EachKindGetsItsPath) {
  const std::map<std::string, EnginePath> paths = {{"base", kBasePath}, {"avx2", kAvx2Path}, {"pext", kPextPath}};
  const auto number = [](const std::string &text) { return static_cast<std::uint32_t>(std::stoul(text, nullptr, 16)); };
  for (const auto &row : ReadTable("processors.tsv")) {
    ProcessorIdentity processor{};
    std::memcpy(processor.Vendor, row[1].data(), sizeof processor.Vendor);
    processor.Version = number(row[2]);
    processor.Features = number(row[3]);
    processor.ExtendedFeatures = number(row[4]);
    processor.FurtherFeatures = number(row[5]);
    processor.SavedRegisters = number(row[6]);
    EXPECT_EQ(ChoosePath(processor), paths.at(row[7])) << row[0];
  }
}

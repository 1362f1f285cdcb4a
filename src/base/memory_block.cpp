#include "base/memory_block.h"

#include "base/array.h"
#include "base/exit_code.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace zorvane {

Array<MemoryBlock, 2> MemoryBlocks;

namespace {

// What the allocator returned, which is what must be freed.
Array<void *, 2> Allocations;

} // namespace

void AllocateBlock(MemoryBlockNumber number, std::size_t length) {
  const int index = number - kTranspositionBlock;
  std::free(Allocations[index]);
  Allocations[index] = nullptr;
  MemoryBlocks[index] = {};
  if (length == 0)
    return;
  void *memory = std::calloc(length + kBlockAlignment, 1);
  if (memory == nullptr)
    std::exit(kFailure);
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  const std::size_t skip = (kBlockAlignment - address % kBlockAlignment) % kBlockAlignment;
  Allocations[index] = memory;
  MemoryBlocks[index] = {static_cast<std::byte *>(memory) + skip, length};
}

void FailMemoryBounds(MemoryBlockNumber number, std::size_t offset, std::size_t width) {
  std::fprintf(stderr, "memory bounds %d %lu %lu\n", static_cast<int>(number), static_cast<unsigned long>(offset),
               static_cast<unsigned long>(width));
  std::exit(kFailure);
}

} // namespace zorvane

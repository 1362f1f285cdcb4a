// The two heap blocks of the process, with bounds-tested access. Their numbers are what the message of a failed test
// calls them.
#pragma once

#include "board/array.h"

#include <cassert>
#include <cstddef>

namespace zorvane {

constexpr std::size_t kBlockAlignment = 64; // a cache line

enum MemoryBlockNumber : int { kTranspositionBlock = 905, kPawnCacheBlock = 906 };

struct MemoryBlock {
  std::byte *Data;
  std::size_t Length;
};

// Without memory, and of length 0, until AllocateBlock. Read them through BlockOf.
extern Array<MemoryBlock, 2> MemoryBlocks;

inline const MemoryBlock &BlockOf(MemoryBlockNumber number) { return MemoryBlocks[number - kTranspositionBlock]; }

// Gives the block length zero bytes at an address that is a multiple of kBlockAlignment, having freed what it had; 0
// leaves it without memory. When there is no memory the process ends with exit code 2 and no message.
void AllocateBlock(MemoryBlockNumber number, std::size_t length);

// Prints block, offset and width of an access to standard error and ends the process with exit code 2.
[[noreturn]] void FailMemoryBounds(MemoryBlockNumber number, std::size_t offset, std::size_t width);

// The record of type T at offset bytes into the block, a multiple of T's alignment; blocks begin at a cache line. Ends
// the process when the record does not lie inside.
template <typename T> inline T &RecordAt(MemoryBlockNumber number, std::size_t offset) {
  static_assert(alignof(T) <= kBlockAlignment);
  const MemoryBlock &block = BlockOf(number);
  if (offset + sizeof(T) > block.Length) [[unlikely]]
    FailMemoryBounds(number, offset, sizeof(T));
  assert(offset % alignof(T) == 0);
  return *reinterpret_cast<T *>(block.Data + offset);
}

} // namespace zorvane

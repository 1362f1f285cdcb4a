// The two heap blocks of the process, with bounds-checked access.
//
// Offsets come from masked hashes and so are never out of bounds. They are checked in release builds all the same: a
// mistake must end the process rather than write elsewhere, and without the check searches are not measurably faster.
#pragma once

#include "base/array.h"

#include <cassert>
#include <cstddef>

namespace zorvane {

constexpr std::size_t kBlockAlignment = 64; // a cache line

// The names of the blocks in the message of a failed check. The message can be seen from outside, so the numbers stay.
enum MemoryBlockNumber : int { kTranspositionBlock = 905, kPawnCacheBlock = 906 };

struct MemoryBlock {
  std::byte *Data;
  std::size_t Length;
};

// Without memory and of length 0 until AllocateBlock. Read them through BlockOf.
extern Array<MemoryBlock, 2> MemoryBlocks;

inline const MemoryBlock &BlockOf(MemoryBlockNumber number) { return MemoryBlocks[number - kTranspositionBlock]; }

// Frees the block, then allocates length zeroed bytes, aligned to kBlockAlignment; 0 only frees. If there is no memory,
// the process ends with exit code 2 and without a message.
void AllocateBlock(MemoryBlockNumber number, std::size_t length);

// Prints block, offset and width of an access to standard error and ends the process with exit code 2.
[[noreturn]] void FailMemoryBounds(MemoryBlockNumber number, std::size_t offset, std::size_t width);

// The record of type T at an offset in bytes, which must be a multiple of T's alignment. Ends the process if the record
// is not inside the block.
template <typename T> inline T &RecordAt(MemoryBlockNumber number, std::size_t offset) {
  static_assert(alignof(T) <= kBlockAlignment);
  const MemoryBlock &block = BlockOf(number);
  if (offset + sizeof(T) > block.Length) [[unlikely]]
    FailMemoryBounds(number, offset, sizeof(T));
  assert(offset % alignof(T) == 0);
  return *reinterpret_cast<T *>(block.Data + offset);
}

} // namespace zorvane

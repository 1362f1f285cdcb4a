// A fixed-size array indexed by int, so that squares, sides and plies need no casts as with std::array. Every index is
// asserted.
#pragma once

#include <cassert>

namespace zorvane {

template <typename T, int Size> struct Array {
  T Items[Size];

  constexpr T &operator[](int index) {
    assert(index >= 0 && index < Size);
    return Items[static_cast<unsigned>(index)];
  }
  constexpr const T &operator[](int index) const {
    assert(index >= 0 && index < Size);
    return Items[static_cast<unsigned>(index)];
  }
  constexpr void fill(const T &value) {
    for (T &item : Items)
      item = value;
  }
  constexpr T *begin() { return Items; }
  constexpr T *end() { return Items + Size; }
  constexpr const T *begin() const { return Items; }
  constexpr const T *end() const { return Items + Size; }
};

} // namespace zorvane

// The array of this engine: of fixed size, indexed by whole numbers such as squares, sides and plies. Debug builds test
// every index.
#pragma once

#include <cassert>
#include <initializer_list>

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

// The record's arrays, indexed by int.
//
// Players, rows, sheets and dice are counted from 1 in int, as they are
// spoken and saved, and loops over them run in int. Casting each index to
// size_t where it is used would bury the rules under casts, so the one
// conversion lives here, at the array's edge; everything else about the
// array is std::array's own.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

namespace quorble {

// An int index at the edge of an array of `size` elements.
constexpr std::size_t IndexEdge(int i, [[maybe_unused]] std::size_t size) {
  assert(i >= 0 && static_cast<std::size_t>(i) < size);
  return static_cast<std::size_t>(i);
}

template <typename T, std::size_t N>
struct Indexed : std::array<T, N> {
  constexpr T& operator[](int i) { return std::array<T, N>::operator[](IndexEdge(i, N)); }
  constexpr const T& operator[](int i) const {
    return std::array<T, N>::operator[](IndexEdge(i, N));
  }
};

// The same for a table whose length is known only when it is built, such as
// the companion's numbered dice sets.
template <typename T>
struct IndexedVector : std::vector<T> {
  using std::vector<T>::vector;
  explicit IndexedVector(std::vector<T> items) : std::vector<T>(std::move(items)) {}
  T& operator[](int i) { return std::vector<T>::operator[](IndexEdge(i, this->size())); }
  const T& operator[](int i) const {
    return std::vector<T>::operator[](IndexEdge(i, this->size()));
  }
};

}  // namespace quorble

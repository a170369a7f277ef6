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

namespace quorble {

template <typename T, std::size_t N>
struct Indexed : std::array<T, N> {
  constexpr T& operator[](int i) { return std::array<T, N>::operator[](Edge(i)); }
  constexpr const T& operator[](int i) const { return std::array<T, N>::operator[](Edge(i)); }

 private:
  static constexpr std::size_t Edge(int i) {
    assert(i >= 0 && static_cast<std::size_t>(i) < N);
    return static_cast<std::size_t>(i);
  }
};

}  // namespace quorble

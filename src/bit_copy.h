// The bits of one value read as another type of the same size, as
// std::bit_cast does; the browser build's standard library has no bit_cast.
#pragma once

#include <cstring>
#include <type_traits>

namespace quorble {

template <class To, class From>
To BitCopy(const From& from) {
  static_assert(sizeof(To) == sizeof(From));
  static_assert(std::is_trivially_copyable_v<To> && std::is_trivially_copyable_v<From>);
  To to;
  std::memcpy(&to, &from, sizeof to);
  return to;
}

}  // namespace quorble

// WAV files store their numbers little-endian; these go byte by byte so the
// host's own order never matters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorble {

// The `width`-byte number at `at`; any container of char-sized bytes.
template <class Bytes>
std::uint32_t ReadLittleEndian(const Bytes& bytes, std::size_t at, int width) {
  std::uint32_t value = 0;
  for (int i = width - 1; i >= 0; --i) {
    value = (value << 8) | static_cast<unsigned char>(bytes.at(at + static_cast<std::size_t>(i)));
  }
  return value;
}

inline void AppendLittleEndian(std::vector<char>& bytes, std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

}  // namespace quorble

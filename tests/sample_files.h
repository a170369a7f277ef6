// The generated sound samples as the tests read them: the bytes of a file, its 16-bit values,
// or those values scaled to full scale 1. The build writes them to QUORBLE_BUILD_DIR.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "file_names.h"
#include "little_endian.h"

namespace quorble::sample_files {

inline constexpr size_t kHeaderBytes = 44;
inline constexpr double kFullScale = 32768.0;

inline std::vector<uint8_t> ReadBytes(int index,
                                      const std::filesystem::path& dir = QUORBLE_BUILD_DIR) {
  std::ifstream file(dir / file_names::Sample(index), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline std::vector<int16_t> Samples(int index) {
  const auto bytes = ReadBytes(index);
  std::vector<int16_t> samples;
  for (size_t at = kHeaderBytes; at + 1 < bytes.size(); at += 2) {
    samples.push_back(static_cast<int16_t>(ReadLittleEndian(bytes, at, 2)));
  }
  return samples;
}

inline std::vector<double> Values(int index) {
  std::vector<double> values;
  for (int16_t sample : Samples(index)) values.push_back(sample / kFullScale);
  return values;
}

}  // namespace quorble::sample_files

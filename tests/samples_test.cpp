// Checks the generated sound samples as the game and its players meet them: files a plain
// WAVE reader accepts, levels that neither clip nor vanish, no clicks at the edges, a seamless
// loading loop.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "little_endian.h"
#include "sample_files.h"

namespace {

namespace fs = std::filesystem;
using quorble::sample_files::kFullScale;
using quorble::sample_files::kHeaderBytes;
using quorble::sample_files::ReadBytes;
using quorble::sample_files::Samples;

int PeakOf(std::vector<int16_t>::const_iterator begin, std::vector<int16_t>::const_iterator end) {
  int peak = 0;
  for (auto it = begin; it != end; ++it) peak = std::max(peak, std::abs(static_cast<int>(*it)));
  return peak;
}

TEST(Samples, HeadersAreCanonicalPcm16BitMono22050) {
  for (int index = 0; index < 8; ++index) {
    SCOPED_TRACE(index);
    const auto bytes = ReadBytes(index);
    ASSERT_GT(bytes.size(), kHeaderBytes);
    const auto tag = [&](std::ptrdiff_t at) {
      return std::string(bytes.begin() + at, bytes.begin() + at + 4);
    };
    EXPECT_EQ(tag(0) + tag(8) + tag(12) + tag(36), "RIFFWAVEfmt data");
    // fmt size, PCM, mono, rate, bytes per second, block align, bits per sample
    const std::vector<uint32_t> format = {
        quorble::ReadLittleEndian(bytes, 16, 4), quorble::ReadLittleEndian(bytes, 20, 2),
        quorble::ReadLittleEndian(bytes, 22, 2), quorble::ReadLittleEndian(bytes, 24, 4),
        quorble::ReadLittleEndian(bytes, 28, 4), quorble::ReadLittleEndian(bytes, 32, 2),
        quorble::ReadLittleEndian(bytes, 34, 2)};
    EXPECT_EQ(format, (std::vector<uint32_t>{16, 1, 1, 22050, 44100, 2, 16}));
    EXPECT_EQ(quorble::ReadLittleEndian(bytes, 4, 4), bytes.size() - 8);
    EXPECT_EQ(quorble::ReadLittleEndian(bytes, 40, 4), bytes.size() - kHeaderBytes);
    EXPECT_EQ(bytes.size() % 2, 0u);
  }
}

// Each lasts as long as its cue needs. Peaks stay below -0.9 dBFS, so
// nothing clips beside speech. All but the loading loop, which must not
// fade, start and end in silence.
TEST(Samples, LengthsLevelsAndEdges) {
  // A player sits through every throw: five dice take no more than 1.1 s, and still hold
  // more than the 40000 bytes the game skips for its start-up sound.
  const std::pair<double, double> kSeconds[] = {{1.0, 1.5},  {0.3, 0.6},  {0.45, 0.75}, {0.6, 0.9},
                                                {0.75, 1.0}, {0.91, 1.1}, {0.05, 0.11}, {1.5, 2.5}};
  for (int index = 0; index < 8; ++index) {
    SCOPED_TRACE(index);
    const auto samples = Samples(index);
    ASSERT_GT(samples.size(), 8u);
    const double seconds = static_cast<double>(samples.size()) / 22050.0;
    EXPECT_GE(seconds, kSeconds[index].first);
    EXPECT_LE(seconds, kSeconds[index].second);
    const double peakDbfs = 20.0 * std::log10(PeakOf(samples.begin(), samples.end()) / kFullScale);
    EXPECT_GE(peakDbfs, -20.0);
    EXPECT_LE(peakDbfs, -0.9);
    double sum = 0.0;
    for (int16_t sample : samples) sum += sample;
    EXPECT_LT(std::abs(sum / static_cast<double>(samples.size())), 0.003 * kFullScale)
        << "DC offset";
    for (size_t i = 0; i < 3 && index != 7; ++i) {
      EXPECT_LT(std::abs(samples[i]), 0.01 * kFullScale) << "sample " << i;
      EXPECT_LT(std::abs(samples[samples.size() - 1 - i]), 0.01 * kFullScale) << "from end " << i;
    }
  }
  for (int dice = 2; dice <= 5; ++dice) {
    EXPECT_GT(Samples(dice).size(), Samples(dice - 1).size()) << "longer with each die: " << dice;
  }
}

TEST(Generator, WritesTheSameBytesEveryRun) {
  const fs::path dir = fs::temp_directory_path() / ("quorble-samples-" + std::to_string(getpid()));
  const std::string command = std::string("'") + QUORBLE_GENSAMPLES + "' '" + dir.string() + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  for (int index = 0; index < 8; ++index) {
    EXPECT_EQ(ReadBytes(index, dir), ReadBytes(index)) << "quorble" << index;
  }
  fs::remove_all(dir);
}

}  // namespace

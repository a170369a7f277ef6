// Checks the generated sound samples as the game and its players meet them: files a plain
// WAVE reader accepts, levels that neither clip nor vanish, no clicks at the edges, a seamless
// loading loop, and a five-dice sample whose tail can be played on its own.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#ifndef QUORBLE_BUILD_DIR
#error "QUORBLE_BUILD_DIR must name the directory that holds the generated samples"
#endif

namespace {

namespace fs = std::filesystem;

constexpr size_t kHeaderBytes = 44;
constexpr size_t kTailOffsetBytes = 40000;  // where the game starts its settling sound
constexpr double kFullScale = 32768.0;

std::vector<uint8_t> ReadBytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

fs::path SamplePath(const fs::path& dir, int index) {
  return dir / ("quorble" + std::to_string(index) + ".wav");
}

uint32_t LittleEndian(const std::vector<uint8_t>& bytes, size_t at, int width) {
  uint32_t value = 0;
  for (int i = width - 1; i >= 0; --i) value = (value << 8) | bytes.at(at + i);
  return value;
}

std::string Tag(const std::vector<uint8_t>& bytes, size_t at) {
  return {bytes.begin() + at, bytes.begin() + at + 4};
}

std::vector<int16_t> Samples(int index) {
  const auto bytes = ReadBytes(SamplePath(QUORBLE_BUILD_DIR, index));
  std::vector<int16_t> samples;
  for (size_t at = kHeaderBytes; at + 1 < bytes.size(); at += 2) {
    samples.push_back(static_cast<int16_t>(LittleEndian(bytes, at, 2)));
  }
  return samples;
}

int PeakOf(std::vector<int16_t>::const_iterator begin, std::vector<int16_t>::const_iterator end) {
  int peak = 0;
  for (auto it = begin; it != end; ++it) peak = std::max(peak, std::abs(static_cast<int>(*it)));
  return peak;
}

struct Expectation {
  int index;
  double min_seconds;
  double max_seconds;
  bool fades;  // everything but the loop must start and end in silence
};

const Expectation kExpectations[] = {
    {0, 1.0, 1.5, true}, {1, 0.4, 0.9, true}, {2, 0.6, 1.2, true},   {3, 0.8, 1.4, true},
    {4, 1.0, 1.6, true}, {5, 1.4, 2.0, true}, {6, 0.05, 0.11, true}, {7, 1.5, 2.5, false},
};

void PrintTo(const Expectation& expectation, std::ostream* out) {
  *out << "quorble" << expectation.index << ".wav";
}

class SampleTest : public testing::TestWithParam<Expectation> {};

TEST_P(SampleTest, HeaderIsCanonicalPcm16BitMono22050) {
  const auto bytes = ReadBytes(SamplePath(QUORBLE_BUILD_DIR, GetParam().index));
  ASSERT_GT(bytes.size(), kHeaderBytes);
  EXPECT_EQ(Tag(bytes, 0) + Tag(bytes, 8) + Tag(bytes, 12) + Tag(bytes, 36), "RIFFWAVEfmt data");
  // fmt size, PCM, mono, rate, bytes per second, block align, bits per sample
  const std::vector<uint32_t> format = {LittleEndian(bytes, 16, 4), LittleEndian(bytes, 20, 2),
                                        LittleEndian(bytes, 22, 2), LittleEndian(bytes, 24, 4),
                                        LittleEndian(bytes, 28, 4), LittleEndian(bytes, 32, 2),
                                        LittleEndian(bytes, 34, 2)};
  EXPECT_EQ(format, (std::vector<uint32_t>{16, 1, 1, 22050, 44100, 2, 16}));
  EXPECT_EQ(LittleEndian(bytes, 4, 4), bytes.size() - 8);
  EXPECT_EQ(LittleEndian(bytes, 40, 4), bytes.size() - kHeaderBytes);
  EXPECT_EQ(bytes.size() % 2, 0u);
}

TEST_P(SampleTest, LastsAsLongAsItsCueNeeds) {
  const double seconds = Samples(GetParam().index).size() / 22050.0;
  EXPECT_GE(seconds, GetParam().min_seconds);
  EXPECT_LE(seconds, GetParam().max_seconds);
}

// Peaks between -7 and -2.5 dBFS: loud enough beside speech, with room left so nothing clips.
TEST_P(SampleTest, LevelsAreAudibleUnclippedAndCentred) {
  const auto samples = Samples(GetParam().index);
  const double peak_dbfs = 20.0 * std::log10(PeakOf(samples.begin(), samples.end()) / kFullScale);
  EXPECT_GE(peak_dbfs, -7.0);
  EXPECT_LE(peak_dbfs, -2.5);
  double sum = 0.0;
  for (int16_t sample : samples) sum += sample;
  EXPECT_LT(std::abs(sum / samples.size()), 0.003 * kFullScale) << "DC offset";
}

TEST_P(SampleTest, StartsAndEndsInSilence) {
  if (!GetParam().fades) GTEST_SKIP() << "a loop must not fade";
  const auto samples = Samples(GetParam().index);
  ASSERT_GT(samples.size(), 8u);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_LT(std::abs(samples[i]), 0.01 * kFullScale) << "sample " << i;
    EXPECT_LT(std::abs(samples[samples.size() - 1 - i]), 0.01 * kFullScale) << "from end " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(AllSamples, SampleTest, testing::ValuesIn(kExpectations),
                         [](const testing::TestParamInfo<Expectation>& info) {
                           return "quorble" + std::to_string(info.param.index);
                         });

TEST(DiceSamples, GrowLongerWithEachDie) {
  for (int dice = 2; dice <= 5; ++dice) {
    EXPECT_GT(Samples(dice).size(), Samples(dice - 1).size()) << dice << " dice";
  }
}

// The game plays quorble5.wav from byte 40000 on as a sound of its own.
TEST(DiceSamples, FiveDiceTailPlaysCleanlyOnItsOwn) {
  const auto samples = Samples(5);
  ASSERT_GT(samples.size() * 2, 60000u);
  const auto tail = samples.begin() + (kTailOffsetBytes - kHeaderBytes) / 2;
  for (int i = 0; i < 3; ++i) EXPECT_LT(std::abs(tail[i]), 0.01 * kFullScale) << "tail " << i;
  const int tail_peak = PeakOf(tail, samples.end());
  EXPECT_LT(tail_peak, PeakOf(samples.begin(), tail) / 2) << "settling should be gentle";
  EXPECT_GT(tail_peak, 0.03 * kFullScale) << "settling should still be heard";
}

// Continuing the last two samples in a straight line should land near the first one: a seam
// bends the waveform no harder than anything inside the loop does.
TEST(LoadingLoop, JoinsEndToStartWithoutASeam) {
  const auto samples = Samples(7);
  ASSERT_GT(samples.size(), 3u);
  auto bend = [&](size_t i) {  // second difference around sample i, wrapping at the ends
    const size_t n = samples.size();
    return std::abs(samples[(i + n - 1) % n] - 2 * samples[i] + samples[(i + 1) % n]);
  };
  int largest_inside = 0;
  for (size_t i = 1; i + 1 < samples.size(); ++i) {
    largest_inside = std::max(largest_inside, bend(i));
  }
  EXPECT_LE(bend(samples.size() - 1), largest_inside);
  EXPECT_LE(bend(0), largest_inside);
}

TEST(Generator, WritesTheSameBytesEveryRun) {
#ifndef QUORBLE_GENSAMPLES
  GTEST_SKIP() << "QUORBLE_GENSAMPLES not defined";
#else
  const fs::path dir = fs::temp_directory_path() / ("quorble-samples-" + std::to_string(getpid()));
  const std::string command = std::string("'") + QUORBLE_GENSAMPLES + "' '" + dir.string() + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  for (int index = 0; index < 8; ++index) {
    EXPECT_EQ(ReadBytes(SamplePath(dir, index)), ReadBytes(SamplePath(QUORBLE_BUILD_DIR, index)))
        << "quorble" << index;
  }
  fs::remove_all(dir);
#endif
}

}  // namespace

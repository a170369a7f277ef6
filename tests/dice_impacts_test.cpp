// What a listener tells apart in the throws of one to five dice: the impacts heard, how far
// they spread, and how loud the throw is. The impact detector is first checked on knocks
// placed at known moments, so the dice can't pass on a detector that hears nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>
#include <vector>

#include "impacts.h"
#include "loudness.h"
#include "sample_files.h"

namespace {

constexpr double kRate = 22050;

struct Knock {
  double seconds;
  double db;  // against full scale
  double ringSeconds = 0.005;
};

// Knocks as a die gives them, a bright ring dying away in a few milliseconds, under noise of
// `noiseDb` (none below -150) that fades in over the first 20 ms and, given `flutterHz`,
// swells and vanishes that many times a second.
std::vector<double> Render(const std::vector<Knock>& knocks, double noiseDb, double flutterHz = 0) {
  std::vector<double> signal(static_cast<size_t>(kRate), 0.0);
  for (const Knock& knock : knocks) {
    const auto start = static_cast<size_t>(knock.seconds * kRate);
    for (size_t i = 0; start + i < signal.size(); ++i) {
      const double t = static_cast<double>(i) / kRate;
      signal[start + i] += std::pow(10.0, knock.db / 20.0) * std::exp(-t / knock.ringSeconds) *
                           std::sin(2.0 * std::numbers::pi * 2500.0 * t);
    }
  }
  uint32_t state = 12345;  // a fixed linear congruential noise, the same every run
  for (size_t i = 0; noiseDb > -150 && i < signal.size(); ++i) {
    state = state * 1664525u + 1013904223u;
    const double white = static_cast<double>(state) / 4294967296.0 * 2.0 - 1.0;
    const double fadeIn = std::min(1.0, static_cast<double>(i) / (0.02 * kRate));
    const double t = static_cast<double>(i) / kRate;
    const double flutter =
        flutterHz > 0 ? 1.0 - std::cos(2.0 * std::numbers::pi * flutterHz * t) : 1.0;
    signal[i] += std::pow(10.0, noiseDb / 20.0) * std::sqrt(3.0) * white * fadeIn * flutter;
  }
  return signal;
}

TEST(ImpactDetector, HearsKnocksWhereAListenerWould) {
  constexpr double kNone = -200;
  const struct {
    const char* what;
    std::vector<Knock> knocks;
    double noiseDb;
    std::vector<double> heardAt;
    double flutterHz = 0;
  } kCases[] = {
      {"silence", {}, kNone, {}},
      {"knocks apart, loud and soft",
       {{0.1, -6}, {0.3, -12}, {0.5, -26}, {0.8, -36}},
       kNone,
       {0.1, 0.3, 0.5, 0.8}},
      {"closer than the ear parts them", {{0.1, -6}, {0.125, -6}}, kNone, {0.1}},
      {"just far enough apart", {{0.1, -6}, {0.16, -6}}, kNone, {0.1, 0.16}},
      {"far below the loudest", {{0.1, -6}, {0.4, -50}}, kNone, {0.1}},
      {"a soft knock in the long ring of a loud one", {{0.1, -6, 0.2}, {0.15, -20}}, kNone, {0.1}},
      // Steady noise is heard as it starts; a knock must rise over it to be heard.
      {"knocks in noise", {{0.3, -30}, {0.6, -12}}, -30, {0.0, 0.6}},
      // Swells quicker than about twenty a second are heard as one rough sound.
      {"fluttering noise", {}, -30, {0.0}, 30},
  };
  for (const auto& test : kCases) {
    SCOPED_TRACE(test.what);
    const std::vector<double> onsets =
        quorble::impacts::Onsets(Render(test.knocks, test.noiseDb, test.flutterHz), kRate);
    ASSERT_EQ(onsets.size(), test.heardAt.size());
    for (size_t i = 0; i < onsets.size(); ++i) EXPECT_NEAR(onsets[i], test.heardAt[i], 0.004);
  }
}

// The longest stretch of 5 ms windows below -60 dBFS between the throw's first and last sound.
int LongestQuietInsideMs(const std::vector<double>& signal) {
  constexpr size_t kWindow = static_cast<size_t>(kRate) / 200;
  int quietRun = 0, longest = 0;
  for (size_t at = 0; at + kWindow < signal.size(); at += kWindow) {
    double sum = 0;
    for (size_t i = 0; i < kWindow; ++i) sum += signal[at + i] * signal[at + i];
    const bool quiet = std::sqrt(sum / kWindow) < 0.001;
    if (!quiet) longest = std::max(longest, quietRun);
    quietRun = quiet ? quietRun + 1 : 0;
  }
  return longest * 5;
}

// Each throw is one continuous sound: a pause inside it is heard as a stutter.
TEST(DiceSamples, EachThrowIsContinuous) {
  for (int dice = 1; dice <= 5; ++dice) {
    EXPECT_LE(LongestQuietInsideMs(quorble::sample_files::Values(dice)), 30) << dice << " dice";
  }
}

// More dice are heard as more impacts over a longer stretch, and never as a quieter throw.
TEST(DiceSamples, MoreDiceSoundLikeMoreDice) {
  struct Heard {
    size_t impacts;
    double spreadSeconds, lufs;
  };
  std::vector<Heard> throws;
  std::ostringstream figures;
  for (int dice = 1; dice <= 5; ++dice) {
    const std::vector<double> signal = quorble::sample_files::Values(dice);
    const std::vector<double> onsets = quorble::impacts::Onsets(signal, kRate);
    throws.push_back({onsets.size(), quorble::impacts::Spread(onsets),
                      quorble::loudness::IntegratedLoudness(signal, kRate)});
    figures << dice << " dice: " << onsets.size() << " impacts over "
            << std::lround(throws.back().spreadSeconds * 1000) << " ms, " << throws.back().lufs
            << " LUFS\n";
  }
  SCOPED_TRACE(figures.str());
  double loudestBefore = throws.front().lufs;
  for (size_t more = 1; more < throws.size(); ++more) {
    SCOPED_TRACE(more + 1);
    EXPECT_GT(throws[more].impacts, throws[more - 1].impacts);
    // Listeners tell two durations near a second apart once they differ by about a tenth
    // (Weber's fraction for duration); 15 % keeps a margin over that.
    EXPECT_GE(throws[more].spreadSeconds, 1.15 * throws[more - 1].spreadSeconds);
    // Half a loudness unit is below what a listener notices between two sounds.
    EXPECT_GE(throws[more].lufs, loudestBefore - 0.5);
    loudestBefore = std::max(loudestBefore, throws[more].lufs);
  }
}

}  // namespace

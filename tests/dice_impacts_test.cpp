// What a listener tells apart in the throws of one to five dice: the impacts heard, how far
// they spread, and how loud the throw is. The impact detector is first checked on knocks
// placed at known moments, so the dice can't pass on a detector that hears nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "file_names.h"
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
    std::vector<double> heardDb = {};  // against the first heard, where it is checked
  } kCases[] = {
      {"silence", {}, kNone, {}},
      {"knocks apart, loud and soft",
       {{0.1, -6}, {0.3, -12}, {0.5, -26}, {0.8, -36}},
       kNone,
       {0.1, 0.3, 0.5, 0.8},
       0,
       {0, -6, -20, -30}},
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
    const auto impacts =
        quorble::impacts::Impacts(Render(test.knocks, test.noiseDb, test.flutterHz), kRate);
    ASSERT_EQ(impacts.size(), test.heardAt.size());
    for (size_t i = 0; i < impacts.size(); ++i) {
      EXPECT_NEAR(impacts[i].seconds, test.heardAt[i], 0.004);
      if (i < test.heardDb.size()) {
        EXPECT_NEAR(impacts[i].db - impacts[0].db, test.heardDb[i], 1.5);  // framing
      }
    }
  }
}

// What a player hears of one throw.
struct Throw {
  double seconds = 0;
  size_t impacts = 0;          // all the detector hears
  std::vector<double> knocks;  // when the knocks within 10 dB of the loudest begin
  bool knocksLast = false;     // nothing else is heard once the first of them has come
  double softestKnockDb = 0;   // against the loudest
  double loudestOtherDb = -200;
  double tailSeconds = 0;  // after the last moment within 20 dB of the loudest
  double longestQuietSeconds = 0;
  double lufs = 0;
  double peakDbfs = 0;
};

// Inside the throw, the longest stretch of 5 ms frames below -60 dB (a pause, heard as a
// stutter); at its end, the stretch more than 20 dB below its loudest frame.
void MeasureQuiet(const std::vector<double>& signal, Throw& heard) {
  quorble::impacts::Settings frames;
  frames.frameSeconds = 0.005;
  const auto energies = quorble::impacts::FrameEnergiesDb(signal, kRate, frames);
  const double loudest = *std::max_element(energies.begin(), energies.end());
  int run = 0, longest = 0;
  for (double db : energies) {
    if (db >= -60) longest = std::max(longest, run);
    run = db < -60 ? run + 1 : 0;
  }
  heard.longestQuietSeconds = longest * 0.005;
  const auto lastLoud = std::find_if(energies.rbegin(), energies.rend(),
                                     [&](double db) { return db >= loudest - 20; });
  heard.tailSeconds = static_cast<double>(lastLoud - energies.rbegin()) * 0.005;
}

Throw Hear(const std::vector<double>& signal) {
  Throw heard;
  heard.seconds = static_cast<double>(signal.size()) / kRate;
  const auto impacts = quorble::impacts::Impacts(signal, kRate);
  heard.impacts = impacts.size();
  double loudest = -200;
  for (const auto& impact : impacts) loudest = std::max(loudest, impact.db);
  heard.knocksLast = true;
  for (const auto& impact : impacts) {
    if (impact.db >= loudest - 10) {
      heard.knocks.push_back(impact.seconds);
      heard.softestKnockDb = std::min(heard.softestKnockDb, impact.db - loudest);
    } else {
      heard.loudestOtherDb = std::max(heard.loudestOtherDb, impact.db - loudest);
      heard.knocksLast = heard.knocksLast && heard.knocks.empty();
    }
  }
  MeasureQuiet(signal, heard);
  heard.lufs = quorble::loudness::IntegratedLoudness(signal, kRate);
  double peak = 0;
  for (double value : signal) peak = std::max(peak, std::abs(value));
  heard.peakDbfs = 20 * std::log10(peak);
  return heard;
}

double ClosestKnocks(const std::vector<double>& knocks) {
  double closest = 1e9;
  for (size_t i = 1; i < knocks.size(); ++i) closest = std::min(closest, knocks[i] - knocks[i - 1]);
  return closest;
}

// A player counts the dice thrown by their final knocks: one per die, each clearly audible
// beside the loudest, far enough apart to be told apart, with nothing heard among them and
// every other sound of the throw well below them. The throw is one continuous sound (a pause
// inside it is heard as a stutter) and ends soon after its last knock. The figures are printed
// as the README's table.
TEST(DiceSamples, EachDieIsHeardAsOneKnock) {
  std::ostringstream table;
  table << std::fixed << std::setprecision(1);
  table << "| dice | length | impacts heard | knocks | closest knocks | softest knock | "
           "loudest other sound | quiet tail | loudness | peak |\n"
           "|---|---|---|---|---|---|---|---|---|---|\n";
  for (int dice = 1; dice <= 5; ++dice) {
    SCOPED_TRACE(dice);
    const Throw heard = Hear(quorble::sample_files::Values(dice));
    table << "| " << dice << " | " << std::lround(heard.seconds * 1000) << " ms | " << heard.impacts
          << " | " << heard.knocks.size() << " | "
          << (dice > 1 ? std::to_string(std::lround(ClosestKnocks(heard.knocks) * 1000)) + " ms"
                       : "-")
          << " | " << std::lround(heard.softestKnockDb) << " dB | "
          << std::lround(heard.loudestOtherDb) << " dB | " << std::lround(heard.tailSeconds * 1000)
          << " ms | " << heard.lufs << " LUFS | " << heard.peakDbfs << " dBFS |\n";
    EXPECT_EQ(heard.knocks.size(), static_cast<size_t>(dice));
    EXPECT_TRUE(heard.knocksLast);
    EXPECT_GE(ClosestKnocks(heard.knocks), 0.06);
    EXPECT_LE(heard.loudestOtherDb, -15.0);
    EXPECT_LE(heard.tailSeconds, 0.15);
    EXPECT_LE(heard.longestQuietSeconds, 0.03);
  }
  std::cout << table.str();
}

// The game plays the five-dice throw from byte 40000 of its sound data on as a start-up sound
// of its own: it must begin in silence and hold one die's knock.
TEST(DiceSamples, FiveDiceTailIsOneKnock) {
  const auto samples = quorble::sample_files::Values(5);
  const auto tailStart = static_cast<size_t>(quorble::file_names::kSettlingTailOffset / 2);
  ASSERT_GT(samples.size(), tailStart + static_cast<size_t>(kRate / 10));
  const std::vector<double> tail(samples.begin() + static_cast<std::ptrdiff_t>(tailStart),
                                 samples.end());
  for (int i = 0; i < 3; ++i) EXPECT_LT(std::abs(tail[static_cast<size_t>(i)]), 0.01) << i;
  EXPECT_EQ(Hear(tail).knocks.size(), 1u);
}

}  // namespace

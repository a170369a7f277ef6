// The impacts a listener hears in a mono signal: the moments where its energy, weighted as
// the ear weighs it, jumps well above what it was just before. Impacts closer together than
// the ear can part fuse into one, and those far below the loudest moment are lost.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "loudness.h"

namespace quorble::impacts {

struct Settings {
  double frameSeconds = 0.003;  // short enough to place a knock within a few ms
  double pastSeconds = 0.03;    // the stretch a new frame is heard against
  double riseDb = 6.0;          // a jump this large over that stretch stands out as a new hit
  double minGapSeconds = 0.04;  // closer hits fuse into one to the ear
  double floorDb = -35.0;       // frames this far below the loudest are not heard beside it
};

// The energy of each frame in dB (of mean square, K-weighted), -200 for a silent frame.
inline std::vector<double> FrameEnergiesDb(const std::vector<double>& signal, double rate,
                                           const Settings& settings) {
  const std::vector<double> weighted = loudness::KWeighted(signal, rate);
  const auto frame = std::max<size_t>(1, static_cast<size_t>(settings.frameSeconds * rate));
  std::vector<double> energies;
  for (size_t start = 0; start + frame <= weighted.size(); start += frame) {
    double sum = 0;
    for (size_t i = start; i < start + frame; ++i) sum += weighted[i] * weighted[i];
    const double mean = sum / static_cast<double>(frame);
    energies.push_back(mean > 1e-20 ? 10.0 * std::log10(mean) : -200.0);
  }
  return energies;
}

// The mean power, in dB, of the `past` frames before `frame`: what a new frame is heard against.
inline double PastDb(const std::vector<double>& energies, size_t frame, size_t past) {
  double power = 0;
  for (size_t i = frame > past ? frame - past : 0; i < frame; ++i) {
    power += std::pow(10.0, energies[i] / 10.0);
  }
  power /= static_cast<double>(past);
  return power > 1e-20 ? 10.0 * std::log10(power) : -200.0;
}

struct Impact {
  double seconds;  // where it begins
  double db;       // its loudest frame before the next could begin, as FrameEnergiesDb gives it
};

// The impacts heard, in order.
inline std::vector<Impact> Impacts(const std::vector<double>& signal, double rate,
                                   const Settings& settings = {}) {
  const std::vector<double> energies = FrameEnergiesDb(signal, rate, settings);
  if (energies.empty()) return {};
  const double loudest = *std::max_element(energies.begin(), energies.end());
  const double frameSeconds = std::floor(settings.frameSeconds * rate) / rate;
  const auto past = std::max<size_t>(1, static_cast<size_t>(settings.pastSeconds / frameSeconds));
  const auto fused =
      std::max<size_t>(1, static_cast<size_t>(settings.minGapSeconds / frameSeconds));
  std::vector<Impact> impacts;
  for (size_t frame = 0; frame < energies.size(); ++frame) {
    const double at = static_cast<double>(frame) * frameSeconds;
    const bool audible = energies[frame] >= loudest + settings.floorDb;
    const bool rises = energies[frame] - PastDb(energies, frame, past) >= settings.riseDb;
    const bool apart = impacts.empty() || at - impacts.back().seconds >= settings.minGapSeconds;
    if (!(audible && rises && apart)) continue;
    const auto end =
        energies.begin() + static_cast<std::ptrdiff_t>(std::min(energies.size(), frame + fused));
    impacts.push_back(
        {at, *std::max_element(energies.begin() + static_cast<std::ptrdiff_t>(frame), end)});
  }
  return impacts;
}

}  // namespace quorble::impacts

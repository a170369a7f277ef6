// Integrated loudness of a mono signal in LUFS (ITU-R BS.1770): K-weighted,
// in 400 ms blocks overlapping by three quarters, gated at -70 LUFS and
// then 10 LU below the ungated mean. A sound shorter than one block is
// measured as one block of its own length.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace quorble::loudness {

// A biquad in direct form I, with coefficients normalised by a0.
struct Biquad {
  double b0, b1, b2, a1, a2;
  double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
  double Process(double x) {
    const double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
    x2 = x1, x1 = x, y2 = y1, y1 = y;
    return y;
  }
};

// The two stages of the K-weighting, derived for any sample rate: a high
// shelf of +4 dB above about 1.7 kHz, then a high pass near 38 Hz.
inline std::vector<double> KWeighted(const std::vector<double>& signal, double rate) {
  const double shelfK = std::tan(std::numbers::pi * 1681.974450955533 / rate);
  const double shelfQ = 0.7071752369554196;
  const double vh = std::pow(10.0, 3.999843853973347 / 20.0);
  const double vb = std::pow(vh, 0.4996667741545416);
  const double a0 = 1.0 + shelfK / shelfQ + shelfK * shelfK;
  Biquad shelf{(vh + vb * shelfK / shelfQ + shelfK * shelfK) / a0,
               2.0 * (shelfK * shelfK - vh) / a0,
               (vh - vb * shelfK / shelfQ + shelfK * shelfK) / a0,
               2.0 * (shelfK * shelfK - 1.0) / a0, (1.0 - shelfK / shelfQ + shelfK * shelfK) / a0};
  const double passK = std::tan(std::numbers::pi * 38.13547087602444 / rate);
  const double passQ = 0.5003270373238773;
  const double p0 = 1.0 + passK / passQ + passK * passK;
  Biquad pass{1.0, -2.0, 1.0, 2.0 * (passK * passK - 1.0) / p0,
              (1.0 - passK / passQ + passK * passK) / p0};
  std::vector<double> out(signal.size());
  for (size_t i = 0; i < signal.size(); ++i) out[i] = pass.Process(shelf.Process(signal[i]));
  return out;
}

inline double Lufs(double meanSquare) { return -0.691 + 10.0 * std::log10(meanSquare); }

inline double IntegratedLoudness(const std::vector<double>& signal, double rate) {
  const std::vector<double> weighted = KWeighted(signal, rate);
  const size_t block = std::min(weighted.size(), static_cast<size_t>(0.4 * rate));
  const size_t step = std::max<size_t>(1, block / 4);
  std::vector<double> blocks;
  for (size_t start = 0; block > 0 && start + block <= weighted.size(); start += step) {
    double sum = 0;
    for (size_t i = start; i < start + block; ++i) sum += weighted[i] * weighted[i];
    blocks.push_back(sum / static_cast<double>(block));
  }
  const auto gatedMean = [&](double gate) {
    double sum = 0;
    int count = 0;
    for (double power : blocks) {
      if (power > 0 && Lufs(power) > gate) sum += power, ++count;
    }
    return count == 0 ? 0.0 : sum / count;
  };
  const double ungated = gatedMean(-70.0);
  if (ungated <= 0) return -70.0;
  return Lufs(gatedMean(Lufs(ungated) - 10.0));
}

}  // namespace quorble::loudness

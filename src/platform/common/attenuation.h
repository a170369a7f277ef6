// A sound buffer's volume and pan come in hundredths of a decibel below
// full, as the game's sound interface has them; the mixers want gains.
#pragma once

#include <cmath>

namespace quorble {

inline constexpr int kQuietest = -10000;  // hundredths of a decibel: silence

inline float Attenuation(int hundredthsOfDecibel) {
  if (hundredthsOfDecibel <= kQuietest) return 0.0f;
  return static_cast<float>(std::pow(10.0, hundredthsOfDecibel / 2000.0));
}

struct StereoGains {
  float left;
  float right;
};

// A pan takes its hundredths of a decibel off the other side only.
inline StereoGains GainsFor(int volume, int pan) {
  const float level = Attenuation(volume);
  return {level * Attenuation(pan > 0 ? -pan : 0), level * Attenuation(pan < 0 ? pan : 0)};
}

}  // namespace quorble

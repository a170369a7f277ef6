// The samples are WAV files the build makes, but a player may put any file
// in their place: what can't be read plays as silence.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace quorble::web {

struct WavSound {
  int rate = 0;
  int channels = 0;
  int frameBytes = 0;         // bytes of one frame in the file, for byte positions
  std::vector<float> frames;  // interleaved, -1 to 1
};

// Integer PCM of 8, 16, 24 or 32 bits, one or two channels; nothing for any
// other file.
std::optional<WavSound> ReadWav(std::string_view bytes);

}  // namespace quorble::web

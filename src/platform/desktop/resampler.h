// Rate conversion of high quality, through libsamplerate: whole samples
// converted once before they play, and speech converted as it streams in.
#pragma once

#include <samplerate.h>

#include <memory>
#include <vector>

namespace quorble::desktop {

// `interleaved` frames of `channels` at `fromRate`, returned at `toRate`
// with the same channels. Empty in, or a failure, gives empty out.
std::vector<float> ResampleWhole(const std::vector<float>& interleaved, int channels, int fromRate,
                                 int toRate);

// Mono, chunk by chunk, keeping its filter state between chunks so that a
// text split into many chunks converts as one.
class StreamResampler {
 public:
  StreamResampler();
  void SetRates(int fromRate, int toRate);
  // Appends the converted frames of `count` input frames to `out`.
  void Convert(const float* in, long count, std::vector<float>& out);
  // Appends what the filter still holds, and starts afresh for the next text.
  void Finish(std::vector<float>& out);
  void Reset();

 private:
  void Process(const float* in, long count, bool last, std::vector<float>& out);

  struct Free {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };
  std::unique_ptr<SRC_STATE, Free> state_;
  double ratio_ = 1.0;
};

}  // namespace quorble::desktop

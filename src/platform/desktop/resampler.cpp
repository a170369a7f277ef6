#include "platform/desktop/resampler.h"

#include <cmath>

namespace quorble::desktop {
namespace {

// Over 120 dB of signal to noise, at a cost that converts a two-second
// sample in a few milliseconds.
constexpr int kQuality = SRC_SINC_MEDIUM_QUALITY;
constexpr long kOutputChunkFrames = 4096;

}  // namespace

std::vector<float> ResampleWhole(const std::vector<float>& interleaved, int channels, int fromRate,
                                 int toRate) {
  if (interleaved.empty() || channels <= 0 || fromRate <= 0 || toRate <= 0) return {};
  const long frames = static_cast<long>(interleaved.size()) / channels;
  const double ratio = static_cast<double>(toRate) / fromRate;
  const auto width = static_cast<size_t>(channels);
  std::vector<float> out(static_cast<size_t>(std::ceil(static_cast<double>(frames) * ratio) + 16) *
                         width);
  SRC_DATA data{};
  data.data_in = interleaved.data();
  data.input_frames = frames;
  data.data_out = out.data();
  data.output_frames = static_cast<long>(out.size()) / channels;
  data.src_ratio = ratio;
  if (src_simple(&data, kQuality, channels) != 0) return {};
  out.resize(static_cast<size_t>(data.output_frames_gen) * width);
  return out;
}

StreamResampler::StreamResampler() {
  int error = 0;
  state_.reset(src_new(kQuality, 1, &error));
}

void StreamResampler::SetRates(int fromRate, int toRate) {
  ratio_ = static_cast<double>(toRate) / fromRate;
  Reset();
}

void StreamResampler::Reset() {
  if (state_) src_reset(state_.get());
}

void StreamResampler::Convert(const float* in, long count, std::vector<float>& out) {
  Process(in, count, false, out);
}

void StreamResampler::Finish(std::vector<float>& out) {
  Process(nullptr, 0, true, out);
  Reset();
}

void StreamResampler::Process(const float* in, long count, bool last, std::vector<float>& out) {
  if (!state_) return;
  std::vector<float> chunk(kOutputChunkFrames);
  SRC_DATA data{};
  data.src_ratio = ratio_;
  data.end_of_input = last ? 1 : 0;
  while (true) {
    data.data_in = in;
    data.input_frames = count;
    data.data_out = chunk.data();
    data.output_frames = kOutputChunkFrames;
    if (src_process(state_.get(), &data) != 0) return;
    out.insert(out.end(), chunk.begin(), chunk.begin() + data.output_frames_gen);
    in += data.input_frames_used;
    count -= data.input_frames_used;
    // Done once all input is taken and the filter gives nothing more.
    if (count <= 0 && data.output_frames_gen == 0) return;
    if (count <= 0 && !last && data.output_frames_gen < kOutputChunkFrames) return;
  }
}

}  // namespace quorble::desktop

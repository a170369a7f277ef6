#include "platform/desktop/sample_voice.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/desktop/resampler.h"
#include "platform/desktop/sdl_handles.h"

namespace quorble::desktop {
namespace {

constexpr int kMinRate = 100;
constexpr int kMaxRate = 200000;
// 10 ms: short enough not to be heard as a fade, long enough not to click.
constexpr int kFadeFrames = kMixRate / 100;

int FrameBytes(const SDL_AudioSpec& format) {
  return std::max(1, SDL_AUDIO_BITSIZE(format.format) / 8 * std::max<int>(1, format.channels));
}

// The file's frames as floats, folded to mono or stereo; empty when SDL
// can't convert the format.
std::vector<float> ToFloat(const std::vector<Uint8>& bytes, const SDL_AudioSpec& format,
                           int channels) {
  const size_t whole = bytes.size() - bytes.size() % static_cast<size_t>(FrameBytes(format));
  if (whole == 0 || format.freq <= 0) return {};
  SDL_AudioCVT cvt;
  if (SDL_BuildAudioCVT(&cvt, format.format, format.channels, format.freq, AUDIO_F32SYS,
                        static_cast<Uint8>(channels), format.freq) < 0) {
    return {};
  }
  cvt.len = static_cast<int>(whole);
  std::vector<Uint8> work(whole * static_cast<size_t>(std::max(1, cvt.len_mult)));
  std::memcpy(work.data(), bytes.data(), whole);
  cvt.buf = work.data();
  if (SDL_ConvertAudio(&cvt) != 0) return {};
  std::vector<float> floats(static_cast<size_t>(cvt.len_cvt) / sizeof(float));
  std::memcpy(floats.data(), work.data(), floats.size() * sizeof(float));
  return floats;
}

}  // namespace

SampleVoice::SampleVoice(const std::vector<Uint8>& bytes, const SDL_AudioSpec& format)
    : channels_(format.channels >= 2 ? 2 : 1),
      fileRate_(format.freq),
      frameBytes_(FrameBytes(format)) {
  source_ = ToFloat(bytes, format, channels_);
}

int SampleVoice::PlayRate(int hz) const {
  return hz == 0 ? fileRate_ : std::clamp(hz, kMinRate, kMaxRate);
}

std::vector<float> SampleVoice::ConvertFor(int hz) const {
  const int rate = PlayRate(hz);
  if (rate == kMixRate) return source_;
  return ResampleWhole(source_, channels_, rate, kMixRate);
}

void SampleVoice::UseConverted(std::vector<float>& converted, int hz) {
  const int rate = PlayRate(hz);
  if (convertedRate_ != 0) fileFrame_ = position_ * static_cast<size_t>(convertedRate_) / kMixRate;
  converted_.swap(converted);
  convertedRate_ = std::max(1, rate);
  position_ = std::min(Frames(), fileFrame_ * kMixRate / static_cast<size_t>(convertedRate_));
}

void SampleVoice::SetRate(int hz) {
  if (HasConversion() && PlayRate(hz) == convertedRate_) return;
  std::vector<float> converted = ConvertFor(hz);
  UseConverted(converted, hz);
}

void SampleVoice::SetPosition(int byteOffset) {
  fileFrame_ = static_cast<size_t>(std::max(0, byteOffset)) / static_cast<size_t>(frameBytes_);
  const int rate = convertedRate_ != 0 ? convertedRate_ : kMixRate;
  position_ = std::min(Frames(), fileFrame_ * kMixRate / static_cast<size_t>(rate));
}

void SampleVoice::SetGains(float left, float right) {
  left_ = left;
  right_ = right;
}

void SampleVoice::Play(bool looping) {
  looping_ = looping;
  if (playing_ || Frames() == 0) return;
  if (position_ >= Frames()) {
    if (!looping) return;
    position_ = 0;
  }
  playing_ = true;
  // A loop may start anywhere in its wave; a sample played once starts
  // from its own silence and needs no fade.
  fadeInLeft_ = looping ? kFadeFrames : 0;
  fadeOutLeft_ = 0;
}

void SampleVoice::Stop() {
  if (playing_) fadeOutLeft_ = kFadeFrames;
  playing_ = false;
}

float SampleVoice::Envelope() {
  float gain = 1.0f;
  if (fadeInLeft_ > 0) gain *= 1.0f - static_cast<float>(fadeInLeft_--) / kFadeFrames;
  if (fadeOutLeft_ > 0) gain *= static_cast<float>(--fadeOutLeft_) / kFadeFrames;
  return gain;
}

bool SampleVoice::MixInto(float* mix, int frames) {
  if (!Audible()) return false;
  const bool fadingOut = !playing_;
  const size_t end = Frames();
  for (int frame = 0; frame < frames; ++frame) {
    if (position_ >= end) {
      if (!looping_ || end == 0) break;
      position_ = 0;
    }
    const float gain = Envelope();
    const float* in = converted_.data() + position_ * static_cast<size_t>(channels_);
    mix[2 * frame] += in[0] * left_ * gain;
    mix[2 * frame + 1] += in[channels_ - 1] * right_ * gain;
    ++position_;
    if (fadingOut && fadeOutLeft_ == 0) return false;
  }
  if (fadingOut || looping_ || position_ < end) return false;
  playing_ = false;
  fadeOutLeft_ = 0;
  position_ = 0;  // so that a later Play sounds the whole sample again
  return true;
}

}  // namespace quorble::desktop

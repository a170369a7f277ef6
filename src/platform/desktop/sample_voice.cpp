#include "platform/desktop/sample_voice.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorble::desktop {
namespace {

constexpr int kMinRate = 100;
constexpr int kMaxRate = 200000;
constexpr size_t kFeedFrames = 1024;
// Enough silence after a sample's end to push all of it through the
// resampler; what comes out beyond the sample is never mixed.
constexpr long kTailPaddingFrames = 2048;

int FrameBytes(const SDL_AudioSpec& format) {
  return std::max(1, SDL_AUDIO_BITSIZE(format.format) / 8 * std::max<int>(1, format.channels));
}

}  // namespace

SampleVoice::SampleVoice(std::vector<Uint8> bytes, const SDL_AudioSpec& format)
    : bytes_(std::move(bytes)),
      format_(format.format),
      channels_(std::max<int>(1, format.channels)),
      fileRate_(format.freq),
      frameBytes_(FrameBytes(format)),
      end_(bytes_.size() - bytes_.size() % static_cast<size_t>(frameBytes_)),
      rate_(format.freq) {}

void SampleVoice::SetPosition(int byteOffset) {
  const size_t wanted = static_cast<size_t>(std::max(0, byteOffset));
  position_ = std::min(wanted - wanted % static_cast<size_t>(frameBytes_), end_);
  Restart();
}

void SampleVoice::SetRate(int hz) {
  const int rate = hz == 0 ? fileRate_ : std::clamp(hz, kMinRate, kMaxRate);
  if (rate == rate_) return;
  rate_ = rate;
  stream_.reset();
  Restart();
}

void SampleVoice::SetGains(float left, float right) {
  left_ = left;
  right_ = right;
}

void SampleVoice::Play(bool looping) {
  looping_ = looping;
  if (playing_ || end_ == 0) return;
  if (position_ >= end_) {
    if (!looping) return;
    position_ = 0;
  }
  playing_ = true;
  Restart();
}

void SampleVoice::Stop() {
  playing_ = false;
  Restart();
}

void SampleVoice::Restart() {
  if (stream_) SDL_AudioStreamClear(stream_.get());
  owedFrames_ = 0;
  flushed_ = false;
}

bool SampleVoice::MixInto(float* mix, int frames, std::vector<float>& scratch) {
  if (!playing_) return false;
  if (!stream_) stream_ = NewStreamToMix(format_, channels_, rate_);
  if (!stream_) {
    playing_ = false;
    return true;
  }
  const int wantedBytes = frames * kMixFrameBytes;
  Feed(wantedBytes);
  scratch.resize(static_cast<size_t>(frames) * kMixChannels);
  const int got = std::max(0, SDL_AudioStreamGet(stream_.get(), scratch.data(), wantedBytes));
  int audible = got / kMixFrameBytes;
  if (!looping_) audible = std::min(audible, static_cast<int>(std::ceil(owedFrames_)));
  owedFrames_ -= got / kMixFrameBytes;
  for (int frame = 0; frame < audible; ++frame) {
    mix[2 * frame] += scratch[2 * frame] * left_;
    mix[2 * frame + 1] += scratch[2 * frame + 1] * right_;
  }
  return RanOut();
}

void SampleVoice::Feed(int wantedBytes) {
  SDL_AudioStream* stream = stream_.get();
  while (SDL_AudioStreamAvailable(stream) < wantedBytes) {
    if (position_ >= end_) {
      if (looping_) {
        position_ = 0;
        continue;
      }
      if (!flushed_) {
        const long factor = std::max(1, (rate_ + kMixRate - 1) / kMixRate);
        PutSilence(stream, format_, channels_, kTailPaddingFrames * factor);
        SDL_AudioStreamFlush(stream);
      }
      flushed_ = true;
      return;
    }
    const size_t count = std::min(kFeedFrames * static_cast<size_t>(frameBytes_), end_ - position_);
    if (SDL_AudioStreamPut(stream, bytes_.data() + position_, static_cast<int>(count)) != 0) {
      looping_ = false;  // a stream that refuses data ends the sample
      position_ = end_;
      continue;
    }
    position_ += count;
    owedFrames_ += static_cast<double>(count / frameBytes_) * kMixRate / rate_;
  }
}

bool SampleVoice::RanOut() {
  const bool drained = owedFrames_ < 0.5 || SDL_AudioStreamAvailable(stream_.get()) == 0;
  if (looping_ || !flushed_ || !drained) return false;
  playing_ = false;
  position_ = 0;  // so that a later Play sounds the whole sample again
  Restart();
  return true;
}

}  // namespace quorble::desktop

#include "platform/web/web_sound.h"

#include <algorithm>

#include "platform/common/attenuation.h"
#include "platform/common/disk.h"
#include "platform/web/page_bridge.h"

namespace quorble::web {
namespace {

// What a file that can't be read plays as: nothing, at a plain rate.
constexpr int kSilentRate = 22050;
// No sample of ours comes near this; a larger file is no sample.
constexpr std::size_t kLargestSample = std::size_t{64} << 20;

WavSound Load(const std::string& path) {
  const auto bytes = disk::ReadFile(path, kLargestSample);
  auto sound = bytes ? ReadWav(*bytes) : std::nullopt;
  return sound ? std::move(*sound) : WavSound{kSilentRate, 1, 2, {}};
}

}  // namespace

std::unique_ptr<DirectSound8> WebDirectX8::DirectSoundCreate() {
  return std::make_unique<WebDirectSound8>();
}

std::unique_ptr<SoundBuffer> WebDirectSound8::CreateSoundBufferFromFile(const std::string& path,
                                                                        int) {
  return std::make_unique<WebSoundBuffer>(Load(path));
}

WebSoundBuffer::WebSoundBuffer(const WavSound& sound)
    : id_(quorble_sample_create(sound.frames.data(),
                                static_cast<int>(sound.frames.size()) / sound.channels,
                                sound.channels, sound.rate)),
      rate_(sound.rate),
      frameBytes_(sound.frameBytes) {}

WebSoundBuffer::~WebSoundBuffer() { quorble_sample_release(id_); }

void WebSoundBuffer::SetCurrentPosition(int bytes) {
  quorble_sample_position(id_, std::max(0, bytes) / frameBytes_);
}

void WebSoundBuffer::SetVolume(int volume) {
  volume_ = std::clamp(volume, kQuietest, 0);
  ApplyGains();
}

void WebSoundBuffer::SetPan(int pan) {
  pan_ = std::clamp(pan, kQuietest, -kQuietest);
  ApplyGains();
}

void WebSoundBuffer::SetFrequency(int hz) { quorble_sample_rate(id_, hz); }

void WebSoundBuffer::Play(int flags) { quorble_sample_play(id_, flags & DSBPLAY_LOOPING); }

int WebSoundBuffer::GetStatus() { return quorble_sample_playing(id_) ? DSBSTATUS_PLAYING : 0; }

void WebSoundBuffer::Stop() { quorble_sample_stop(id_); }

void WebSoundBuffer::ApplyGains() {
  const StereoGains gains = GainsFor(volume_, pan_);
  quorble_sample_gains(id_, gains.left, gains.right);
}

}  // namespace quorble::web

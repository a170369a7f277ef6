#include "platform/desktop/sound.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/common/attenuation.h"

namespace quorble::desktop {
namespace {

constexpr int kSilentRate = 22050;

// The file's bytes in its own format, or none in a plain format when the
// file is missing or unreadable.
std::shared_ptr<SampleVoice> LoadWav(const std::string& path) {
  SDL_AudioSpec format{};
  Uint8* raw = nullptr;
  Uint32 length = 0;
  if (SDL_LoadWAV(path.c_str(), &format, &raw, &length) != nullptr) {
    WavBytes owned(raw);
    return std::make_shared<SampleVoice>(std::vector<Uint8>(raw, raw + length), format);
  }
  SDL_AudioSpec silent{};
  silent.freq = kSilentRate;
  silent.format = AUDIO_S16SYS;
  silent.channels = 1;
  return std::make_shared<SampleVoice>(std::vector<Uint8>{}, silent);
}

}  // namespace

std::unique_ptr<DirectSound8> DesktopDirectX8::DirectSoundCreate() {
  return std::make_unique<DesktopDirectSound8>(mixer_);
}

std::unique_ptr<SoundBuffer> DesktopDirectSound8::CreateSoundBufferFromFile(const std::string& path,
                                                                            int) {
  return std::make_unique<DesktopSoundBuffer>(mixer_, LoadWav(path));
}

DesktopSoundBuffer::DesktopSoundBuffer(std::shared_ptr<Mixer> mixer,
                                       std::shared_ptr<SampleVoice> voice)
    : mixer_(std::move(mixer)), voice_(std::move(voice)) {
  mixer_->Attach(voice_);
}

DesktopSoundBuffer::~DesktopSoundBuffer() { mixer_->Detach(voice_.get()); }

void DesktopSoundBuffer::SetCurrentPosition(int bytes) {
  mixer_->Change([&] { voice_->SetPosition(bytes); });
}

void DesktopSoundBuffer::SetVolume(int volume) {
  volume_ = std::clamp(volume, kQuietest, 0);
  ApplyGains();
}

void DesktopSoundBuffer::SetPan(int pan) {
  pan_ = std::clamp(pan, kQuietest, -kQuietest);
  ApplyGains();
}

// The conversion is made here, on the game's thread, and only swapped in
// under the mixer's lock; the old one is freed on the way out.
void DesktopSoundBuffer::SetFrequency(int hz) {
  std::vector<float> converted = voice_->ConvertFor(hz);
  mixer_->Change([&] { voice_->UseConverted(converted, hz); });
}

void DesktopSoundBuffer::Play(int flags) {
  if (!mixer_->Ask([&] { return voice_->HasConversion(); })) SetFrequency(0);
  mixer_->Change([&] { voice_->Play((flags & DSBPLAY_LOOPING) != 0); });
}

int DesktopSoundBuffer::GetStatus() {
  return mixer_->Ask([&] { return voice_->Playing(); }) ? DSBSTATUS_PLAYING : 0;
}

void DesktopSoundBuffer::Stop() {
  mixer_->Change([&] { voice_->Stop(); });
}

void DesktopSoundBuffer::ApplyGains() {
  const StereoGains gains = GainsFor(volume_, pan_);
  mixer_->Change([&] { voice_->SetGains(gains.left, gains.right); });
}

}  // namespace quorble::desktop

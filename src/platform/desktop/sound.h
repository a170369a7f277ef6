// The sample objects the game plays through: each buffer is a SampleVoice
// attached to the platform's one mixer.
#pragma once

#include <memory>
#include <string>

#include "platform/desktop/mixer.h"
#include "platform/platform.h"

namespace quorble::desktop {

class DesktopDirectX8 final : public DirectX8 {
 public:
  explicit DesktopDirectX8(std::shared_ptr<Mixer> mixer) : mixer_(std::move(mixer)) {}
  std::unique_ptr<DirectSound8> DirectSoundCreate() override;

 private:
  const std::shared_ptr<Mixer> mixer_;
};

class DesktopDirectSound8 final : public DirectSound8 {
 public:
  explicit DesktopDirectSound8(std::shared_ptr<Mixer> mixer) : mixer_(std::move(mixer)) {}
  void SetCooperativeLevel(int) override {}
  std::unique_ptr<SoundBuffer> CreateSoundBufferFromFile(const std::string& path,
                                                         int flags) override;

 private:
  const std::shared_ptr<Mixer> mixer_;
};

class DesktopSoundBuffer final : public SoundBuffer {
 public:
  DesktopSoundBuffer(std::shared_ptr<Mixer> mixer, std::shared_ptr<SampleVoice> voice);
  ~DesktopSoundBuffer() override;
  DesktopSoundBuffer(const DesktopSoundBuffer&) = delete;
  DesktopSoundBuffer& operator=(const DesktopSoundBuffer&) = delete;

  int GetFrequency() override { return voice_->FileRate(); }
  void SetCurrentPosition(int bytes) override;
  void SetVolume(int volume) override;
  void SetPan(int pan) override;
  void SetFrequency(int hz) override;
  void Play(int flags) override;
  int GetStatus() override;
  void Stop() override;

 private:
  void ApplyGains();

  const std::shared_ptr<Mixer> mixer_;
  const std::shared_ptr<SampleVoice> voice_;
  int volume_ = 0;  // hundredths of a decibel below full
  int pan_ = 0;     // hundredths of a decibel taken off the other side
};

}  // namespace quorble::desktop

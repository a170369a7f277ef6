// The sample objects the game plays through: each buffer is a voice of the
// page's mixer, which runs in an AudioWorklet.
#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"
#include "platform/web/wav.h"

namespace quorble::web {

class WebDirectX8 final : public DirectX8 {
 public:
  std::unique_ptr<DirectSound8> DirectSoundCreate() override;
};

class WebDirectSound8 final : public DirectSound8 {
 public:
  void SetCooperativeLevel(int) override {}
  std::unique_ptr<SoundBuffer> CreateSoundBufferFromFile(const std::string& path,
                                                         int flags) override;
};

class WebSoundBuffer final : public SoundBuffer {
 public:
  explicit WebSoundBuffer(const WavSound& sound);
  ~WebSoundBuffer() override;
  WebSoundBuffer(const WebSoundBuffer&) = delete;
  WebSoundBuffer& operator=(const WebSoundBuffer&) = delete;

  int GetFrequency() override { return rate_; }
  void SetCurrentPosition(int bytes) override;
  void SetVolume(int volume) override;
  void SetPan(int pan) override;
  void SetFrequency(int hz) override;
  void Play(int flags) override;
  int GetStatus() override;
  void Stop() override;

 private:
  void ApplyGains();

  const int id_;
  const int rate_;
  const int frameBytes_;
  int volume_ = 0;  // hundredths of a decibel below full
  int pan_ = 0;     // hundredths of a decibel taken off the other side
};

}  // namespace quorble::web

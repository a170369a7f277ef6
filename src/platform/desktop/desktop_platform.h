// The platform on a Linux desktop: an SDL2 window that takes the keys,
// espeak-ng for speech and one SDL2 mixer for every sound. SDL's video and
// events must be initialised before it is made. With QUORBLE_TRACE=1 in
// the environment it writes each key and each text spoken to stderr.
// Speech may go through the player's speech-dispatcher instead; when that
// can't be reached the platform says so and speaks with espeak-ng.
#pragma once

#include <SDL.h>

#include <memory>
#include <string>

#include "platform/common/disk_platform.h"
#include "platform/common/rng.h"
#include "platform/desktop/mixer.h"
#include "platform/desktop/sdl_handles.h"
#include "platform/desktop/speech_dispatcher.h"
#include "platform/desktop/speech_espeak.h"
#include "platform/desktop/x_connection.h"
#include "platform/platform.h"

namespace quorble::desktop {

class DesktopPlatform final : public DiskPlatform {
 public:
  // Throws std::runtime_error when no window can be made.
  explicit DesktopPlatform(SpeechBackend speech = SpeechBackend::Espeak);
  ~DesktopPlatform() override;
  DesktopPlatform(const DesktopPlatform&) = delete;
  DesktopPlatform& operator=(const DesktopPlatform&) = delete;

  void Show(const std::string& caption) override;
  void Pump(WindowEvents& events) override;
  void WaitEvent(WaitFor what, double deadline) override;
  void MessageBox(const std::string& text) override;
  void Beep() override;

  double Monotonic() override;
  double Timer() override;
  Date Today() override;
  void Randomize(double seed) override;
  float Rnd() override;

  std::unique_ptr<SpeechVoice> NewSpVoice() override;
  std::unique_ptr<DirectX8> NewDirectX8() override;

  std::string DocumentsFolder() override;
  std::string CurrentDirectory() override;
  std::string ProgramFolder() override;
  void Launch(const std::string& path, int windowStyle) override;

  // The X connection is gone; nothing of the window can be undone then.
  bool DisplayLost() const { return xConnection_.Lost(); }

  // For measurements of the sound path.
  Mixer& AudioMixer() { return *mixer_; }
  // False when the speech engine offers no voice, and the game could only
  // say so in a box and leave.
  bool HasVoices() const {
    return (dispatcher_ ? dispatcher_->VoiceCount() : speech_->VoiceCount()) > 0;
  }

 private:
  void PaintBlack();
  void StartSpeech(SpeechBackend backend);

  const bool trace_;  // keys and speech to stderr, for tests that can't listen
  const Uint32 wakeEvent_;
  Window window_;
  XConnectionWatch xConnection_;
  bool lossReported_ = false;
  std::shared_ptr<Mixer> mixer_;
  std::shared_ptr<SpeechEngine> speech_;              // the embedded engine, when it speaks
  std::shared_ptr<DispatcherConnection> dispatcher_;  // or the player's daemon
  Rng random_;
  const std::string programFolder_;
};

}  // namespace quorble::desktop

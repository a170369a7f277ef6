// The platform on a Linux desktop: an SDL2 window that takes the keys,
// espeak-ng for speech and one SDL2 mixer for every sound. SDL's video and
// events must be initialised before it is made. With QUORBLE_TRACE=1 in
// the environment it writes each key and each text spoken to stderr.
#pragma once

#include <SDL.h>

#include <memory>
#include <random>
#include <string>

#include "platform/desktop/mixer.h"
#include "platform/desktop/sdl_handles.h"
#include "platform/desktop/speech_espeak.h"
#include "platform/platform.h"

namespace quorble::desktop {

class DesktopPlatform final : public Platform {
 public:
  DesktopPlatform();  // throws std::runtime_error when no window can be made
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
  std::string FindName(const std::string& path, bool directories) override;
  bool MakeDirectory(const std::string& path) override;
  bool DeleteFile(const std::string& path) override;
  bool RenameFile(const std::string& from, const std::string& to) override;
  std::optional<std::string> ReadFile(const std::string& path) override;
  bool WriteFile(const std::string& path, const std::string& bytes) override;
  bool AppendFile(const std::string& path, const std::string& bytes) override;
  void Launch(const std::string& path, int windowStyle) override;

  // For measurements of the sound path.
  Mixer& AudioMixer() { return *mixer_; }

 private:
  void PaintBlack();

  const bool trace_;  // keys and speech to stderr, for tests that can't listen
  const Uint32 wakeEvent_;
  Window window_;
  std::shared_ptr<Mixer> mixer_;
  std::shared_ptr<SpeechEngine> speech_;
  std::mt19937 random_;
};

}  // namespace quorble::desktop

// Owners for the SDL handles the desktop platform keeps.
#pragma once

#include <SDL.h>

#include <memory>

namespace quorble::desktop {

struct WindowDestroy {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
using Window = std::unique_ptr<SDL_Window, WindowDestroy>;

struct WavFree {
  void operator()(Uint8* bytes) const { SDL_FreeWAV(bytes); }
};
using WavBytes = std::unique_ptr<Uint8, WavFree>;

// The audio subsystem, and on it at most one device calling back from
// SDL's audio thread. The device can be closed and opened again, so that
// nothing runs while nothing sounds.
class AudioDevice {
 public:
  explicit AudioDevice(const SDL_AudioSpec& wanted) : wanted_(wanted) {
    // On a desktop an ordinary user's audio thread becomes realtime only
    // through rtkit, as the sound server's does; SDL asks it when told the
    // thread is ready for rtkit's time limit (a period's mix takes far less).
    SDL_SetHint(SDL_HINT_THREAD_FORCE_REALTIME_TIME_CRITICAL, "1");
    // Sound servers' volume controls list the game by its name.
    SDL_SetHint(SDL_HINT_AUDIO_DEVICE_APP_NAME, "Quorble");
    subsystem_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
  }
  ~AudioDevice() {
    Close();
    if (subsystem_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
  }
  AudioDevice(const AudioDevice&) = delete;
  AudioDevice& operator=(const AudioDevice&) = delete;

  bool IsOpen() const { return id_ != 0; }
  // Opens and starts the device; false when there is none to be had.
  bool Open() {
    if (id_ != 0) return true;
    if (!subsystem_) return false;
    id_ = SDL_OpenAudioDevice(nullptr, 0, &wanted_, nullptr, 0);
    if (id_ != 0) SDL_PauseAudioDevice(id_, 0);
    return id_ != 0;
  }
  // Waits for the callback in progress, if any: never call it holding a
  // lock that the callback takes.
  void Close() {
    if (id_ != 0) SDL_CloseAudioDevice(id_);
    id_ = 0;
  }

 private:
  const SDL_AudioSpec wanted_;
  bool subsystem_ = false;
  SDL_AudioDeviceID id_ = 0;
};

// The format everything is mixed in: what the device is opened with, and
// what every source is converted to on the way in.
inline constexpr int kMixRate = 44100;
inline constexpr int kMixChannels = 2;
inline constexpr SDL_AudioFormat kMixFormat = AUDIO_F32SYS;
inline constexpr int kMixFrameBytes = kMixChannels * static_cast<int>(sizeof(float));

}  // namespace quorble::desktop

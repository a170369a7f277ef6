// Owners for the SDL handles the desktop platform keeps.
#pragma once

#include <SDL.h>

#include <memory>
#include <vector>

namespace quorble::desktop {

struct AudioStreamFree {
  void operator()(SDL_AudioStream* stream) const { SDL_FreeAudioStream(stream); }
};
using AudioStream = std::unique_ptr<SDL_AudioStream, AudioStreamFree>;

struct WindowDestroy {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
using Window = std::unique_ptr<SDL_Window, WindowDestroy>;

struct WavFree {
  void operator()(Uint8* bytes) const { SDL_FreeWAV(bytes); }
};
using WavBytes = std::unique_ptr<Uint8, WavFree>;

// The audio subsystem with one device opened on it, calling back from
// SDL's audio thread; not open when there is no device to be had.
class AudioDevice {
 public:
  explicit AudioDevice(const SDL_AudioSpec& wanted) {
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
    subsystem_ = true;
    id_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
  }
  ~AudioDevice() {
    if (id_ != 0) SDL_CloseAudioDevice(id_);
    if (subsystem_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
  }
  AudioDevice(const AudioDevice&) = delete;
  AudioDevice& operator=(const AudioDevice&) = delete;

  bool IsOpen() const { return id_ != 0; }
  void Start() {
    if (id_ != 0) SDL_PauseAudioDevice(id_, 0);
  }

 private:
  bool subsystem_ = false;
  SDL_AudioDeviceID id_ = 0;
};

// The format everything is mixed in: what the device is opened with, and
// what every source is converted to on the way in.
inline constexpr int kMixRate = 44100;
inline constexpr int kMixChannels = 2;
inline constexpr SDL_AudioFormat kMixFormat = AUDIO_F32SYS;
inline constexpr int kMixFrameBytes = kMixChannels * static_cast<int>(sizeof(float));
// Short enough that a purge or a new text is heard within about 6 ms.
inline constexpr int kPeriodFrames = 256;

// A converter from `from` at `rate` into the mixing format; empty on failure.
inline AudioStream NewStreamToMix(SDL_AudioFormat from, int channels, int rate) {
  return AudioStream(SDL_NewAudioStream(from, static_cast<Uint8>(channels), rate, kMixFormat,
                                        kMixChannels, kMixRate));
}

}  // namespace quorble::desktop

namespace quorble::desktop {

// SDL 2's flush keeps back part of the resampler's padding, up to the last
// 512 frames put in or more, depending on how the data came: left alone it
// would cut the end off samples and texts. Silence put in after the real
// end lets it out.
inline void PutSilence(SDL_AudioStream* stream, SDL_AudioFormat format, int channels, long frames) {
  const int sampleBytes = SDL_AUDIO_BITSIZE(format) / 8;
  std::vector<Uint8> silence(static_cast<size_t>(frames * channels * sampleBytes), 0);
  if (!SDL_AUDIO_ISSIGNED(format) && !SDL_AUDIO_ISFLOAT(format)) {
    // Unsigned samples rest at their midpoint: 0x80 in the most significant byte.
    const size_t high = (sampleBytes == 1 || SDL_AUDIO_ISBIGENDIAN(format)) ? 0 : sampleBytes - 1;
    for (size_t at = high; at < silence.size(); at += sampleBytes) silence[at] = 0x80;
  }
  SDL_AudioStreamPut(stream, silence.data(), static_cast<int>(silence.size()));
}

}  // namespace quorble::desktop

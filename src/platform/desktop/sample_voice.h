// One loaded sample and where its playing has got to. The mixer sums it
// into each period; every call, from the game's thread or the mixer's,
// is made with the mixer's lock held.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <vector>

#include "platform/desktop/sdl_handles.h"

namespace quorble::desktop {

class SampleVoice {
 public:
  // `format` is the file's own: its sample format, channels and rate.
  SampleVoice(std::vector<Uint8> bytes, const SDL_AudioSpec& format);

  int FileRate() const { return fileRate_; }

  void SetPosition(int byteOffset);
  void SetRate(int hz);
  void SetGains(float left, float right);
  void Play(bool looping);
  void Stop();
  bool Playing() const { return playing_; }

  // Adds the next `frames` frames into `mix`. Returns true when a sample
  // playing once has just run out.
  bool MixInto(float* mix, int frames, std::vector<float>& scratch);

 private:
  void Restart();
  void Feed(int wantedBytes);
  bool RanOut();

  const std::vector<Uint8> bytes_;
  const SDL_AudioFormat format_;
  const int channels_;
  const int fileRate_;
  const int frameBytes_;
  const size_t end_;  // whole frames only
  int rate_;
  size_t position_ = 0;
  bool playing_ = false;
  bool looping_ = false;
  bool flushed_ = false;
  // Mixed frames still to come from the sample's own data, so that the
  // silence padding its end is never mixed and the end comes on time.
  double owedFrames_ = 0;
  float left_ = 1.0f;
  float right_ = 1.0f;
  AudioStream stream_;  // made again whenever the rate changes
};

}  // namespace quorble::desktop

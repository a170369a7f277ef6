// One loaded sample and where its playing has got to. It is converted to
// the mixing rate as a whole before it plays (ConvertFor, on the caller's
// thread, with no lock held), so that mixing it is a copy. Every other
// call, from the game's thread or the mixer's, is made with the mixer's
// lock held, and none of them allocates or frees.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <vector>

namespace quorble::desktop {

class SampleVoice {
 public:
  // `format` is the file's own: its sample format, channels and rate.
  SampleVoice(const std::vector<Uint8>& bytes, const SDL_AudioSpec& format);

  int FileRate() const { return fileRate_; }

  // The sample at the mixing rate when played at `hz` (0: the file's own
  // rate). Safe from any thread: it only reads what the constructor made.
  std::vector<float> ConvertFor(int hz) const;
  // Takes `converted` from ConvertFor(`hz`) and leaves the old conversion
  // in it, for the caller to free outside the lock.
  void UseConverted(std::vector<float>& converted, int hz);
  bool HasConversion() const { return convertedRate_ != 0; }
  // Both steps at once, for callers that hold no lock.
  void SetRate(int hz);

  void SetPosition(int byteOffset);
  void SetGains(float left, float right);
  void Play(bool looping);
  // Ends the sound with a short fade, so that it doesn't click.
  void Stop();
  // Ends it at once, fade and all.
  void Silence() {
    playing_ = false;
    fadeOutLeft_ = 0;
  }
  bool Playing() const { return playing_; }
  // Playing, or still fading out after a stop.
  bool Audible() const { return playing_ || fadeOutLeft_ > 0; }

  // Adds the next `frames` frames into `mix`. Returns true when a sample
  // playing once has just run out.
  bool MixInto(float* mix, int frames);

 private:
  int PlayRate(int hz) const;
  size_t Frames() const { return converted_.size() / static_cast<size_t>(channels_); }
  float Envelope();

  std::vector<float> source_;  // interleaved, at the file's rate
  int channels_ = 1;           // 1 or 2
  int fileRate_ = 0;
  int frameBytes_ = 1;  // of the file's own format
  std::vector<float> converted_;
  int convertedRate_ = 0;  // 0 until a conversion is in use
  size_t position_ = 0;    // in frames of the conversion
  size_t fileFrame_ = 0;   // the position as set, in frames of the file
  bool playing_ = false;
  bool looping_ = false;
  int fadeInLeft_ = 0;
  int fadeOutLeft_ = 0;
  float left_ = 1.0f;
  float right_ = 1.0f;
};

}  // namespace quorble::desktop

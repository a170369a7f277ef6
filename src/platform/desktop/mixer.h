// The one place sound comes out: speech, the samples and the beep are
// summed here, period by period, into one audio device. The device is
// closed after a second of silence, so that an idle game and its sound
// server sleep, and opened again when something must sound. Without any
// device a clock thread takes its place, so everything still takes its
// real time.
//
// The audio callback takes the mixer's lock only for copies: nothing is
// allocated or freed under it, and speech is held only a short lead ahead
// of what is heard, so a purge costs nothing.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/desktop/pi_mutex.h"
#include "platform/desktop/resampler.h"
#include "platform/desktop/sample_voice.h"
#include "platform/desktop/sdl_handles.h"

namespace quorble::desktop {

// Asks the sound server (PulseAudio's client library, which PipeWire's
// server speaks too) for the buffer the mixer is tuned to, unless the user
// asked for another. It sets the environment, so a program calls it before
// any thread starts; the mixer calls it again, which then changes nothing.
void AskSoundServerLatency();

// Frames per device period: QUORBLE_AUDIO_PERIOD when it holds a multiple
// of 32 from 64 to 4096 (for measurements), else the tuned default.
int PeriodFramesFromEnvironment();

class Mixer {
 public:
  using Notify = std::function<void()>;
  // Told after each period whether it held speech. For measurements only;
  // it runs on the audio thread under the mixer's lock, so it must be tiny.
  using PeriodObserver = std::function<void(bool speechHeard)>;
  // Device: a real device when there is one, else the clock thread.
  // Manual: nothing mixes unless MixPeriod is called, for tests.
  enum class Drive { Device, Manual };

  // `wake` runs on the audio thread whenever a sample playing once ends or
  // the speech runs out, so that a waiting game looks again.
  explicit Mixer(Notify wake, Drive drive = Drive::Device,
                 int periodFrames = PeriodFramesFromEnvironment());
  ~Mixer();
  Mixer(const Mixer&) = delete;
  Mixer& operator=(const Mixer&) = delete;

  // Whether sound goes to a device (open now or opened when needed).
  bool HasDevice() const { return usesDevice_; }
  bool DeviceOpen();

  // Speech arrives as 16-bit mono PCM, text after text, from one thread.
  // A push waits while the lead ahead of the listener is full. Each purge
  // starts a new generation, and PCM of an older one is refused (false),
  // so nothing synthesised before a purge can slip in after it.
  void SetSpeechRate(int hz);
  bool PushSpeech(const int16_t* pcm, int count, uint64_t generation);
  void EndSpeechText(uint64_t generation);
  void PurgeSpeech(uint64_t generation);
  bool SpeechBuffered();
  // `drained` runs on the audio thread each time the speech runs out.
  void SetSpeechDrained(Notify drained);

  void Beep();

  void Attach(std::shared_ptr<SampleVoice> voice);
  void Detach(const SampleVoice* voice);
  // Runs `change` on a voice under the mixer's lock.
  void Change(const std::function<void()>& change);
  bool Ask(const std::function<bool()>& question);

  void SetPeriodObserver(PeriodObserver observer);

  // Mixes the next `frames` stereo frames into `mix`, as the device's
  // callback does; tests drive it directly as their clock.
  void MixPeriod(float* mix, int frames);

 private:
  struct Attached {
    std::shared_ptr<SampleVoice> voice;
    bool released = false;  // kept only until its fade-out is over
  };

  static void SDLCALL OnDevice(void* mixer, Uint8* stream, int length);
  void MixChunk(float* mix, int frames, bool& sampleEnded, bool& speechRanOut);
  bool MixSpeech(float* mix, int frames);
  bool MixSamples(float* mix, int frames);
  void MixBeep(float* mix, int frames);
  bool SoundingLocked() const;
  bool BeepingLocked() const { return beepPosition_ < beep_.size(); }
  bool Deliver(const std::vector<float>& speech, uint64_t generation);
  void SweepReleased(std::vector<std::shared_ptr<SampleVoice>>& out);
  void SoundRequested();
  void EnsureDevice();
  void SilenceAllLocked();
  void KeepDevice();
  void CloseIfIdle();
  void Tell(bool sampleEnded, bool speechRanOut);
  void RunClock();

  const Notify wake_;
  const Drive drive_;
  const int periodFrames_;
  bool usesDevice_ = false;  // set before any other thread starts
  // The audio thread's own; set false before each opening starts a new one.
  bool realtimeTried_ = false;
  const std::vector<float> beep_;

  PiMutex mutex_;
  std::condition_variable_any clockWake_;
  Wakeup keeperWake_;
  Wakeup speechRoom_;
  // Speech at the mixing rate, mono, in a ring of fixed size.
  std::vector<float> speechRing_;
  size_t speechRead_ = 0;
  size_t speechCount_ = 0;
  uint64_t speechGeneration_ = 0;
  bool speechSounding_ = false;
  std::vector<Attached> voices_;  // capacity reserved; never grown under the lock
  size_t beepPosition_;
  PeriodObserver observer_;
  bool deviceOpen_ = false;
  long silentFrames_ = 0;
  bool pendingSampleEnd_ = false;
  bool pendingSpeechEnd_ = false;
  bool stopping_ = false;

  // The speech thread's own, used outside the lock.
  StreamResampler speechResampler_;
  std::vector<float> speechIn_;
  std::vector<float> speechOut_;

  // Apart from the lock above, so that the listener, once replaced, is
  // certain not to be running, and may take locks of its own.
  PiMutex listenerMutex_;
  Notify speechDrained_;

  // Opening and closing happen under this lock alone: closing waits for the
  // callback, which takes the mixer's lock.
  std::mutex deviceMutex_;
  // Last, so that no callback outlives the state above.
  std::optional<AudioDevice> device_;
  std::thread keeper_;
  std::thread clock_;
};

}  // namespace quorble::desktop

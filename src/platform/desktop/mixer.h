// The one place sound comes out: speech, the samples and the beep are
// summed here, period by period, into one audio device. Without a device
// a clock thread takes its place, so everything still takes its real time.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/desktop/sample_voice.h"
#include "platform/desktop/sdl_handles.h"

namespace quorble::desktop {

class Mixer {
 public:
  using Notify = std::function<void()>;
  // Told after each period whether it held speech. For measurements only;
  // it runs on the audio thread under the mixer's lock, so it must be tiny.
  using PeriodObserver = std::function<void(bool speechHeard)>;

  // `wake` runs on the audio thread whenever a sample playing once ends or
  // the speech runs out, so that a waiting game looks again.
  explicit Mixer(Notify wake);
  ~Mixer();
  Mixer(const Mixer&) = delete;
  Mixer& operator=(const Mixer&) = delete;

  bool HasDevice() const { return device_->IsOpen(); }

  // Speech arrives as 16-bit mono PCM, text after text. Each purge starts a
  // new generation, and PCM of an older one is refused (false), so nothing
  // synthesised before a purge can slip in after it.
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

 private:
  static void SDLCALL OnDevice(void* mixer, Uint8* stream, int length);
  void MixPeriod(float* mix, int frames);
  bool MixSpeech(float* mix, int frames);
  bool MixSamples(float* mix, int frames);
  void MixBeep(float* mix, int frames);
  bool SoundingLocked() const;
  bool BeepingLocked() const { return beepPosition_ < beep_.size(); }
  void RunClock();
  void KickClock();

  const Notify wake_;
  const std::vector<float> beep_;

  std::mutex mutex_;
  std::condition_variable clockWake_;
  std::condition_variable beepDone_;
  AudioStream speech_;
  uint64_t speechGeneration_ = 0;
  bool speechSounding_ = false;
  std::vector<std::shared_ptr<SampleVoice>> voices_;
  size_t beepPosition_;
  std::vector<float> scratch_;
  PeriodObserver observer_;
  bool stopping_ = false;

  // Apart from the lock above, so that the listener, once replaced, is
  // certain not to be running, and may take locks of its own.
  std::mutex listenerMutex_;
  Notify speechDrained_;

  // Last, so that no callback outlives the state above.
  std::optional<AudioDevice> device_;
  std::thread clock_;
};

}  // namespace quorble::desktop

// Speech through espeak-ng, linked in. The engine is not re-entrant, so one
// worker thread owns it; every voice object of the platform queues into
// that worker, and its PCM goes to the mixer like any other sound.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/common/espeak_voices.h"
#include "platform/desktop/mixer.h"
#include "platform/platform.h"

namespace quorble::desktop {

using espeak::EngineText;
using espeak::OutputGain;
using espeak::VoiceChoice;
using espeak::VoiceChoices;
using espeak::WordsPerMinute;

// `pcm` times `gain` into `out`, held within 16 bits rather than wrapping.
void Scale(std::span<const short> pcm, float gain, std::vector<int16_t>& out);

struct Utterance {
  std::string text;
  int voice = 0;
  int wordsPerMinute = 175;
  int volume = 100;
};

class SpeechEngine {
 public:
  // With `trace`, each text queued is written to stderr.
  SpeechEngine(std::shared_ptr<Mixer> mixer, bool trace);
  ~SpeechEngine();
  SpeechEngine(const SpeechEngine&) = delete;
  SpeechEngine& operator=(const SpeechEngine&) = delete;

  // 0 when the engine could not start or offers none of our voices.
  int VoiceCount() const { return static_cast<int>(voices_.size()); }
  void Queue(Utterance utterance);
  // Silences what sounds and forgets what is queued.
  void Purge();
  // Returns once everything queued has been heard.
  void WaitUntilHeard();
  bool Speaking();

 private:
  void Run();
  // The next text to say with its generation; none once stopping.
  std::optional<std::pair<Utterance, uint64_t>> NextText();
  bool Start();
  void Say(const Utterance& utterance, uint64_t generation);
  bool SpeakingLocked();
  void NotifyChanged();

  const std::shared_ptr<Mixer> mixer_;
  const bool trace_;
  std::vector<VoiceChoice> voices_;  // written by the worker before the constructor returns
  std::string currentVoice_;         // the worker's own

  std::mutex mutex_;
  std::condition_variable work_;
  std::condition_variable changed_;
  std::deque<Utterance> queue_;
  bool started_ = false;
  bool synthesising_ = false;
  bool stopping_ = false;
  uint64_t generation_ = 0;

  std::thread worker_;
};

class EspeakVoice final : public SpeechVoice {
 public:
  explicit EspeakVoice(std::shared_ptr<SpeechEngine> engine) : engine_(std::move(engine)) {}

  int VoiceCount() override { return engine_->VoiceCount(); }
  void SetVoice(int index) override;
  void SetRate(int rate) override { rate_ = rate; }
  void SetVolume(int volume) override;
  void Speak(const std::string& text, int flags) override;
  int RunningState() override { return engine_->Speaking() ? SRSEIsSpeaking : 1; }

 private:
  const std::shared_ptr<SpeechEngine> engine_;
  int voice_ = 0;
  int rate_ = 0;
  int volume_ = 100;
};

}  // namespace quorble::desktop

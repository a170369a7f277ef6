// Speech in the browser: the embedded espeak-ng, running in a worker of
// the page and heard through the page's mixer, or the player's own voices
// through the browser's speech synthesis. Either way every voice object
// speaks into the page's one queue.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/common/espeak_voices.h"
#include "platform/platform.h"

namespace quorble::web {

// The voices the engine could load, in the game's order; with the
// player's own voices, none (the page offers those).
class SpeechVoices {
 public:
  // Sleeps until the speech worker has tried every voice.
  static std::shared_ptr<SpeechVoices> Open(bool system);
  int Count() const;
  // The engine's voice for the game's number, held within the list.
  const espeak::VoiceChoice* Engine(int index) const;

 private:
  bool system_ = false;
  std::vector<espeak::VoiceChoice> engine_;
};

class WebVoice final : public SpeechVoice {
 public:
  explicit WebVoice(std::shared_ptr<const SpeechVoices> voices) : voices_(std::move(voices)) {}

  int VoiceCount() override { return voices_->Count(); }
  void SetVoice(int index) override;
  void SetRate(int rate) override { rate_ = rate; }
  void SetVolume(int volume) override;
  void Speak(const std::string& text, int flags) override;
  int RunningState() override;

 private:
  const std::shared_ptr<const SpeechVoices> voices_;
  int voice_ = 0;
  int rate_ = 0;
  int volume_ = 100;
};

// Queues `text` in the engine's first voice at the normal rate, before
// anything the game says.
void SpeakNotice(const std::string& text);

}  // namespace quorble::web

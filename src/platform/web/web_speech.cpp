#include "platform/web/web_speech.h"

#include <algorithm>
#include <limits>

#include "platform/web/page_bridge.h"

namespace quorble::web {
namespace {

// `engine` is none for the player's own voices, which the page picks by
// the game's number.
void Hand(const std::string& text, const espeak::VoiceChoice* engine, int voice, int rate,
          int volume) {
  const float gain =
      engine ? espeak::OutputGain(*engine, volume) : static_cast<float>(volume) / 100.0f;
  quorble_speak(text.c_str(), espeak::EngineText(text).c_str(), voice, engine ? engine->name : "",
                engine ? engine->pitch : 0, espeak::WordsPerMinute(rate), rate, gain);
}

}  // namespace

std::shared_ptr<SpeechVoices> SpeechVoices::Open(bool system) {
  auto voices = std::make_shared<SpeechVoices>();
  voices->system_ = system;
  if (system) return voices;
  std::string list;
  const auto choices = espeak::VoiceChoices();
  for (const auto& choice : choices) list += std::string(choice.name) + "\n";
  const int loaded = quorble_speech_open(list.c_str());
  for (size_t at = 0; at < choices.size(); ++at) {
    if (loaded & (1 << at)) voices->engine_.push_back(choices[at]);
  }
  return voices;
}

int SpeechVoices::Count() const {
  return system_ ? quorble_speech_voices() : static_cast<int>(engine_.size());
}

const espeak::VoiceChoice* SpeechVoices::Engine(int index) const {
  if (system_ || engine_.empty()) return nullptr;
  return &engine_[static_cast<size_t>(std::clamp(index, 0, static_cast<int>(engine_.size()) - 1))];
}

void WebVoice::SetVoice(int index) { voice_ = (index >= 0 && index < VoiceCount()) ? index : 0; }

void WebVoice::SetVolume(int volume) { volume_ = std::clamp(volume, 0, 100); }

void WebVoice::Speak(const std::string& text, int flags) {
  if (flags & SVSFPurgeBeforeSpeak) quorble_speech_purge();
  // Every text the game hands over is traced, the empty one too, as the
  // simulator's transcript has them.
  if (flags != SVSFPurgeBeforeSpeak) quorble_trace("speech", text.c_str());
  if (!text.empty()) Hand(text, voices_->Engine(voice_), voice_, rate_, volume_);
  if (flags & SVSFlagsAsync) return;
  // A page going away can't wait for speech to be heard.
  while (quorble_speaking() && !quorble_closing()) {
    quorble_wait(std::numeric_limits<double>::infinity(), 0);
  }
}

int WebVoice::RunningState() { return quorble_speaking() ? SRSEIsSpeaking : 1; }

void SpeakNotice(const std::string& text) {
  quorble_trace("speech", text.c_str());
  Hand(text, &espeak::VoiceChoices().front(), 0, 0, 100);
}

}  // namespace quorble::web

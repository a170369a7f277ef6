#include "platform/desktop/speech_espeak.h"

#include <espeak-ng/speak_lib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace quorble::desktop {
namespace {

constexpr int kChunkMilliseconds = 20;
// Wakes a synchronous wait even if a notification were ever lost.
constexpr auto kWaitSafety = std::chrono::milliseconds(250);

// What the synthesis callback needs; espeak hands it back as user data.
struct SynthJob {
  Mixer& mixer;
  uint64_t generation;
  float gain;
  std::vector<int16_t> scaled;
};

int OnSynth(short* pcm, int count, espeak_EVENT* events) {
  if (pcm == nullptr || count <= 0 || events == nullptr) return 0;
  auto& job = *static_cast<SynthJob*>(events->user_data);
  Scale({pcm, static_cast<size_t>(count)}, job.gain, job.scaled);
  // Refused means purged: returning 1 stops the rest of this text at once.
  return job.mixer.PushSpeech(job.scaled.data(), count, job.generation) ? 0 : 1;
}

}  // namespace

void Scale(std::span<const short> pcm, float gain, std::vector<int16_t>& out) {
  out.resize(pcm.size());
  std::transform(pcm.begin(), pcm.end(), out.begin(), [gain](short value) {
    return static_cast<int16_t>(std::clamp(std::lround(value * gain), -32768L, 32767L));
  });
}

SpeechEngine::SpeechEngine(std::shared_ptr<Mixer> mixer, bool trace)
    : mixer_(std::move(mixer)), trace_(trace) {
  mixer_->SetSpeechDrained([this] { NotifyChanged(); });
  worker_ = std::thread([this] { Run(); });
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return started_; });
}

SpeechEngine::~SpeechEngine() {
  uint64_t generation = 0;
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    queue_.clear();
    generation = ++generation_;
  }
  mixer_->PurgeSpeech(generation);
  work_.notify_all();
  worker_.join();
  mixer_->SetSpeechDrained(nullptr);
}

void SpeechEngine::Queue(Utterance utterance) {
  if (trace_) std::fprintf(stderr, "speech: %s\n", utterance.text.c_str());
  if (VoiceCount() == 0) return;
  {
    std::lock_guard lock(mutex_);
    queue_.push_back(std::move(utterance));
  }
  work_.notify_one();
}

void SpeechEngine::Purge() {
  uint64_t generation = 0;
  {
    std::lock_guard lock(mutex_);
    queue_.clear();
    generation = ++generation_;
  }
  mixer_->PurgeSpeech(generation);
}

void SpeechEngine::WaitUntilHeard() {
  std::unique_lock lock(mutex_);
  while (SpeakingLocked()) changed_.wait_for(lock, kWaitSafety);
}

bool SpeechEngine::Speaking() {
  std::lock_guard lock(mutex_);
  return SpeakingLocked();
}

// The worker pushes a text's PCM before it clears `synthesising_`, so once
// that is false the mixer already holds all there is to hear.
bool SpeechEngine::SpeakingLocked() {
  return !queue_.empty() || synthesising_ || mixer_->SpeechBuffered();
}

void SpeechEngine::NotifyChanged() {
  { std::lock_guard lock(mutex_); }
  changed_.notify_all();
}

void SpeechEngine::Run() {
  const bool ready = Start();
  {
    std::lock_guard lock(mutex_);
    started_ = true;
  }
  changed_.notify_all();
  while (auto next = NextText()) {
    if (ready) Say(next->first, next->second);
    {
      std::lock_guard lock(mutex_);
      synthesising_ = false;
    }
    changed_.notify_all();
  }
  if (ready) espeak_Terminate();
}

std::optional<std::pair<Utterance, uint64_t>> SpeechEngine::NextText() {
  std::unique_lock lock(mutex_);
  work_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
  if (stopping_) return std::nullopt;
  Utterance next = std::move(queue_.front());
  queue_.pop_front();
  synthesising_ = true;
  return std::pair{std::move(next), generation_};
}

bool SpeechEngine::Start() {
  const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, kChunkMilliseconds, nullptr,
                                     espeakINITIALIZE_DONT_EXIT);
  if (rate <= 0) return false;
  espeak_SetSynthCallback(&OnSynth);
  mixer_->SetSpeechRate(rate);
  for (const VoiceChoice& voice : VoiceChoices()) {
    if (espeak_SetVoiceByName(voice.name) == EE_OK) voices_.push_back(voice);
  }
  return true;
}

void SpeechEngine::Say(const Utterance& utterance, uint64_t generation) {
  const VoiceChoice& voice =
      voices_[std::clamp<size_t>(static_cast<size_t>(utterance.voice), 0, voices_.size() - 1)];
  if (voice.name != currentVoice_ && espeak_SetVoiceByName(voice.name) == EE_OK)
    currentVoice_ = voice.name;
  // The pitch outlives a change of voice in the engine: set it every time.
  espeak_SetParameter(espeakPITCH, voice.pitch, 0);
  espeak_SetParameter(espeakRATE, utterance.wordsPerMinute, 0);
  SynthJob job{*mixer_, generation, OutputGain(voice, utterance.volume), {}};
  const std::string text = EngineText(utterance.text);
  espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0,
               espeakCHARS_AUTO | espeakSSML | espeakENDPAUSE, nullptr, &job);
  mixer_->EndSpeechText(generation);
}

void EspeakVoice::SetVoice(int index) {
  voice_ = (index >= 0 && index < engine_->VoiceCount()) ? index : 0;
}

void EspeakVoice::SetVolume(int volume) { volume_ = std::clamp(volume, 0, 100); }

void EspeakVoice::Speak(const std::string& text, int flags) {
  if (flags & SVSFPurgeBeforeSpeak) engine_->Purge();
  if (!text.empty()) engine_->Queue({text, voice_, WordsPerMinute(rate_), volume_});
  if (!(flags & SVSFlagsAsync)) engine_->WaitUntilHeard();
}

}  // namespace quorble::desktop

#include "platform/desktop/speech_espeak.h"

#include <espeak-ng/speak_lib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace quorble::desktop {
namespace {

// Told apart by accent and by pitch, in a fixed order; the first is the
// engine's own default.
constexpr std::array kVoiceNames{
    "en-us",          "en-us+f3",  "gmw/en",        "gmw/en+f4",
    "en-gb-scotland", "en-029+f2", "en-gb-x-rp+m7", "en-us-nyc+f5",
};

constexpr int kNormalWordsPerMinute = 175;
constexpr int kSlowestWordsPerMinute = 80;
constexpr int kFastestWordsPerMinute = 450;
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
  job.scaled.resize(static_cast<size_t>(count));
  std::transform(pcm, pcm + count, job.scaled.begin(),
                 [&job](short value) { return static_cast<int16_t>(value * job.gain); });
  // Refused means purged: returning 1 stops the rest of this text at once.
  return job.mixer.PushSpeech(job.scaled.data(), count, job.generation) ? 0 : 1;
}

}  // namespace

int WordsPerMinute(int rate) {
  const double wordsPerMinute = kNormalWordsPerMinute * std::pow(3.0, rate / 10.0);
  return static_cast<int>(std::lround(
      std::clamp<double>(wordsPerMinute, kSlowestWordsPerMinute, kFastestWordsPerMinute)));
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
  for (const char* name : kVoiceNames) {
    if (espeak_SetVoiceByName(name) == EE_OK) voices_.emplace_back(name);
  }
  return true;
}

void SpeechEngine::Say(const Utterance& utterance, uint64_t generation) {
  const std::string& voice = voices_[std::clamp<size_t>(utterance.voice, 0, voices_.size() - 1)];
  if (voice != currentVoice_ && espeak_SetVoiceByName(voice.c_str()) == EE_OK)
    currentVoice_ = voice;
  espeak_SetParameter(espeakRATE, utterance.wordsPerMinute, 0);
  SynthJob job{*mixer_, generation, std::clamp(utterance.volume, 0, 100) / 100.0f, {}};
  espeak_Synth(utterance.text.c_str(), utterance.text.size() + 1, 0, POS_CHARACTER, 0,
               espeakCHARS_AUTO | espeakENDPAUSE, nullptr, &job);
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

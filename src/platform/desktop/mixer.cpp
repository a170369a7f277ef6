#include "platform/desktop/mixer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <utility>

namespace quorble::desktop {
namespace {

constexpr int kSpeechRate = 22050;
constexpr long kSpeechPaddingFrames = 512;
constexpr auto kPeriod = std::chrono::microseconds(1'000'000LL * kPeriodFrames / kMixRate);
constexpr auto kBeepGrace = std::chrono::milliseconds(200);

// A soft 880 Hz tone of 100 ms, faded in and out so that it doesn't click.
std::vector<float> MakeBeep() {
  constexpr double kHz = 880.0;
  constexpr double kLevel = 0.3;
  constexpr int kLength = kMixRate / 10;
  constexpr int kFade = kMixRate / 100;
  std::vector<float> tone(kLength);
  for (int i = 0; i < kLength; ++i) {
    const double edge = std::min(1.0, std::min(i, kLength - 1 - i) / static_cast<double>(kFade));
    const double envelope = 0.5 - 0.5 * std::cos(std::numbers::pi * edge);
    tone[i] =
        static_cast<float>(kLevel * envelope * std::sin(2 * std::numbers::pi * kHz * i / kMixRate));
  }
  return tone;
}

SDL_AudioSpec WantedSpec(void* mixer, SDL_AudioCallback callback) {
  SDL_AudioSpec wanted{};
  wanted.freq = kMixRate;
  wanted.format = kMixFormat;
  wanted.channels = kMixChannels;
  wanted.samples = kPeriodFrames;
  wanted.callback = callback;
  wanted.userdata = mixer;
  return wanted;
}

}  // namespace

Mixer::Mixer(Notify wake)
    : wake_(std::move(wake)),
      beep_(MakeBeep()),
      speech_(NewStreamToMix(AUDIO_S16SYS, 1, kSpeechRate)),
      beepPosition_(beep_.size()) {
  device_.emplace(WantedSpec(this, &Mixer::OnDevice));
  if (device_->IsOpen()) {
    device_->Start();
  } else {
    clock_ = std::thread([this] { RunClock(); });
  }
}

Mixer::~Mixer() {
  std::unique_lock lock(mutex_);
  // The last thing the game does may be a beep; let it be heard.
  beepDone_.wait_for(lock, kBeepGrace, [this] { return !BeepingLocked(); });
  stopping_ = true;
  lock.unlock();
  clockWake_.notify_all();
  if (clock_.joinable()) clock_.join();
  device_.reset();
}

void Mixer::SetSpeechRate(int hz) {
  std::lock_guard lock(mutex_);
  speech_ = NewStreamToMix(AUDIO_S16SYS, 1, hz);
}

bool Mixer::PushSpeech(const int16_t* pcm, int count, uint64_t generation) {
  {
    std::lock_guard lock(mutex_);
    if (generation != speechGeneration_ || !speech_) return false;
    SDL_AudioStreamPut(speech_.get(), pcm, count * static_cast<int>(sizeof(int16_t)));
    speechSounding_ = true;
  }
  KickClock();
  return true;
}

void Mixer::EndSpeechText(uint64_t generation) {
  {
    std::lock_guard lock(mutex_);
    if (generation != speechGeneration_ || !speech_) return;
    // Just the padding: speech ends in a pause of its own, so a little
    // lost or a little added goes unheard.
    PutSilence(speech_.get(), AUDIO_S16SYS, 1, kSpeechPaddingFrames);
    SDL_AudioStreamFlush(speech_.get());
  }
  KickClock();
}

void Mixer::PurgeSpeech(uint64_t generation) {
  std::lock_guard lock(mutex_);
  speechGeneration_ = generation;
  if (speech_) SDL_AudioStreamClear(speech_.get());
  speechSounding_ = false;
}

bool Mixer::SpeechBuffered() {
  std::lock_guard lock(mutex_);
  return speech_ && SDL_AudioStreamAvailable(speech_.get()) > 0;
}

void Mixer::SetSpeechDrained(Notify drained) {
  std::lock_guard lock(listenerMutex_);
  speechDrained_ = std::move(drained);
}

void Mixer::Beep() {
  {
    std::lock_guard lock(mutex_);
    beepPosition_ = 0;
  }
  KickClock();
}

void Mixer::Attach(std::shared_ptr<SampleVoice> voice) {
  std::lock_guard lock(mutex_);
  voices_.push_back(std::move(voice));
}

void Mixer::Detach(const SampleVoice* voice) {
  std::lock_guard lock(mutex_);
  std::erase_if(voices_, [voice](const auto& attached) { return attached.get() == voice; });
}

void Mixer::Change(const std::function<void()>& change) {
  {
    std::lock_guard lock(mutex_);
    change();
  }
  KickClock();
}

bool Mixer::Ask(const std::function<bool()>& question) {
  std::lock_guard lock(mutex_);
  return question();
}

void Mixer::SetPeriodObserver(PeriodObserver observer) {
  std::lock_guard lock(mutex_);
  observer_ = std::move(observer);
}

void SDLCALL Mixer::OnDevice(void* mixer, Uint8* stream, int length) {
  static_cast<Mixer*>(mixer)->MixPeriod(reinterpret_cast<float*>(stream), length / kMixFrameBytes);
}

void Mixer::MixPeriod(float* mix, int frames) {
  const size_t values = static_cast<size_t>(frames) * kMixChannels;
  std::fill(mix, mix + values, 0.0f);
  bool sampleEnded = false;
  bool speechRanOut = false;
  {
    std::lock_guard lock(mutex_);
    const bool speechHeard = MixSpeech(mix, frames);
    sampleEnded = MixSamples(mix, frames);
    MixBeep(mix, frames);
    if (speechSounding_ && SDL_AudioStreamAvailable(speech_.get()) == 0) {
      speechSounding_ = false;
      speechRanOut = true;
    }
    if (observer_) observer_(speechHeard);
  }
  std::for_each(mix, mix + values, [](float& value) { value = std::clamp(value, -1.0f, 1.0f); });
  if (speechRanOut) {
    std::lock_guard lock(listenerMutex_);
    if (speechDrained_) speechDrained_();
  }
  if (sampleEnded || speechRanOut) wake_();
}

bool Mixer::MixSpeech(float* mix, int frames) {
  if (!speech_) return false;
  scratch_.resize(static_cast<size_t>(frames) * kMixChannels);
  const int got = SDL_AudioStreamGet(speech_.get(), scratch_.data(), frames * kMixFrameBytes);
  if (got <= 0) return false;
  std::transform(scratch_.begin(), scratch_.begin() + got / static_cast<int>(sizeof(float)), mix,
                 mix, std::plus<float>());
  return true;
}

bool Mixer::MixSamples(float* mix, int frames) {
  bool ended = false;
  for (const auto& voice : voices_) ended = voice->MixInto(mix, frames, scratch_) || ended;
  return ended;
}

void Mixer::MixBeep(float* mix, int frames) {
  if (!BeepingLocked()) return;
  const size_t count = std::min<size_t>(frames, beep_.size() - beepPosition_);
  for (size_t frame = 0; frame < count; ++frame) {
    mix[2 * frame] += beep_[beepPosition_ + frame];
    mix[2 * frame + 1] += beep_[beepPosition_ + frame];
  }
  beepPosition_ += count;
  if (!BeepingLocked()) beepDone_.notify_all();
}

bool Mixer::SoundingLocked() const {
  const bool samplePlaying = std::any_of(voices_.begin(), voices_.end(),
                                         [](const auto& voice) { return voice->Playing(); });
  return samplePlaying || BeepingLocked() || speechSounding_;
}

// Stands in for a device's callbacks, at the same pace, and sleeps while
// nothing sounds so that an idle game costs nothing.
void Mixer::RunClock() {
  std::vector<float> period(static_cast<size_t>(kPeriodFrames) * kMixChannels);
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    clockWake_.wait(lock, [this] { return stopping_ || SoundingLocked(); });
    auto next = std::chrono::steady_clock::now();
    while (!stopping_ && SoundingLocked()) {
      lock.unlock();
      MixPeriod(period.data(), kPeriodFrames);
      next += kPeriod;
      std::this_thread::sleep_until(next);
      lock.lock();
    }
  }
}

void Mixer::KickClock() {
  if (!device_->IsOpen()) clockWake_.notify_one();
}

}  // namespace quorble::desktop

#include "platform/desktop/mixer.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <string>
#include <utility>

namespace quorble::desktop {
namespace {

// Short periods (2.9 ms) keep the sound server's buffer near its target
// all the time, where a long period lets it run down by a whole period
// between writes; the target, not the period, then sets the latency.
constexpr int kDefaultPeriodFrames = 128;
// On a sound server a buffer of 9 ms rode out two busy processes on two
// cores, and keeps a cut within 10 ms of the key; 512-frame periods, the
// best a period alone could do, cut in 12 ms.
constexpr const char* kServerLatencyMs = "9";
constexpr int kSmallestPeriod = 64;
constexpr int kLargestPeriod = 4096;
constexpr int kPeriodGrain = 32;
// How far speech is synthesised ahead of the listener: enough to ride out
// a busy machine's scheduling, little enough that a purge frees nothing.
constexpr size_t kSpeechLeadFrames = kMixRate / 5;
constexpr long kIdleFramesBeforeClose = kMixRate;  // a second of silence
constexpr size_t kMostVoices = 32;
constexpr int kRealtimePriority = 10;
constexpr auto kBeepGrace = std::chrono::milliseconds(200);

// A soft 880 Hz tone of 60 ms, faded in and out so that it doesn't click;
// short, so that two beeps a tenth of a second apart are heard as two.
std::vector<float> MakeBeep() {
  constexpr double kHz = 880.0;
  constexpr double kLevel = 0.3;
  constexpr int kLength = kMixRate * 6 / 100;
  constexpr int kFade = kMixRate / 100;
  std::vector<float> tone(kLength);
  for (int i = 0; i < kLength; ++i) {
    const double edge = std::min(1.0, std::min(i, kLength - 1 - i) / static_cast<double>(kFade));
    const double envelope = 0.5 - 0.5 * std::cos(std::numbers::pi * edge);
    tone[static_cast<size_t>(i)] =
        static_cast<float>(kLevel * envelope * std::sin(2 * std::numbers::pi * kHz * i / kMixRate));
  }
  return tone;
}

SDL_AudioSpec WantedFormat(void* mixer, SDL_AudioCallback callback, int periodFrames) {
  SDL_AudioSpec wanted{};
  wanted.freq = kMixRate;
  wanted.format = kMixFormat;
  wanted.channels = kMixChannels;
  wanted.samples = static_cast<Uint16>(periodFrames);
  wanted.callback = callback;
  wanted.userdata = mixer;
  return wanted;
}

// A busy machine must not starve the audio thread: where the system allows
// it directly (root, or a realtime limit), it runs round-robin above every
// ordinary process; elsewhere it keeps what SDL got for it (through rtkit).
void AskForRealtime() {
  const int policy = sched_getscheduler(0) & ~SCHED_RESET_ON_FORK;
  if (policy == SCHED_RR || policy == SCHED_FIFO) return;
  sched_param param{};
  param.sched_priority = std::min(kRealtimePriority, sched_get_priority_max(SCHED_RR));
  pthread_setschedparam(pthread_self(), SCHED_RR, &param);
}

}  // namespace

void AskSoundServerLatency() {
  setenv("PULSE_LATENCY_MSEC", kServerLatencyMs, 0);  // a user's own setting stands
}

int PeriodFramesFromEnvironment() {
  const char* text = std::getenv("QUORBLE_AUDIO_PERIOD");
  if (text == nullptr) return kDefaultPeriodFrames;
  const long frames = std::strtol(text, nullptr, 10);
  const bool whole = frames % kPeriodGrain == 0;
  return whole && frames >= kSmallestPeriod && frames <= kLargestPeriod ? static_cast<int>(frames)
                                                                        : kDefaultPeriodFrames;
}

Mixer::Mixer(Notify wake, Drive drive, int periodFrames)
    : wake_(std::move(wake)),
      drive_(drive),
      periodFrames_(std::clamp(periodFrames, kSmallestPeriod, kLargestPeriod)),
      beep_(MakeBeep()),
      speechRing_(kSpeechLeadFrames),
      beepPosition_(beep_.size()) {
  voices_.reserve(kMostVoices);
  speechResampler_.SetRates(22050, kMixRate);
  if (drive_ == Drive::Manual) return;
  AskSoundServerLatency();  // a no-op when the program asked before its threads
  device_.emplace(WantedFormat(this, &Mixer::OnDevice, periodFrames_));
  if (device_->Open()) {
    usesDevice_ = true;
    {
      std::lock_guard lock(mutex_);
      deviceOpen_ = true;
    }
    keeper_ = std::thread([this] { KeepDevice(); });
  } else {
    clock_ = std::thread([this] { RunClock(); });
  }
}

Mixer::~Mixer() {
  // The last thing the game does may be a beep; let it be heard.
  const auto giveUp = std::chrono::steady_clock::now() + kBeepGrace;
  while (Ask([this] { return BeepingLocked(); }) && std::chrono::steady_clock::now() < giveUp)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  clockWake_.notify_all();
  keeperWake_.Post();
  speechRoom_.Post();
  if (clock_.joinable()) clock_.join();
  if (keeper_.joinable()) keeper_.join();
  std::lock_guard device(deviceMutex_);
  device_.reset();
}

bool Mixer::DeviceOpen() {
  std::lock_guard lock(mutex_);
  return deviceOpen_;
}

void Mixer::SetSpeechRate(int hz) { speechResampler_.SetRates(hz, kMixRate); }

bool Mixer::PushSpeech(const int16_t* pcm, int count, uint64_t generation) {
  speechIn_.resize(static_cast<size_t>(std::max(0, count)));
  std::transform(pcm, pcm + speechIn_.size(), speechIn_.begin(),
                 [](int16_t value) { return value / 32768.0f; });
  speechOut_.clear();
  speechResampler_.Convert(speechIn_.data(), static_cast<long>(speechIn_.size()), speechOut_);
  return Deliver(speechOut_, generation);
}

void Mixer::EndSpeechText(uint64_t generation) {
  speechOut_.clear();
  speechResampler_.Finish(speechOut_);
  Deliver(speechOut_, generation);
}

// Copies into the ring as room comes, waiting while it is full.
bool Mixer::Deliver(const std::vector<float>& speech, uint64_t generation) {
  size_t done = 0;
  std::unique_lock lock(mutex_);
  while (true) {
    if (generation != speechGeneration_ || stopping_) return false;
    const size_t room = speechRing_.size() - speechCount_;
    const size_t count = std::min(room, speech.size() - done);
    for (size_t i = 0; i < count; ++i) {
      speechRing_[(speechRead_ + speechCount_ + i) % speechRing_.size()] = speech[done + i];
    }
    speechCount_ += count;
    done += count;
    if (count > 0) {
      speechSounding_ = true;
      silentFrames_ = 0;
      lock.unlock();
      SoundRequested();
      lock.lock();
    }
    if (done >= speech.size()) return true;
    if (speechCount_ == speechRing_.size()) {
      lock.unlock();
      speechRoom_.Wait();
      lock.lock();
    }
  }
}

void Mixer::PurgeSpeech(uint64_t generation) {
  {
    std::lock_guard lock(mutex_);
    speechGeneration_ = generation;
    speechCount_ = 0;
    speechSounding_ = false;
  }
  speechRoom_.Post();
}

bool Mixer::SpeechBuffered() {
  std::lock_guard lock(mutex_);
  return speechCount_ > 0;
}

void Mixer::SetSpeechDrained(Notify drained) {
  std::lock_guard lock(listenerMutex_);
  speechDrained_ = std::move(drained);
}

void Mixer::Beep() {
  {
    std::lock_guard lock(mutex_);
    beepPosition_ = 0;
    silentFrames_ = 0;
  }
  SoundRequested();
}

void Mixer::Attach(std::shared_ptr<SampleVoice> voice) {
  std::vector<std::shared_ptr<SampleVoice>> done;
  done.reserve(kMostVoices);
  std::lock_guard lock(mutex_);
  SweepReleased(done);
  if (voices_.size() < voices_.capacity()) voices_.push_back({std::move(voice)});
}

void Mixer::Detach(const SampleVoice* voice) {
  std::vector<std::shared_ptr<SampleVoice>> done;  // freed after the lock
  done.reserve(kMostVoices);
  std::lock_guard lock(mutex_);
  for (auto& attached : voices_) {
    if (attached.voice.get() == voice) attached.released = true;
  }
  SweepReleased(done);
}

void Mixer::SweepReleased(std::vector<std::shared_ptr<SampleVoice>>& out) {
  for (auto& attached : voices_) {
    if (attached.released && !attached.voice->Audible()) out.push_back(std::move(attached.voice));
  }
  std::erase_if(voices_, [](const Attached& attached) { return attached.voice == nullptr; });
}

void Mixer::Change(const std::function<void()>& change) {
  {
    std::lock_guard lock(mutex_);
    change();
    if (SoundingLocked()) silentFrames_ = 0;
  }
  SoundRequested();
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
  auto& self = *static_cast<Mixer*>(mixer);
  if (!self.realtimeTried_) {
    self.realtimeTried_ = true;
    AskForRealtime();
  }
  self.MixPeriod(reinterpret_cast<float*>(stream), length / kMixFrameBytes);
}

void Mixer::MixPeriod(float* mix, int frames) {
  std::fill(mix, mix + static_cast<size_t>(frames) * kMixChannels, 0.0f);
  bool sampleEnded = false;
  bool speechRanOut = false;
  MixChunk(mix, frames, sampleEnded, speechRanOut);
  std::for_each(mix, mix + static_cast<size_t>(frames) * kMixChannels,
                [](float& value) { value = std::clamp(value, -1.0f, 1.0f); });
  if (!sampleEnded && !speechRanOut) return;
  if (usesDevice_) {
    // The listeners take locks of other threads that the realtime audio
    // thread must never wait for: the keeper tells them instead.
    {
      std::lock_guard lock(mutex_);
      pendingSampleEnd_ = pendingSampleEnd_ || sampleEnded;
      pendingSpeechEnd_ = pendingSpeechEnd_ || speechRanOut;
    }
    keeperWake_.Post();
  } else {
    Tell(sampleEnded, speechRanOut);
  }
}

void Mixer::Tell(bool sampleEnded, bool speechRanOut) {
  if (speechRanOut) {
    std::lock_guard lock(listenerMutex_);
    if (speechDrained_) speechDrained_();
  }
  if (sampleEnded || speechRanOut) wake_();
}

void Mixer::MixChunk(float* mix, int frames, bool& sampleEnded, bool& speechRanOut) {
  bool idleNow = false;
  bool room = false;
  {
    std::lock_guard lock(mutex_);
    // A device being closed hears nothing more: what comes now waits for
    // the next one.
    if (usesDevice_ && !deviceOpen_) return;
    const bool speechHeard = MixSpeech(mix, frames);
    sampleEnded = MixSamples(mix, frames);
    MixBeep(mix, frames);
    if (speechSounding_ && speechCount_ == 0) {
      speechSounding_ = false;
      speechRanOut = true;
    }
    if (observer_) observer_(speechHeard);
    if (SoundingLocked()) {
      silentFrames_ = 0;
    } else {
      idleNow = silentFrames_ < kIdleFramesBeforeClose &&
                silentFrames_ + frames >= kIdleFramesBeforeClose;
      silentFrames_ += frames;
    }
    room = speechCount_ < speechRing_.size();
  }
  if (idleNow) keeperWake_.Post();
  if (room) speechRoom_.Post();
}

bool Mixer::MixSpeech(float* mix, int frames) {
  const size_t count = std::min(static_cast<size_t>(frames), speechCount_);
  for (size_t frame = 0; frame < count; ++frame) {
    const float value = speechRing_[(speechRead_ + frame) % speechRing_.size()];
    mix[2 * frame] += value;
    mix[2 * frame + 1] += value;
  }
  speechRead_ = (speechRead_ + count) % speechRing_.size();
  speechCount_ -= count;
  return count > 0;
}

bool Mixer::MixSamples(float* mix, int frames) {
  bool ended = false;
  for (const auto& attached : voices_) ended = attached.voice->MixInto(mix, frames) || ended;
  return ended;
}

void Mixer::MixBeep(float* mix, int frames) {
  if (!BeepingLocked()) return;
  const size_t count = std::min(static_cast<size_t>(frames), beep_.size() - beepPosition_);
  for (size_t frame = 0; frame < count; ++frame) {
    mix[2 * frame] += beep_[beepPosition_ + frame];
    mix[2 * frame + 1] += beep_[beepPosition_ + frame];
  }
  beepPosition_ += count;
}

bool Mixer::SoundingLocked() const {
  const bool sampleAudible = std::any_of(voices_.begin(), voices_.end(), [](const auto& attached) {
    return attached.voice->Audible();
  });
  return sampleAudible || BeepingLocked() || speechSounding_;
}

void Mixer::SoundRequested() {
  if (usesDevice_) {
    EnsureDevice();
  } else if (drive_ == Drive::Device) {
    clockWake_.notify_one();
  }
}

void Mixer::EnsureDevice() {
  std::lock_guard device(deviceMutex_);
  {
    std::lock_guard lock(mutex_);
    if (deviceOpen_ || stopping_ || !SoundingLocked()) return;
  }
  // Opened without the mixer's lock: its first callback may come at once.
  realtimeTried_ = false;
  const bool opened = device_->Open();
  {
    std::lock_guard lock(mutex_);
    deviceOpen_ = opened;
    silentFrames_ = 0;
    // A device that went away takes what was to sound with it, so that
    // nothing waits for sound that can't come; the next sound tries again.
    if (!opened) SilenceAllLocked();
  }
  if (!opened) {
    speechRoom_.Post();
    wake_();
  }
}

void Mixer::SilenceAllLocked() {
  speechCount_ = 0;
  speechSounding_ = false;
  beepPosition_ = beep_.size();
  for (auto& attached : voices_) attached.voice->Silence();
}

// Tells the listeners what the audio thread saw, and closes the device
// after a second of silence. The check is made again
// under both locks, so a sound asked for meanwhile either keeps it open or
// finds it closed and opens it anew.
void Mixer::KeepDevice() {
  while (true) {
    keeperWake_.Wait();
    bool sampleEnded = false;
    bool speechRanOut = false;
    {
      std::lock_guard lock(mutex_);
      if (stopping_) return;
      sampleEnded = std::exchange(pendingSampleEnd_, false);
      speechRanOut = std::exchange(pendingSpeechEnd_, false);
    }
    Tell(sampleEnded, speechRanOut);
    CloseIfIdle();
  }
}

void Mixer::CloseIfIdle() {
  std::lock_guard device(deviceMutex_);
  bool close = false;
  {
    std::lock_guard lock(mutex_);
    close = deviceOpen_ && silentFrames_ >= kIdleFramesBeforeClose && !SoundingLocked();
    if (close) deviceOpen_ = false;
  }
  if (close) device_->Close();
}

// Stands in for a device's callbacks, at the same pace, and sleeps while
// nothing sounds so that an idle game costs nothing.
void Mixer::RunClock() {
  const auto period = std::chrono::microseconds(1'000'000LL * periodFrames_ / kMixRate);
  std::vector<float> buffer(static_cast<size_t>(periodFrames_) * kMixChannels);
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    clockWake_.wait(lock, [this] { return stopping_ || SoundingLocked(); });
    auto next = std::chrono::steady_clock::now();
    while (!stopping_ && SoundingLocked()) {
      lock.unlock();
      MixPeriod(buffer.data(), periodFrames_);
      next += period;
      std::this_thread::sleep_until(next);
      lock.lock();
    }
  }
}

}  // namespace quorble::desktop

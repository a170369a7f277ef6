// The desktop sound path without a sound card: samples mixed by hand, and
// the mixer on its stand-in clock.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "platform/desktop/mixer.h"
#include "platform/desktop/sample_voice.h"

namespace quorble::desktop {
namespace {

constexpr float kHeard = 0.01f;

struct Format {
  SDL_AudioFormat format;
  int channels;
  int rate;
};

// A constant signal of `seconds` at half scale, in the given format.
std::vector<Uint8> HalfScale(const Format& format, double seconds) {
  const size_t samples = static_cast<size_t>(seconds * format.rate) * format.channels;
  std::vector<Uint8> bytes;
  if (format.format == AUDIO_U8) return std::vector<Uint8>(samples, 0xC0);
  std::vector<Sint16> values(samples, 16384);
  const auto* raw = reinterpret_cast<const Uint8*>(values.data());
  return std::vector<Uint8>(raw, raw + values.size() * sizeof(Sint16));
}

std::shared_ptr<SampleVoice> MakeVoice(const Format& format, double seconds) {
  SDL_AudioSpec spec{};
  spec.format = format.format;
  spec.channels = static_cast<Uint8>(format.channels);
  spec.freq = format.rate;
  return std::make_shared<SampleVoice>(HalfScale(format, seconds), spec);
}

struct Mixed {
  int framesMixed = 0;
  int framesHeard = 0;
  int leftHeard = 0;
  int rightHeard = 0;
  bool ranOut = false;
};

// Mixes period after period until the voice runs out or `limitFrames` pass.
Mixed MixOut(SampleVoice& voice, int limitFrames) {
  Mixed mixed;
  std::vector<float> period(kPeriodFrames * kMixChannels);
  std::vector<float> scratch;
  for (int done = 0; done < limitFrames && !mixed.ranOut; done += kPeriodFrames) {
    std::fill(period.begin(), period.end(), 0.0f);
    mixed.ranOut = voice.MixInto(period.data(), kPeriodFrames, scratch);
    mixed.framesMixed += kPeriodFrames;
    for (int frame = 0; frame < kPeriodFrames; ++frame) {
      const bool left = std::fabs(period[2 * frame]) > kHeard;
      const bool right = std::fabs(period[2 * frame + 1]) > kHeard;
      mixed.leftHeard += left;
      mixed.rightHeard += right;
      mixed.framesHeard += left || right;
    }
  }
  return mixed;
}

struct LengthCase {
  const char* name;
  Format file;
  int playRate;
  double seconds;  // of the file at its own rate
};

class SampleLengthTest : public testing::TestWithParam<LengthCase> {};

// The whole sample is heard, its end included, at the length its playing
// rate gives: nothing is cut off by the conversion to the mixing format,
// and it ends no later than the period after its last sound.
TEST_P(SampleLengthTest, IsHeardWholeAtItsPlayingRate) {
  const LengthCase& sample = GetParam();
  auto voice = MakeVoice(sample.file, sample.seconds);
  voice->SetRate(sample.playRate);
  voice->Play(false);
  const Mixed mixed = MixOut(*voice, kMixRate * 10);
  const double expected = sample.seconds * sample.file.rate / sample.playRate * kMixRate;
  EXPECT_TRUE(mixed.ranOut);
  EXPECT_FALSE(voice->Playing());
  EXPECT_NEAR(mixed.framesHeard, expected, 40.0);
  EXPECT_LT(mixed.framesMixed, expected + 2 * kPeriodFrames);
}

const std::vector<LengthCase> kLengths{
    {"MonoAtItsRate", {AUDIO_S16SYS, 1, 22050}, 22050, 0.5},
    {"MonoOneHertzFast", {AUDIO_S16SYS, 1, 11025}, 11026, 0.5},
    {"MonoAtDoubleRate", {AUDIO_S16SYS, 1, 22050}, 44100, 0.5},
    {"EightBitAtHalfRate", {AUDIO_U8, 1, 11025}, 5513, 0.25},
    {"StereoAtMixRate", {AUDIO_S16SYS, 2, 44100}, 44100, 0.3},
    {"StereoFromAbove", {AUDIO_S16SYS, 2, 48000}, 48000, 0.3},
};
INSTANTIATE_TEST_SUITE_P(Samples, SampleLengthTest, testing::ValuesIn(kLengths),
                         [](const auto& info) { return std::string(info.param.name); });

const Format kMono{AUDIO_S16SYS, 1, 22050};
constexpr int kTenthFrames = kMixRate / 10;

TEST(SampleVoiceTest, PlaysFromThePositionSet) {
  auto voice = MakeVoice(kMono, 0.2);
  voice->SetPosition(2205 * 2);  // half way, in bytes
  voice->Play(false);
  EXPECT_NEAR(MixOut(*voice, kMixRate).framesHeard, kTenthFrames, 40.0);
}

TEST(SampleVoiceTest, PositionPastTheEndPlaysNothing) {
  auto voice = MakeVoice(kMono, 0.2);
  voice->SetPosition(1 << 30);
  voice->Play(false);
  EXPECT_FALSE(voice->Playing());
  EXPECT_EQ(MixOut(*voice, kMixRate).framesHeard, 0);
}

TEST(SampleVoiceTest, AnEmptySampleNeverPlaysEvenLooping) {
  auto voice = std::make_shared<SampleVoice>(std::vector<Uint8>{}, SDL_AudioSpec{});
  voice->Play(true);
  EXPECT_FALSE(voice->Playing());
}

TEST(SampleVoiceTest, LoopsUntilStopped) {
  auto voice = MakeVoice(kMono, 0.05);
  voice->Play(true);
  const Mixed looping = MixOut(*voice, kMixRate / 2);
  EXPECT_FALSE(looping.ranOut);
  EXPECT_GT(looping.framesHeard, kMixRate / 2 - 600);
  voice->Stop();
  EXPECT_FALSE(voice->Playing());
  EXPECT_EQ(MixOut(*voice, kTenthFrames).framesHeard, 0);
}

TEST(SampleVoiceTest, PlaysWholeAgainAfterRunningOut) {
  auto voice = MakeVoice(kMono, 0.1);
  voice->Play(false);
  MixOut(*voice, kMixRate);
  voice->Play(false);
  EXPECT_NEAR(MixOut(*voice, kMixRate).framesHeard, kTenthFrames, 40.0);
}

TEST(SampleVoiceTest, GainsReachEachSide) {
  auto voice = MakeVoice(kMono, 0.1);
  voice->SetGains(0.0f, 1.0f);
  voice->Play(false);
  const Mixed mixed = MixOut(*voice, kMixRate);
  EXPECT_EQ(mixed.leftHeard, 0);
  EXPECT_NEAR(mixed.rightHeard, kTenthFrames, 40.0);
}

// With no audio device the mixer keeps real time on its own clock.
class ClockMixerTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { setenv("SDL_AUDIODRIVER", "no-such-driver", 1); }

  void SetUp() override {
    mixer_ = std::make_unique<Mixer>([this] {
      std::lock_guard lock(mutex_);
      ++wakes_;
      woken_.notify_all();
    });
    ASSERT_FALSE(mixer_->HasDevice());
  }

  // Seconds until the next wake-up, or a negative number after `limit`.
  double SecondsToWake(std::chrono::milliseconds limit) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex_);
    const int before = wakes_;
    if (!woken_.wait_for(lock, limit, [&] { return wakes_ > before; })) return -1;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  std::unique_ptr<Mixer> mixer_;
  std::mutex mutex_;
  std::condition_variable woken_;
  int wakes_ = 0;
};

TEST_F(ClockMixerTest, ASampleTakesItsRealTimeAndWakesTheGameAtItsEnd) {
  auto voice = MakeVoice(kMono, 0.2);
  mixer_->Attach(voice);
  std::unique_lock lock(mutex_);
  const int before = wakes_;
  lock.unlock();
  const auto start = std::chrono::steady_clock::now();
  mixer_->Change([&] { voice->Play(false); });
  {
    std::unique_lock wait(mutex_);
    ASSERT_TRUE(woken_.wait_for(wait, std::chrono::seconds(2), [&] { return wakes_ > before; }));
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_NEAR(seconds, 0.2, 0.05);
  EXPECT_FALSE(mixer_->Ask([&] { return voice->Playing(); }));
  mixer_->Detach(voice.get());
}

TEST_F(ClockMixerTest, SpeechIsBufferedUntilHeardAndAPurgeRefusesWhatCameBefore) {
  const std::vector<int16_t> tenth(2205, 8000);
  ASSERT_TRUE(mixer_->PushSpeech(tenth.data(), static_cast<int>(tenth.size()), 0));
  mixer_->EndSpeechText(0);
  EXPECT_TRUE(mixer_->SpeechBuffered());
  EXPECT_GT(SecondsToWake(std::chrono::seconds(2)), 0.05);
  EXPECT_FALSE(mixer_->SpeechBuffered());

  ASSERT_TRUE(mixer_->PushSpeech(tenth.data(), static_cast<int>(tenth.size()), 0));
  mixer_->PurgeSpeech(1);
  EXPECT_FALSE(mixer_->SpeechBuffered());
  EXPECT_FALSE(mixer_->PushSpeech(tenth.data(), static_cast<int>(tenth.size()), 0));
  EXPECT_TRUE(mixer_->PushSpeech(tenth.data(), static_cast<int>(tenth.size()), 1));
}

TEST_F(ClockMixerTest, DrainedListenerHearsTheEndOfSpeech) {
  std::mutex drainedMutex;
  std::condition_variable drainedSignal;
  bool drained = false;
  mixer_->SetSpeechDrained([&] {
    std::lock_guard lock(drainedMutex);
    drained = true;
    drainedSignal.notify_all();
  });
  const std::vector<int16_t> twentieth(1102, 8000);
  mixer_->PushSpeech(twentieth.data(), static_cast<int>(twentieth.size()), 0);
  mixer_->EndSpeechText(0);
  std::unique_lock lock(drainedMutex);
  EXPECT_TRUE(drainedSignal.wait_for(lock, std::chrono::seconds(2), [&] { return drained; }));
  lock.unlock();
  mixer_->SetSpeechDrained(nullptr);
}

}  // namespace
}  // namespace quorble::desktop

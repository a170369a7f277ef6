// The desktop sound path without a sound card: samples mixed by hand, and
// the mixer driven period by period by the test.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

#include "platform/desktop/mixer.h"
#include "platform/desktop/sample_voice.h"

namespace quorble::desktop {
namespace {

constexpr int kTenthFrames = kMixRate / 10;
constexpr int kPeriodFrames = 512;

// A constant signal of `seconds` at half scale, in the given file format.
std::shared_ptr<SampleVoice> MakeVoice(double seconds, int rate = 22050,
                                       SDL_AudioFormat format = AUDIO_S16SYS, int channels = 1) {
  const size_t samples = static_cast<size_t>(seconds * rate) * static_cast<size_t>(channels);
  std::vector<Uint8> bytes(samples, 0xC0);
  if (format != AUDIO_U8) {
    const std::vector<Sint16> values(samples, 16384);
    const auto* raw = reinterpret_cast<const Uint8*>(values.data());
    bytes.assign(raw, raw + samples * sizeof(Sint16));
  }
  SDL_AudioSpec audio{};
  audio.freq = rate;
  audio.format = format;
  audio.channels = static_cast<Uint8>(channels);
  auto voice = std::make_shared<SampleVoice>(bytes, audio);
  voice->SetRate(0);
  return voice;
}

struct Mixed {
  int framesMixed = 0, framesHeard = 0, leftHeard = 0, rightHeard = 0;
  bool ranOut = false;
};

// Mixes period after period until the voice runs out or `limitFrames` pass.
Mixed MixOut(SampleVoice& voice, int limitFrames) {
  Mixed mixed;
  std::vector<float> period(kPeriodFrames * kMixChannels);
  for (int done = 0; done < limitFrames && !mixed.ranOut; done += kPeriodFrames) {
    std::fill(period.begin(), period.end(), 0.0f);
    mixed.ranOut = voice.MixInto(period.data(), kPeriodFrames);
    mixed.framesMixed += kPeriodFrames;
    for (size_t frame = 0; frame < kPeriodFrames; ++frame) {
      const bool left = std::fabs(period[2 * frame]) > 0.01f;
      const bool right = std::fabs(period[2 * frame + 1]) > 0.01f;
      mixed.leftHeard += left;
      mixed.rightHeard += right;
      mixed.framesHeard += left || right;
    }
  }
  return mixed;
}

// Leaving the game beeps twice a tenth of a second apart; the two must not
// run together into one tone.
TEST(MixerTest, TwoBeepsATenthApartAreHeardAsTwo) {
  Mixer mixer([] {}, Mixer::Drive::Manual, kPeriodFrames);
  std::vector<float> heard(static_cast<size_t>(3 * kTenthFrames) * kMixChannels);
  mixer.Beep();
  mixer.MixPeriod(heard.data(), kTenthFrames);
  mixer.Beep();
  mixer.MixPeriod(heard.data() + kTenthFrames * kMixChannels, 2 * kTenthFrames);
  constexpr int kGapFrames = kMixRate / 50;  // 20 ms of quiet parts two sounds
  int bursts = 0, quietRun = kGapFrames;
  for (size_t frame = 0; frame < heard.size() / kMixChannels; ++frame) {
    if (std::abs(heard[frame * kMixChannels]) < 1e-3f) {
      ++quietRun;
      continue;
    }
    if (quietRun >= kGapFrames) ++bursts;
    quietRun = 0;
  }
  EXPECT_EQ(bursts, 2);
}

TEST(SampleVoiceTest, StartsAtThePositionSetAndReachesTheSidesByTheirGains) {
  auto voice = MakeVoice(0.2);
  voice->SetPosition(2205 * 2);  // half way, in bytes
  voice->SetGains(0.0f, 1.0f);
  voice->Play(false);
  const Mixed mixed = MixOut(*voice, kMixRate);
  EXPECT_EQ(mixed.leftHeard, 0);
  EXPECT_NEAR(mixed.rightHeard, kTenthFrames, 40.0);
  voice->SetPosition(1 << 30);
  voice->Play(false);
  EXPECT_FALSE(voice->Playing()) << "past the end";
  EXPECT_EQ(MixOut(*voice, kMixRate).framesHeard, 0);
  auto empty = std::make_shared<SampleVoice>(std::vector<Uint8>{}, SDL_AudioSpec{});
  empty->Play(true);
  EXPECT_FALSE(empty->Playing());
}

// Played one hertz off its own rate, as the game plays every sample, a
// pure tone comes out as the same tone at the shifted pitch, with the
// error of conversion at least 90 dB below it.
TEST(SampleVoiceTest, ResamplesOffItsOwnRateWithErrorNinetyDecibelsDown) {
  constexpr int kFileRate = 22050, kPlayRate = 22051;
  constexpr double kHz = 1000.0, kLevel = 0.5;
  std::vector<float> tone(kFileRate);
  for (size_t i = 0; i < tone.size(); ++i)
    tone[i] = static_cast<float>(
        kLevel * std::sin(2 * std::numbers::pi * kHz * static_cast<double>(i) / kFileRate));
  const auto* raw = reinterpret_cast<const Uint8*>(tone.data());
  SDL_AudioSpec format{};
  format.freq = kFileRate;
  format.format = AUDIO_F32SYS;
  format.channels = 1;
  SampleVoice voice(std::vector<Uint8>(raw, raw + tone.size() * sizeof(float)), format);
  const std::vector<float> out = voice.ConvertFor(kPlayRate);
  const double heardHz = kHz * kPlayRate / kFileRate;
  ASSERT_GT(out.size(), static_cast<size_t>(kMixRate * 0.9));
  double signal = 0, error = 0;
  // The filter's edges are left out: a sample starts and ends in silence.
  for (size_t i = 2000; i + 2000 < out.size(); ++i) {
    const double expected =
        kLevel * std::sin(2 * std::numbers::pi * heardHz * static_cast<double>(i) / kMixRate);
    signal += expected * expected;
    error += (out[i] - expected) * (out[i] - expected);
  }
  EXPECT_GE(10 * std::log10(signal / error), 90.0);
}

// A loop starts and stops with short fades, so neither end clicks, and a
// stopped voice is no longer playing while its fade is still heard.
TEST(SampleVoiceTest, ALoopFadesInAndOutWithoutAJump) {
  auto voice = MakeVoice(0.5);
  voice->Play(true);
  std::vector<float> mix(2 * kPeriodFrames, 0.0f);
  voice->MixInto(mix.data(), kPeriodFrames);
  EXPECT_LT(std::fabs(mix[0]), 0.01f) << "starts from silence";
  float largestStep = 0;
  for (size_t frame = 1; frame < kPeriodFrames; ++frame)
    largestStep = std::max(largestStep, std::fabs(mix[2 * frame] - mix[2 * frame - 2]));
  EXPECT_LT(largestStep, 0.01f);
  const float before = mix[2 * kPeriodFrames - 2];
  voice->Stop();
  EXPECT_FALSE(voice->Playing());
  EXPECT_TRUE(voice->Audible());
  std::fill(mix.begin(), mix.end(), 0.0f);
  voice->MixInto(mix.data(), kPeriodFrames);
  EXPECT_LT(std::fabs(mix[0] - before), 0.01f) << "no jump at the stop";
  EXPECT_EQ(mix[2 * kPeriodFrames - 2], 0.0f) << "silent once the fade is over";
  EXPECT_FALSE(voice->Audible());
}

// The mixer driven by the test as its clock, period by period, while a
// speech thread pushes text after text as fast as it can and a sample
// plays beside: the speech is heard without a gap, the pushes wait for
// room instead of queueing whole texts, and a purge frees a waiting push.
TEST(MixerTest, DeliversLongSpeechWithoutAGapWhenFedAtItsOwnPace) {
  Mixer mixer([] {}, Mixer::Drive::Manual, kPeriodFrames);
  mixer.SetSpeechRate(22050);
  constexpr int kTexts = 20, kChunksPerText = 10, kChunk = 441;  // 20 ms chunks
  const std::vector<int16_t> chunk(kChunk, 8000);
  std::atomic<int> chunksPushed{0};
  std::atomic<bool> allPushed{false};
  std::thread speech([&] {
    for (int text = 0; text < kTexts; ++text) {
      for (int piece = 0; piece < kChunksPerText; ++piece) {
        if (!mixer.PushSpeech(chunk.data(), kChunk, 0)) return;
        ++chunksPushed;
      }
      mixer.EndSpeechText(0);
    }
    allPushed = true;
  });
  // A synthesiser is far faster than speech: before each period the test
  // lets the speech thread get two chunks ahead, however busy the machine,
  // so a gap can only come from the mixer.
  const auto letSpeechAhead = [&](int mixed) {
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!allPushed && chunksPushed * kChunk * 2 - mixed < kPeriodFrames + 4 * kChunk &&
           std::chrono::steady_clock::now() < giveUp) {
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  };
  auto voice = MakeVoice(1.0);
  mixer.Attach(voice);
  mixer.Change([&] { voice->Play(false); });
  const int speechFrames = kTexts * kChunksPerText * kChunk * 2;
  std::vector<float> period(2 * kPeriodFrames);
  int heard = 0, longestGap = 0, gap = 0, mostAhead = 0;
  // Each text starts and ends with the resampler's short ramp, below the
  // threshold for a few dozen frames.
  const int expectHeard = speechFrames - kTexts * 100;
  for (int mixed = 0; heard < expectHeard && mixed < 2 * speechFrames; mixed += kPeriodFrames) {
    letSpeechAhead(mixed);
    mostAhead = std::max(mostAhead, chunksPushed * kChunk * 2 - mixed);
    mixer.MixPeriod(period.data(), kPeriodFrames);
    for (size_t frame = 0; frame < kPeriodFrames; ++frame) {
      const bool sound = std::fabs(period[2 * frame]) > 0.01f;
      if (sound) ++heard;
      // Counted when sound comes again: the end of all speech is no gap.
      if (sound) longestGap = std::max(longestGap, gap);
      gap = sound || heard == 0 ? 0 : gap + 1;
    }
  }
  EXPECT_GE(heard, expectHeard);
  // Between two texts the resampler's ramp out and ramp in leave up to about
  // 100 quiet frames, depending on where the text ends in a period; a
  // starved mixer leaves hundreds.
  EXPECT_LE(longestGap, 128) << "frames of silence inside the speech";
  EXPECT_LT(mostAhead, kMixRate / 2) << "synthesis ran far ahead of the listener";
  mixer.PurgeSpeech(1);
  speech.join();
  EXPECT_FALSE(mixer.SpeechBuffered());
  mixer.Detach(voice.get());
}

}  // namespace
}  // namespace quorble::desktop

// What the desktop speech layer hands espeak-ng: the text as SSML, the
// rate as words a minute, and voices a listener tells apart, each as loud
// as the game's samples.
#include <espeak-ng/speak_lib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "loudness.h"
#include "platform/desktop/speech_espeak.h"
#include "sample_files.h"

namespace quorble::desktop {
namespace {

TEST(EngineTextTest, DieLettersAsLetterNamesAndMarkupEscaped) {
  const struct {
    const char* given;
    const char* handed;
  } kCases[] = {
      {" A. equals ", R"( <say-as interpret-as="characters">A</say-as> equals )"},
      {" E. equals ", R"( <say-as interpret-as="characters">E</say-as> equals )"},
      // An article that begins a sentence stays an article.
      {"A kwor-bul is when", "A kwor-bul is when"},
      {" Press R, to roll the dice ", " Press R, to roll the dice "},
      {"a", "a"},
      {" 3 < 4 & 5 > 2 ", " 3 &lt; 4 &amp; 5 &gt; 2 "},
      {"", ""},
      {" .", " ."},
  };
  for (const auto& text : kCases) EXPECT_EQ(EngineText(text.given), text.handed) << text.given;
}

// Every step is heard as faster than the one below it, from the slowest
// the engine allows to well past 900 words a minute, and the steps are of
// one size on both sides of 0.
TEST(WordsPerMinuteTest, GrowsByOneRatioEveryStepPastNineHundred) {
  EXPECT_EQ(WordsPerMinute(0), 175);
  EXPECT_EQ(WordsPerMinute(10), 525);
  EXPECT_EQ(WordsPerMinute(-10), 80) << "the engine's slowest";
  EXPECT_GE(WordsPerMinute(15), 900);
  for (int rate = -6; rate < 19; ++rate) {
    const double ratio = static_cast<double>(WordsPerMinute(rate + 1)) / WordsPerMinute(rate);
    EXPECT_NEAR(ratio, std::pow(3.0, 0.1), 0.01) << rate;
  }
  EXPECT_EQ(WordsPerMinute(1000), WordsPerMinute(40)) << "held at the fastest";
}

// Each voice as the game has espeak-ng speak it: its variant and pitch at the normal rate,
// with its gain applied as the player hears it.
class VoiceListTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    rate_ = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 20, nullptr, 0);
    espeak_SetSynthCallback([](short* pcm, int count, espeak_EVENT*) {
      if (pcm != nullptr) pcm_.insert(pcm_.end(), pcm, pcm + count);
      return 0;
    });
  }
  static void TearDownTestSuite() { espeak_Terminate(); }

  static std::vector<int16_t> Render(const VoiceChoice& voice, const char* text) {
    pcm_.clear();
    EXPECT_EQ(espeak_SetVoiceByName(voice.name), EE_OK) << voice.name;
    espeak_SetParameter(espeakPITCH, voice.pitch, 0);
    espeak_SetParameter(espeakRATE, WordsPerMinute(0), 0);
    espeak_Synth(text, std::strlen(text) + 1, 0, POS_CHARACTER, 0, espeakCHARS_AUTO, nullptr,
                 nullptr);
    std::vector<int16_t> heard;
    Scale(pcm_, OutputGain(voice, 100), heard);
    return heard;
  }

  static inline int rate_ = 0;
  static inline std::vector<short> pcm_;
};

double FramePitch(const int16_t* frame, int size, int rate) {
  double energy = 0;
  for (int i = 0; i < size; ++i) energy += static_cast<double>(frame[i]) * frame[i];
  int bestLag = 0;
  double best = 0.6;  // weaker correlation is not voiced
  for (int lag = rate / 500; lag <= rate / 50; ++lag) {
    double product = 0, lagged = 0;
    for (int i = 0; i + lag < size; ++i) {
      product += static_cast<double>(frame[i]) * frame[i + lag];
      lagged += static_cast<double>(frame[i + lag]) * frame[i + lag];
    }
    const double correlation = product / std::sqrt(energy * lagged + 1);
    if (correlation > best) best = correlation, bestLag = lag;
  }
  return bestLag == 0 ? 0 : static_cast<double>(rate) / bestLag;
}

// Over the frames loud enough to be voiced speech rather than a pause or a faint consonant.
double MedianPitch(const std::vector<int16_t>& pcm, int rate) {
  constexpr size_t kFrame = 1024;
  std::vector<double> pitches;
  for (size_t at = 0; at + kFrame < pcm.size(); at += kFrame / 2) {
    double energy = 0;
    for (size_t i = 0; i < kFrame; ++i) energy += static_cast<double>(pcm[at + i]) * pcm[at + i];
    if (energy / kFrame < 300.0 * 300.0) continue;
    if (const double pitch = FramePitch(&pcm[at], kFrame, rate); pitch > 0)
      pitches.push_back(pitch);
  }
  std::sort(pitches.begin(), pitches.end());
  return pitches.empty() ? 0 : pitches[pitches.size() / 2];
}

// Every voice, those offered and the one only computer players may have, lies at least two
// semitones from every other in median pitch: voices that differ less are heard as one
// speaker in another mood.
TEST_F(VoiceListTest, EveryVoiceTwoSemitonesFromEveryOther) {
  ASSERT_GT(rate_, 0);
  const auto voices = VoiceChoices();
  ASSERT_EQ(voices.size(), 9u);
  std::vector<double> semitones;
  for (const VoiceChoice& voice : voices) {
    const double hz = MedianPitch(
        Render(voice, " Would you like to read the instructions? Press R, to roll. "), rate_);
    EXPECT_GT(hz, 50.0) << voice.name;
    semitones.push_back(12.0 * std::log2(std::max(hz, 1.0) / 100.0));
  }
  for (size_t a = 0; a < voices.size(); ++a) {
    for (size_t b = a + 1; b < voices.size(); ++b) {
      EXPECT_GE(std::abs(semitones[a] - semitones[b]), 2.0)
          << voices[a].name << " at " << semitones[a] << " and " << voices[b].name << " at "
          << semitones[b] << " semitones from 100 Hz";
    }
  }
}

// A player is heard as loud as every other and as the game's samples, within 1 LU (integrated
// loudness, ITU-R BS.1770) of the samples' mean, on a stretch of the game's own prompts; the
// samples themselves keep within 1 LU of one another's mean. A voice that fails is given the
// gain it would need.
TEST_F(VoiceListTest, EveryVoiceAsLoudAsTheSamples) {
  ASSERT_GT(rate_, 0);
  std::vector<double> samples;
  for (int index = 0; index < 8; ++index) {
    samples.push_back(
        quorble::loudness::IntegratedLoudness(quorble::sample_files::Values(index), 22050));
  }
  const double reference = std::accumulate(samples.begin(), samples.end(), 0.0) / 8.0;
  for (int index = 0; index < 8; ++index) {
    EXPECT_NEAR(samples[static_cast<size_t>(index)], reference, 1.0) << "quorble" << index;
  }
  constexpr const char* kPrompts =
      " Would you like to read the instructions? Press R, to roll the dice. Select Dice. "
      " Do you wish to exit the game without saving it? Press the M key to review your dice. "
      " Use the arrow keys to move through and review the score board. Is this Correct? "
      " Select which game you wish to play. Game Saved. press the s key to respeak all dice. "
      " press the K key to keep die as they are. Lets try that again please. ";
  for (const VoiceChoice& voice : VoiceChoices()) {
    std::vector<double> heard;
    for (int16_t value : Render(voice, kPrompts)) heard.push_back(value / 32768.0);
    const double lufs = quorble::loudness::IntegratedLoudness(heard, rate_);
    EXPECT_NEAR(lufs, reference, 1.0)
        << voice.name << " wants a gain of " << voice.gainDb + reference - lufs << " dB";
  }
}

}  // namespace
}  // namespace quorble::desktop

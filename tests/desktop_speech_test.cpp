// What the desktop speech layer hands espeak-ng: the text as SSML, the
// rate as words a minute, and voices a listener tells apart.
#include <espeak-ng/speak_lib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "platform/desktop/speech_espeak.h"

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

// Median pitch (autocorrelation over voiced frames) and spectral centroid
// of a voice saying a fixed sentence.
struct VoicePrint {
  double pitchHz = 0, centroidHz = 0;
};

std::vector<short> g_pcm;

int Collect(short* pcm, int count, espeak_EVENT*) {
  if (pcm != nullptr) g_pcm.insert(g_pcm.end(), pcm, pcm + count);
  return 0;
}

double FramePitch(const short* frame, int size, int rate) {
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

double FrameCentroid(const short* frame, int size, int rate, double& weight) {
  double weighted = 0;
  for (int bin = 1; bin < size / 8; ++bin) {
    double re = 0, im = 0;
    for (int i = 0; i < size; ++i) {
      const double window = 0.5 - 0.5 * std::cos(2 * M_PI * i / size);
      re += window * frame[i] * std::cos(2 * M_PI * 4 * bin * i / size);
      im += window * frame[i] * std::sin(2 * M_PI * 4 * bin * i / size);
    }
    const double magnitude = std::hypot(re, im);
    weighted += magnitude * 4.0 * bin * rate / size;
    weight += magnitude;
  }
  return weighted;
}

VoicePrint Measure(const VoiceChoice& voice, int rate) {
  constexpr const char* kSentence = " Would you like to read the instructions? Press R, to roll. ";
  constexpr int kFrame = 1024;
  g_pcm.clear();
  EXPECT_EQ(espeak_SetVoiceByName(voice.name), EE_OK) << voice.name;
  espeak_SetParameter(espeakPITCH, voice.pitch, 0);
  espeak_Synth(kSentence, std::strlen(kSentence) + 1, 0, POS_CHARACTER, 0, espeakCHARS_AUTO,
               nullptr, nullptr);
  std::vector<double> pitches;
  double centroid = 0, weight = 0;
  for (size_t at = 0; at + kFrame < g_pcm.size(); at += kFrame / 2) {
    double energy = 0;
    for (size_t i = 0; i < kFrame; ++i)
      energy += static_cast<double>(g_pcm[at + i]) * g_pcm[at + i];
    if (energy / kFrame < 300.0 * 300.0) continue;  // pauses and faint consonants
    if (const double pitch = FramePitch(&g_pcm[at], kFrame, rate); pitch > 0)
      pitches.push_back(pitch);
    centroid += FrameCentroid(&g_pcm[at], kFrame, rate, weight);
  }
  std::sort(pitches.begin(), pitches.end());
  return {pitches.empty() ? 0 : pitches[pitches.size() / 2], weight > 0 ? centroid / weight : 0};
}

// Every voice the dialogue offers (all but the last of the list) differs
// from every other by at least two semitones of pitch or an eighth in the
// centre of its spectrum.
TEST(VoiceListTest, OffersEightVoicesThatDifferInPitchOrTimbre) {
  const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 20, nullptr, 0);
  ASSERT_GT(rate, 0);
  espeak_SetSynthCallback(&Collect);
  const auto voices = VoiceChoices();
  ASSERT_EQ(voices.size(), 9u);
  std::vector<VoicePrint> prints;
  for (size_t i = 0; i + 1 < voices.size(); ++i) prints.push_back(Measure(voices[i], rate));
  const auto apart = [](double a, double b, double ratio) {
    return std::max(a, b) >= ratio * std::min(a, b);
  };
  for (size_t a = 0; a < prints.size(); ++a) {
    EXPECT_GT(prints[a].pitchHz, 50.0) << voices[a].name;
    for (size_t b = a + 1; b < prints.size(); ++b) {
      EXPECT_TRUE(apart(prints[a].pitchHz, prints[b].pitchHz, 1.12) ||
                  apart(prints[a].centroidHz, prints[b].centroidHz, 1.125))
          << voices[a].name << " (" << prints[a].pitchHz << " Hz, " << prints[a].centroidHz
          << " Hz) and " << voices[b].name << " (" << prints[b].pitchHz << " Hz, "
          << prints[b].centroidHz << " Hz)";
    }
  }
  espeak_Terminate();
}

}  // namespace
}  // namespace quorble::desktop

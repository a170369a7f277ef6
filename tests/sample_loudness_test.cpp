// The generated samples measured against the speech they play beside.
#include <espeak-ng/speak_lib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "loudness.h"
#include "sample_files.h"

namespace {

using quorble::sample_files::kFullScale;

// Every sample is as loud as speech, within 2 LU (integrated loudness,
// ITU-R BS.1770), measured against the engine's default voice rendered
// here: no cue is lost under speech or jumps out of it.
TEST(SampleLoudness, LoudAsSpeechWithinTwoLoudnessUnits) {
  static std::vector<double> speech;
  const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 20, nullptr, 0);
  ASSERT_GT(rate, 0);
  espeak_SetSynthCallback([](short* pcm, int count, espeak_EVENT*) {
    for (int i = 0; pcm != nullptr && i < count; ++i) speech.push_back(pcm[i] / kFullScale);
    return 0;
  });
  ASSERT_EQ(espeak_SetVoiceByName("en-us"), EE_OK);
  const std::string text =
      " Would you like to read the instructions? Press R, to roll the dice. Select Dice. "
      "Do you wish to exit the game without saving it? ";
  espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0, espeakCHARS_AUTO, nullptr,
               nullptr);
  espeak_Terminate();
  const double reference = quorble::loudness::IntegratedLoudness(speech, rate);
  ASSERT_GT(reference, -40.0);
  for (int index = 0; index < 8; ++index) {
    EXPECT_NEAR(quorble::loudness::IntegratedLoudness(quorble::sample_files::Values(index), 22050),
                reference, 2.0)
        << "quorble" << index;
  }
}

}  // namespace

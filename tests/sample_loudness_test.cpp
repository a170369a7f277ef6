// The generated samples measured against the speech they play beside.
#include <espeak-ng/speak_lib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "file_names.h"
#include "little_endian.h"
#include "loudness.h"

namespace {

constexpr size_t kHeaderBytes = 44;
constexpr double kFullScale = 32768.0;

// The sample's values, scaled to full scale 1.
std::vector<double> Signal(int index) {
  std::ifstream file(std::filesystem::path(QUORBLE_BUILD_DIR) / quorble::file_names::Sample(index),
                     std::ios::binary);
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file),
                                   std::istreambuf_iterator<char>()};
  std::vector<double> values;
  for (size_t at = kHeaderBytes; at + 1 < bytes.size(); at += 2) {
    values.push_back(static_cast<int16_t>(quorble::ReadLittleEndian(bytes, at, 2)) / kFullScale);
  }
  return values;
}

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
    EXPECT_NEAR(quorble::loudness::IntegratedLoudness(Signal(index), 22050), reference, 2.0)
        << "quorble" << index;
  }
}

}  // namespace

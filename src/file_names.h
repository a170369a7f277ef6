// The names of the game's files, each written once for the game, the sample
// generator and the tests.
#pragma once

#include <string>

namespace quorble::file_names {

// In the data folder.
inline constexpr const char* kSave = "quorble.sav";
inline constexpr const char* kBadSave = "quorble.sav.bad";  // a save that would not load
inline constexpr const char* kConfig = "quorble.cfg";
inline constexpr const char* kLog = "quorblelog.txt";
inline constexpr const char* kInstructions = "quorble.txt";

// Beside the program: the samples quorble0.wav to quorble7.wav.
inline std::string Sample(int index) { return "quorble" + std::to_string(index) + ".wav"; }
inline constexpr int kFanfareSample = 0;
inline constexpr int kSettlingSample = 5;
inline constexpr int kFillerSample = 7;
// The byte offset in the settling sample at which the game starts its tail.
inline constexpr int kSettlingTailOffset = 40000;

}  // namespace quorble::file_names

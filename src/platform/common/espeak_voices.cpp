#include "platform/common/espeak_voices.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorble::espeak {
namespace {

// In a fixed order, the first being the engine's own default. No two lie within two semitones
// of each other's median pitch, so each player is told apart at once (the voice list test
// measures it); accents and variants add to that. The game never offers the last one in its
// voice dialogue, so nine make eight to choose from; computer players may have it.
//
// Each gain brings its voice to the loudness the samples are made at, as the game's prompts
// measure it: otherwise one player would be heard up to 5 LU louder than another. The voice
// list test prints the gain each voice needs.
constexpr std::array kVoices{
    VoiceChoice{"en-us", 50, -0.1},
    VoiceChoice{"en-us+f3", 50, -0.6},
    VoiceChoice{"gmw/en+m1", 25, 1.6},
    VoiceChoice{"gmw/en+f4", 50, -1.8},
    VoiceChoice{"en-gb-scotland", 75, -1.9},
    VoiceChoice{"en-029+f2", 85, -3.7},
    VoiceChoice{"en-gb-x-rp+m7", 25, -0.5},
    VoiceChoice{"en-us-nyc+f5", 65, -1.0},
    VoiceChoice{"en-gb-x-gbcwmd+f2", 20, -1.7},
};

constexpr int kNormalWordsPerMinute = 175;
constexpr int kSlowestWordsPerMinute = 80;
constexpr int kFastestWordsPerMinute = 1500;

std::string Escaped(char c) {
  switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return std::string(1, c);
  }
}

bool IsAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Where a lone letter followed by a full stop starts the text, or npos.
size_t LeadingLetter(const std::string& text) {
  const size_t at = text.find_first_not_of(' ');
  if (at == std::string::npos || at + 1 >= text.size()) return std::string::npos;
  return IsAsciiLetter(text[at]) && text[at + 1] == '.' ? at : std::string::npos;
}

}  // namespace

std::string EngineText(const std::string& text) {
  std::string out;
  size_t from = 0;
  const size_t letter = LeadingLetter(text);
  if (letter != std::string::npos) {
    // The full stop goes: after a letter name the engine would say "dot".
    out = text.substr(0, letter) + "<say-as interpret-as=\"characters\">" + text[letter] +
          "</say-as>";
    from = letter + 2;
  }
  for (size_t at = from; at < text.size(); ++at) out += Escaped(text[at]);
  return out;
}

std::span<const VoiceChoice> VoiceChoices() { return kVoices; }

float OutputGain(const VoiceChoice& voice, int volume) {
  return static_cast<float>(std::clamp(volume, 0, 100) / 100.0 *
                            std::pow(10.0, voice.gainDb / 20.0));
}

int WordsPerMinute(int rate) {
  const double wordsPerMinute = kNormalWordsPerMinute * std::pow(3.0, rate / 10.0);
  return static_cast<int>(std::lround(
      std::clamp<double>(wordsPerMinute, kSlowestWordsPerMinute, kFastestWordsPerMinute)));
}

}  // namespace quorble::espeak

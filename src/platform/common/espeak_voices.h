// What every platform that speaks with espeak-ng hands the engine: the
// voices, the rate as words a minute and the text as SSML. The desktop
// links the engine; the browser runs it in WebAssembly. Both must sound
// the same, so both take these from here.
#pragma once

#include <span>
#include <string>

namespace quorble::espeak {

// Words per minute for a rate: each step up is 11.6 % faster, each step
// down as much slower, so that +10 is three times normal and -10 a third.
// Held within the slowest the engine says and a fastest that is still
// speech (espeak-ng speeds up through its sonic method above 450).
int WordsPerMinute(int rate);

// The text as the engine is handed it, as SSML: markup characters escaped,
// and a die's letter at the head of the text (" A. equals ") marked to be
// spoken as the letter's name, which the engine would otherwise read as
// the article.
std::string EngineText(const std::string& text);

// An espeak-ng voice (with its variant), the base pitch it speaks at, 0 to
// 100 on the engine's scale, and the gain that makes it as loud as the rest.
struct VoiceChoice {
  const char* name;
  int pitch;
  double gainDb;
};
// The voices offered, in the order of the game's voice numbers.
std::span<const VoiceChoice> VoiceChoices();

// The factor a voice's PCM is heard at, at a volume from 0 to 100.
float OutputGain(const VoiceChoice& voice, int volume);

// Said first when the player asked for their own voices and none could be
// had, so that they know why the voice is another.
inline constexpr char kOwnVoicesMissing[] =
    " Your speech dispatcher could not be reached, so the game speaks with its own voice. ";

}  // namespace quorble::espeak

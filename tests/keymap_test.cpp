// The key codes the game sees for SDL's keys. Every code matters: a name
// is typed from the codes, so even Pause or Scroll Lock leave a character.
#include "platform/desktop/keymap.h"

#include <SDL_keyboard.h>
#include <gtest/gtest.h>

#include <string>

namespace quorble::desktop {
namespace {

// The key at the place SDL calls `name` on a US keyboard.
SDL_Scancode Place(const std::string& name) {
  const SDL_Scancode scancode = SDL_GetScancodeFromName(name.c_str());
  EXPECT_NE(scancode, SDL_SCANCODE_UNKNOWN) << name;
  return scancode;
}

// Letters follow the layout (French A and Dvorak ' on the US Q); the digit
// row follows the place, whatever character the layout puts there; a
// character with no code of its own (German o umlaut) falls back to its US
// place, and one with no place either is dropped.
TEST(VirtualKeyCode, CharactersFollowTheLayout) {
  const struct {
    SDL_Keycode sym;
    const char* place;
    int code;
  } kCases[] = {
      {'z', "Z", 90},     {'a', "Q", 65},       {'\'', "Q", 222}, {'s', ";", 83},
      {'9', "9", 57},     {0xE0, "0", 48},      {0xF6, ";", 186}, {'\b', "Backspace", 8},
      {' ', "Space", 32}, {0x7F, "Delete", 46},
  };
  for (const auto& key : kCases) {
    EXPECT_EQ(VirtualKeyCode(key.sym, Place(key.place), false), key.code) << key.place;
  }
  EXPECT_EQ(VirtualKeyCode(0xE9, SDL_SCANCODE_UNKNOWN, false), 0);
  EXPECT_EQ(VirtualKeyCode(SDLK_z, SDL_SCANCODE_Z, true), 90) << "Num Lock is the keypad's alone";
  // Punctuation by the layout's character.
  const std::string kMarks = ";=,-./`[\\]'";
  const int kMarkCodes[] = {186, 187, 188, 189, 190, 191, 192, 219, 220, 221, 222};
  for (size_t i = 0; i < kMarks.size(); ++i) {
    EXPECT_EQ(VirtualKeyCode(kMarks[i], SDL_SCANCODE_UNKNOWN, false), kMarkCodes[i]) << kMarks[i];
  }
}

// Keys known by their place alone, whose sym is SDL's own for that place.
int PlaceCode(const std::string& name, bool numLock) {
  const SDL_Scancode scancode = Place(name);
  return VirtualKeyCode(SDL_SCANCODE_TO_KEYCODE(scancode), scancode, numLock);
}

TEST(VirtualKeyCode, OtherKeysFollowThePlace) {
  // The same with Num Lock or without; 0 for keys the game has no code for.
  const std::pair<const char*, int> kPlaces[] = {
      {"Left Shift", 16},   {"Right Shift", 16}, {"Left Ctrl", 17}, {"Right Ctrl", 17},
      {"Left Alt", 18},     {"Right Alt", 18},   {"Pause", 19},     {"CapsLock", 20},
      {"PageUp", 33},       {"PageDown", 34},    {"End", 35},       {"Home", 36},
      {"Left", 37},         {"Up", 38},          {"Right", 39},     {"Down", 40},
      {"PrintScreen", 44},  {"Insert", 45},      {"Left GUI", 91},  {"Right GUI", 92},
      {"Numlock", 144},     {"ScrollLock", 145}, {"F1", 112},       {"F12", 123},
      {"Keypad *", 106},    {"Keypad +", 107},   {"Keypad -", 109}, {"Keypad /", 111},
      {"Keypad Enter", 13}, {"F13", 0},          {"VolumeUp", 0},   {"Application", 0},
      {"Keypad =", 0},
  };
  for (const auto& [name, code] : kPlaces) {
    EXPECT_EQ(PlaceCode(name, false), code) << name;
    EXPECT_EQ(PlaceCode(name, true), code) << name;
  }
  // The keypad's digits and point give 96 to 105 and 110 with Num Lock, and
  // without it the moves printed on them.
  const std::string kPad = "0123456789.";
  const int kPadOn[] = {96, 97, 98, 99, 100, 101, 102, 103, 104, 105, 110};
  const int kPadOff[] = {45, 35, 40, 34, 37, 12, 39, 36, 38, 33, 46};
  for (size_t i = 0; i < kPad.size(); ++i) {
    EXPECT_EQ(PlaceCode("Keypad " + kPad.substr(i, 1), true), kPadOn[i]) << kPad[i];
    EXPECT_EQ(PlaceCode("Keypad " + kPad.substr(i, 1), false), kPadOff[i]) << kPad[i];
  }
}

}  // namespace
}  // namespace quorble::desktop

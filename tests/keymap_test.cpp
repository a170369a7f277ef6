// The key codes the game sees for SDL's keys, one table per kind of key.
#include "platform/desktop/keymap.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorble::desktop {
namespace {

struct KeyCase {
  const char* name;
  SDL_Keycode sym;
  SDL_Scancode scancode;
  bool numLock;
  int code;  // 0: the key is dropped
};

class VirtualKeyCodeTest : public testing::TestWithParam<KeyCase> {};

TEST_P(VirtualKeyCodeTest, GivesTheGamesCode) {
  const KeyCase& key = GetParam();
  EXPECT_EQ(VirtualKeyCode(key.sym, key.scancode, key.numLock), key.code);
}

std::string CaseName(const testing::TestParamInfo<KeyCase>& info) { return info.param.name; }

// Letters follow the layout: the key where a US keyboard has Q is A on a
// French one and an apostrophe on a Dvorak one.
const std::vector<KeyCase> kLetters{
    {"A", SDLK_a, SDL_SCANCODE_A, false, 65},
    {"Z", SDLK_z, SDL_SCANCODE_Z, false, 90},
    {"RWithNumLock", SDLK_r, SDL_SCANCODE_R, true, 82},
    {"FrenchAOnUsQ", SDLK_a, SDL_SCANCODE_Q, false, 65},
    {"FrenchQOnUsA", SDLK_q, SDL_SCANCODE_A, false, 81},
    {"DvorakApostropheOnUsQ", SDLK_QUOTE, SDL_SCANCODE_Q, false, 222},
    {"DvorakSOnUsSemicolon", SDLK_s, SDL_SCANCODE_SEMICOLON, false, 83},
};
INSTANTIATE_TEST_SUITE_P(Letters, VirtualKeyCodeTest, testing::ValuesIn(kLetters), CaseName);

// The digit row follows the place, whatever character the layout puts there.
const std::vector<KeyCase> kDigitRow{
    {"One", SDLK_1, SDL_SCANCODE_1, false, 49},
    {"Five", SDLK_5, SDL_SCANCODE_5, false, 53},
    {"Nine", SDLK_9, SDL_SCANCODE_9, false, 57},
    {"Zero", SDLK_0, SDL_SCANCODE_0, false, 48},
    {"FrenchAmpersandIsOne", SDLK_AMPERSAND, SDL_SCANCODE_1, false, 49},
    {"FrenchAGraveIsZero", 0xE0, SDL_SCANCODE_0, false, 48},
    {"FrenchMinusIsSix", SDLK_MINUS, SDL_SCANCODE_6, false, 54},
};
INSTANTIATE_TEST_SUITE_P(DigitRow, VirtualKeyCodeTest, testing::ValuesIn(kDigitRow), CaseName);

const std::vector<KeyCase> kKeypadNumLockOn{
    {"Zero", SDLK_KP_0, SDL_SCANCODE_KP_0, true, 96},
    {"One", SDLK_KP_1, SDL_SCANCODE_KP_1, true, 97},
    {"Two", SDLK_KP_2, SDL_SCANCODE_KP_2, true, 98},
    {"Three", SDLK_KP_3, SDL_SCANCODE_KP_3, true, 99},
    {"Four", SDLK_KP_4, SDL_SCANCODE_KP_4, true, 100},
    {"Five", SDLK_KP_5, SDL_SCANCODE_KP_5, true, 101},
    {"Six", SDLK_KP_6, SDL_SCANCODE_KP_6, true, 102},
    {"Seven", SDLK_KP_7, SDL_SCANCODE_KP_7, true, 103},
    {"Eight", SDLK_KP_8, SDL_SCANCODE_KP_8, true, 104},
    {"Nine", SDLK_KP_9, SDL_SCANCODE_KP_9, true, 105},
    {"Period", SDLK_KP_PERIOD, SDL_SCANCODE_KP_PERIOD, true, 110},
    {"Multiply", SDLK_KP_MULTIPLY, SDL_SCANCODE_KP_MULTIPLY, true, 106},
    {"Plus", SDLK_KP_PLUS, SDL_SCANCODE_KP_PLUS, true, 107},
    {"Minus", SDLK_KP_MINUS, SDL_SCANCODE_KP_MINUS, true, 109},
    {"Divide", SDLK_KP_DIVIDE, SDL_SCANCODE_KP_DIVIDE, true, 111},
    {"Enter", SDLK_KP_ENTER, SDL_SCANCODE_KP_ENTER, true, 13},
};
INSTANTIATE_TEST_SUITE_P(KeypadNumLockOn, VirtualKeyCodeTest, testing::ValuesIn(kKeypadNumLockOn),
                         CaseName);

// Without Num Lock the keypad moves; its operators and Enter stay the same.
const std::vector<KeyCase> kKeypadNumLockOff{
    {"ZeroIsInsert", SDLK_KP_0, SDL_SCANCODE_KP_0, false, 45},
    {"OneIsEnd", SDLK_KP_1, SDL_SCANCODE_KP_1, false, 35},
    {"TwoIsDown", SDLK_KP_2, SDL_SCANCODE_KP_2, false, 40},
    {"ThreeIsPageDown", SDLK_KP_3, SDL_SCANCODE_KP_3, false, 34},
    {"FourIsLeft", SDLK_KP_4, SDL_SCANCODE_KP_4, false, 37},
    {"FiveIsClear", SDLK_KP_5, SDL_SCANCODE_KP_5, false, 12},
    {"SixIsRight", SDLK_KP_6, SDL_SCANCODE_KP_6, false, 39},
    {"SevenIsHome", SDLK_KP_7, SDL_SCANCODE_KP_7, false, 36},
    {"EightIsUp", SDLK_KP_8, SDL_SCANCODE_KP_8, false, 38},
    {"NineIsPageUp", SDLK_KP_9, SDL_SCANCODE_KP_9, false, 33},
    {"PeriodIsDelete", SDLK_KP_PERIOD, SDL_SCANCODE_KP_PERIOD, false, 46},
    {"Multiply", SDLK_KP_MULTIPLY, SDL_SCANCODE_KP_MULTIPLY, false, 106},
    {"Plus", SDLK_KP_PLUS, SDL_SCANCODE_KP_PLUS, false, 107},
    {"Minus", SDLK_KP_MINUS, SDL_SCANCODE_KP_MINUS, false, 109},
    {"Divide", SDLK_KP_DIVIDE, SDL_SCANCODE_KP_DIVIDE, false, 111},
    {"Enter", SDLK_KP_ENTER, SDL_SCANCODE_KP_ENTER, false, 13},
};
INSTANTIATE_TEST_SUITE_P(KeypadNumLockOff, VirtualKeyCodeTest, testing::ValuesIn(kKeypadNumLockOff),
                         CaseName);

const std::vector<KeyCase> kFunctionKeys{
    {"F1", SDLK_F1, SDL_SCANCODE_F1, false, 112},
    {"F2", SDLK_F2, SDL_SCANCODE_F2, false, 113},
    {"F10", SDLK_F10, SDL_SCANCODE_F10, false, 121},
    {"F12", SDLK_F12, SDL_SCANCODE_F12, false, 123},
};
INSTANTIATE_TEST_SUITE_P(FunctionKeys, VirtualKeyCodeTest, testing::ValuesIn(kFunctionKeys),
                         CaseName);

// Punctuation by the layout's character; a character with no code of its
// own, like the German o umlaut, falls back to the key's US place.
const std::vector<KeyCase> kPunctuation{
    {"Semicolon", SDLK_SEMICOLON, SDL_SCANCODE_SEMICOLON, false, 186},
    {"Equals", SDLK_EQUALS, SDL_SCANCODE_EQUALS, false, 187},
    {"Comma", SDLK_COMMA, SDL_SCANCODE_COMMA, false, 188},
    {"Minus", SDLK_MINUS, SDL_SCANCODE_MINUS, false, 189},
    {"Period", SDLK_PERIOD, SDL_SCANCODE_PERIOD, false, 190},
    {"Slash", SDLK_SLASH, SDL_SCANCODE_SLASH, false, 191},
    {"Grave", SDLK_BACKQUOTE, SDL_SCANCODE_GRAVE, false, 192},
    {"LeftBracket", SDLK_LEFTBRACKET, SDL_SCANCODE_LEFTBRACKET, false, 219},
    {"Backslash", SDLK_BACKSLASH, SDL_SCANCODE_BACKSLASH, false, 220},
    {"RightBracket", SDLK_RIGHTBRACKET, SDL_SCANCODE_RIGHTBRACKET, false, 221},
    {"Apostrophe", SDLK_QUOTE, SDL_SCANCODE_APOSTROPHE, false, 222},
    {"FrenchCommaOnUsM", SDLK_COMMA, SDL_SCANCODE_M, false, 188},
    {"GermanOUmlautOnUsSemicolon", 0xF6, SDL_SCANCODE_SEMICOLON, false, 186},
};
INSTANTIATE_TEST_SUITE_P(Punctuation, VirtualKeyCodeTest, testing::ValuesIn(kPunctuation),
                         CaseName);

const std::vector<KeyCase> kModifiers{
    {"LeftShift", SDLK_LSHIFT, SDL_SCANCODE_LSHIFT, false, 16},
    {"RightShift", SDLK_RSHIFT, SDL_SCANCODE_RSHIFT, false, 16},
    {"LeftCtrl", SDLK_LCTRL, SDL_SCANCODE_LCTRL, false, 17},
    {"RightCtrl", SDLK_RCTRL, SDL_SCANCODE_RCTRL, true, 17},
    {"LeftAlt", SDLK_LALT, SDL_SCANCODE_LALT, false, 18},
    {"RightAlt", SDLK_RALT, SDL_SCANCODE_RALT, false, 18},
    {"LeftWindows", SDLK_LGUI, SDL_SCANCODE_LGUI, false, 91},
    {"RightWindows", SDLK_RGUI, SDL_SCANCODE_RGUI, false, 92},
    {"CapsLock", SDLK_CAPSLOCK, SDL_SCANCODE_CAPSLOCK, false, 20},
    {"NumLock", SDLK_NUMLOCKCLEAR, SDL_SCANCODE_NUMLOCKCLEAR, true, 144},
    {"ScrollLock", SDLK_SCROLLLOCK, SDL_SCANCODE_SCROLLLOCK, false, 145},
};
INSTANTIATE_TEST_SUITE_P(Modifiers, VirtualKeyCodeTest, testing::ValuesIn(kModifiers), CaseName);

const std::vector<KeyCase> kEditingAndMoving{
    {"Backspace", SDLK_BACKSPACE, SDL_SCANCODE_BACKSPACE, false, 8},
    {"Tab", SDLK_TAB, SDL_SCANCODE_TAB, false, 9},
    {"Return", SDLK_RETURN, SDL_SCANCODE_RETURN, false, 13},
    {"Pause", SDLK_PAUSE, SDL_SCANCODE_PAUSE, false, 19},
    {"Escape", SDLK_ESCAPE, SDL_SCANCODE_ESCAPE, false, 27},
    {"Space", SDLK_SPACE, SDL_SCANCODE_SPACE, false, 32},
    {"PageUp", SDLK_PAGEUP, SDL_SCANCODE_PAGEUP, false, 33},
    {"PageDown", SDLK_PAGEDOWN, SDL_SCANCODE_PAGEDOWN, false, 34},
    {"End", SDLK_END, SDL_SCANCODE_END, false, 35},
    {"Home", SDLK_HOME, SDL_SCANCODE_HOME, false, 36},
    {"Left", SDLK_LEFT, SDL_SCANCODE_LEFT, false, 37},
    {"Up", SDLK_UP, SDL_SCANCODE_UP, true, 38},
    {"Right", SDLK_RIGHT, SDL_SCANCODE_RIGHT, false, 39},
    {"Down", SDLK_DOWN, SDL_SCANCODE_DOWN, false, 40},
    {"PrintScreen", SDLK_PRINTSCREEN, SDL_SCANCODE_PRINTSCREEN, false, 44},
    {"Insert", SDLK_INSERT, SDL_SCANCODE_INSERT, false, 45},
    {"Delete", SDLK_DELETE, SDL_SCANCODE_DELETE, false, 46},
};
INSTANTIATE_TEST_SUITE_P(EditingAndMoving, VirtualKeyCodeTest, testing::ValuesIn(kEditingAndMoving),
                         CaseName);

const std::vector<KeyCase> kDropped{
    {"Unknown", SDLK_UNKNOWN, SDL_SCANCODE_UNKNOWN, false, 0},
    {"Menu", SDLK_APPLICATION, SDL_SCANCODE_APPLICATION, false, 0},
    {"F13", SDLK_F13, SDL_SCANCODE_F13, false, 0},
    {"VolumeUp", SDLK_VOLUMEUP, SDL_SCANCODE_VOLUMEUP, false, 0},
    {"KeypadEquals", SDLK_KP_EQUALS, SDL_SCANCODE_KP_EQUALS, true, 0},
    {"LayoutOnlyCharacter", 0xE9, SDL_SCANCODE_UNKNOWN, false, 0},
};
INSTANTIATE_TEST_SUITE_P(Dropped, VirtualKeyCodeTest, testing::ValuesIn(kDropped), CaseName);

}  // namespace
}  // namespace quorble::desktop

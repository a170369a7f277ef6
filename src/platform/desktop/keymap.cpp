#include "platform/desktop/keymap.h"

#include <array>
#include <utility>

namespace quorble::desktop {
namespace {

using ScancodeCodes = std::pair<SDL_Scancode, int>;

// The keypad keys whose meaning Num Lock switches: {key, on, off}.
struct KeypadKey {
  SDL_Scancode scancode;
  int withNumLock;
  int withoutNumLock;
};

constexpr std::array kKeypad{
    KeypadKey{SDL_SCANCODE_KP_0, 96, 45},       KeypadKey{SDL_SCANCODE_KP_1, 97, 35},
    KeypadKey{SDL_SCANCODE_KP_2, 98, 40},       KeypadKey{SDL_SCANCODE_KP_3, 99, 34},
    KeypadKey{SDL_SCANCODE_KP_4, 100, 37},      KeypadKey{SDL_SCANCODE_KP_5, 101, 12},
    KeypadKey{SDL_SCANCODE_KP_6, 102, 39},      KeypadKey{SDL_SCANCODE_KP_7, 103, 36},
    KeypadKey{SDL_SCANCODE_KP_8, 104, 38},      KeypadKey{SDL_SCANCODE_KP_9, 105, 33},
    KeypadKey{SDL_SCANCODE_KP_PERIOD, 110, 46},
};

// Punctuation by the character the layout gives.
constexpr std::array<std::pair<char, int>, 11> kPunctuation{{
    {';', 186},
    {'=', 187},
    {',', 188},
    {'-', 189},
    {'.', 190},
    {'/', 191},
    {'`', 192},
    {'[', 219},
    {'\\', 220},
    {']', 221},
    {'\'', 222},
}};

// Keys known by their place: the punctuation here is the fallback for
// layouts whose character at that place has no code of its own.
constexpr std::array kByPlace{
    ScancodeCodes{SDL_SCANCODE_KP_MULTIPLY, 106},
    ScancodeCodes{SDL_SCANCODE_KP_PLUS, 107},
    ScancodeCodes{SDL_SCANCODE_KP_MINUS, 109},
    ScancodeCodes{SDL_SCANCODE_KP_DIVIDE, 111},
    ScancodeCodes{SDL_SCANCODE_KP_ENTER, 13},
    ScancodeCodes{SDL_SCANCODE_BACKSPACE, 8},
    ScancodeCodes{SDL_SCANCODE_TAB, 9},
    ScancodeCodes{SDL_SCANCODE_RETURN, 13},
    ScancodeCodes{SDL_SCANCODE_LSHIFT, 16},
    ScancodeCodes{SDL_SCANCODE_RSHIFT, 16},
    ScancodeCodes{SDL_SCANCODE_LCTRL, 17},
    ScancodeCodes{SDL_SCANCODE_RCTRL, 17},
    ScancodeCodes{SDL_SCANCODE_LALT, 18},
    ScancodeCodes{SDL_SCANCODE_RALT, 18},
    ScancodeCodes{SDL_SCANCODE_PAUSE, 19},
    ScancodeCodes{SDL_SCANCODE_CAPSLOCK, 20},
    ScancodeCodes{SDL_SCANCODE_ESCAPE, 27},
    ScancodeCodes{SDL_SCANCODE_SPACE, 32},
    ScancodeCodes{SDL_SCANCODE_PAGEUP, 33},
    ScancodeCodes{SDL_SCANCODE_PAGEDOWN, 34},
    ScancodeCodes{SDL_SCANCODE_END, 35},
    ScancodeCodes{SDL_SCANCODE_HOME, 36},
    ScancodeCodes{SDL_SCANCODE_LEFT, 37},
    ScancodeCodes{SDL_SCANCODE_UP, 38},
    ScancodeCodes{SDL_SCANCODE_RIGHT, 39},
    ScancodeCodes{SDL_SCANCODE_DOWN, 40},
    ScancodeCodes{SDL_SCANCODE_PRINTSCREEN, 44},
    ScancodeCodes{SDL_SCANCODE_INSERT, 45},
    ScancodeCodes{SDL_SCANCODE_DELETE, 46},
    ScancodeCodes{SDL_SCANCODE_LGUI, 91},
    ScancodeCodes{SDL_SCANCODE_RGUI, 92},
    ScancodeCodes{SDL_SCANCODE_NUMLOCKCLEAR, 144},
    ScancodeCodes{SDL_SCANCODE_SCROLLLOCK, 145},
    ScancodeCodes{SDL_SCANCODE_SEMICOLON, 186},
    ScancodeCodes{SDL_SCANCODE_EQUALS, 187},
    ScancodeCodes{SDL_SCANCODE_COMMA, 188},
    ScancodeCodes{SDL_SCANCODE_MINUS, 189},
    ScancodeCodes{SDL_SCANCODE_PERIOD, 190},
    ScancodeCodes{SDL_SCANCODE_SLASH, 191},
    ScancodeCodes{SDL_SCANCODE_GRAVE, 192},
    ScancodeCodes{SDL_SCANCODE_LEFTBRACKET, 219},
    ScancodeCodes{SDL_SCANCODE_BACKSLASH, 220},
    ScancodeCodes{SDL_SCANCODE_RIGHTBRACKET, 221},
    ScancodeCodes{SDL_SCANCODE_APOSTROPHE, 222},
};

int KeypadCode(SDL_Scancode scancode, bool numLock) {
  for (const auto& key : kKeypad) {
    if (key.scancode == scancode) return numLock ? key.withNumLock : key.withoutNumLock;
  }
  return 0;
}

int DigitRowCode(SDL_Scancode scancode) {
  if (scancode >= SDL_SCANCODE_1 && scancode <= SDL_SCANCODE_9) {
    return '1' + (scancode - SDL_SCANCODE_1);
  }
  return scancode == SDL_SCANCODE_0 ? '0' : 0;
}

int FunctionKeyCode(SDL_Scancode scancode) {
  if (scancode >= SDL_SCANCODE_F1 && scancode <= SDL_SCANCODE_F12) {
    return 112 + (scancode - SDL_SCANCODE_F1);
  }
  return 0;
}

int CharacterCode(SDL_Keycode sym) {
  if (sym >= SDLK_a && sym <= SDLK_z) return 'A' + (sym - SDLK_a);
  for (const auto& [character, code] : kPunctuation) {
    if (sym == character) return code;
  }
  return 0;
}

int PlaceCode(SDL_Scancode scancode) {
  for (const auto& [place, code] : kByPlace) {
    if (place == scancode) return code;
  }
  return 0;
}

}  // namespace

int VirtualKeyCode(SDL_Keycode sym, SDL_Scancode scancode, bool numLock) {
  // The order matters: a layout may put any character on the digit row.
  for (int code : {KeypadCode(scancode, numLock), DigitRowCode(scancode), FunctionKeyCode(scancode),
                   CharacterCode(sym)}) {
    if (code != 0) return code;
  }
  return PlaceCode(scancode);
}

}  // namespace quorble::desktop

#include "platform/desktop/keymap.h"

#include <array>
#include <utility>

#include "keys.h"

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
    KeypadKey{SDL_SCANCODE_KP_0, keys::kKeypad0.code + 0, keys::kInsert.code},
    KeypadKey{SDL_SCANCODE_KP_1, keys::kKeypad0.code + 1, keys::kEnd.code},
    KeypadKey{SDL_SCANCODE_KP_2, keys::kKeypad0.code + 2, keys::kDown.code},
    KeypadKey{SDL_SCANCODE_KP_3, keys::kKeypad0.code + 3, keys::kPageDown.code},
    KeypadKey{SDL_SCANCODE_KP_4, keys::kKeypad0.code + 4, keys::kLeft.code},
    KeypadKey{SDL_SCANCODE_KP_5, keys::kKeypad0.code + 5, keys::kKeypadClear.code},
    KeypadKey{SDL_SCANCODE_KP_6, keys::kKeypad0.code + 6, keys::kRight.code},
    KeypadKey{SDL_SCANCODE_KP_7, keys::kKeypad0.code + 7, keys::kHome.code},
    KeypadKey{SDL_SCANCODE_KP_8, keys::kKeypad0.code + 8, keys::kUp.code},
    KeypadKey{SDL_SCANCODE_KP_9, keys::kKeypad0.code + 9, keys::kPageUp.code},
    KeypadKey{SDL_SCANCODE_KP_PERIOD, keys::kKeypadDecimal.code, keys::kDelete.code},
};

// Punctuation by the character the layout gives.
constexpr std::array<std::pair<char, int>, 11> kPunctuation{{
    {';', keys::kSemicolon.code},
    {'=', keys::kEquals.code},
    {',', keys::kComma.code},
    {'-', keys::kMinus.code},
    {'.', keys::kPeriod.code},
    {'/', keys::kSlash.code},
    {'`', keys::kGrave.code},
    {'[', keys::kLeftBracket.code},
    {'\\', keys::kBackslash.code},
    {']', keys::kRightBracket.code},
    {'\'', keys::kApostrophe.code},
}};

// Keys known by their place: the punctuation here is the fallback for
// layouts whose character at that place has no code of its own.
constexpr std::array kByPlace{
    ScancodeCodes{SDL_SCANCODE_KP_MULTIPLY, keys::kKeypadMultiply.code},
    ScancodeCodes{SDL_SCANCODE_KP_PLUS, keys::kKeypadPlus.code},
    ScancodeCodes{SDL_SCANCODE_KP_MINUS, keys::kKeypadMinus.code},
    ScancodeCodes{SDL_SCANCODE_KP_DIVIDE, keys::kKeypadDivide.code},
    ScancodeCodes{SDL_SCANCODE_KP_ENTER, keys::kEnter.code},
    ScancodeCodes{SDL_SCANCODE_BACKSPACE, keys::kBackspace.code},
    ScancodeCodes{SDL_SCANCODE_TAB, keys::kTab.code},
    ScancodeCodes{SDL_SCANCODE_RETURN, keys::kEnter.code},
    ScancodeCodes{SDL_SCANCODE_LSHIFT, keys::kShift.code},
    ScancodeCodes{SDL_SCANCODE_RSHIFT, keys::kShift.code},
    ScancodeCodes{SDL_SCANCODE_LCTRL, keys::kCtrl.code},
    ScancodeCodes{SDL_SCANCODE_RCTRL, keys::kCtrl.code},
    ScancodeCodes{SDL_SCANCODE_LALT, keys::kAlt.code},
    ScancodeCodes{SDL_SCANCODE_RALT, keys::kAlt.code},
    ScancodeCodes{SDL_SCANCODE_PAUSE, keys::kPause.code},
    ScancodeCodes{SDL_SCANCODE_CAPSLOCK, keys::kCapsLock.code},
    ScancodeCodes{SDL_SCANCODE_ESCAPE, keys::kEsc.code},
    ScancodeCodes{SDL_SCANCODE_SPACE, keys::kSpace.code},
    ScancodeCodes{SDL_SCANCODE_PAGEUP, keys::kPageUp.code},
    ScancodeCodes{SDL_SCANCODE_PAGEDOWN, keys::kPageDown.code},
    ScancodeCodes{SDL_SCANCODE_END, keys::kEnd.code},
    ScancodeCodes{SDL_SCANCODE_HOME, keys::kHome.code},
    ScancodeCodes{SDL_SCANCODE_LEFT, keys::kLeft.code},
    ScancodeCodes{SDL_SCANCODE_UP, keys::kUp.code},
    ScancodeCodes{SDL_SCANCODE_RIGHT, keys::kRight.code},
    ScancodeCodes{SDL_SCANCODE_DOWN, keys::kDown.code},
    ScancodeCodes{SDL_SCANCODE_PRINTSCREEN, keys::kPrintScreen.code},
    ScancodeCodes{SDL_SCANCODE_INSERT, keys::kInsert.code},
    ScancodeCodes{SDL_SCANCODE_DELETE, keys::kDelete.code},
    ScancodeCodes{SDL_SCANCODE_LGUI, keys::kLeftWindows.code},
    ScancodeCodes{SDL_SCANCODE_RGUI, keys::kRightWindows.code},
    ScancodeCodes{SDL_SCANCODE_NUMLOCKCLEAR, keys::kNumLock.code},
    ScancodeCodes{SDL_SCANCODE_SCROLLLOCK, keys::kScrollLock.code},
    ScancodeCodes{SDL_SCANCODE_SEMICOLON, keys::kSemicolon.code},
    ScancodeCodes{SDL_SCANCODE_EQUALS, keys::kEquals.code},
    ScancodeCodes{SDL_SCANCODE_COMMA, keys::kComma.code},
    ScancodeCodes{SDL_SCANCODE_MINUS, keys::kMinus.code},
    ScancodeCodes{SDL_SCANCODE_PERIOD, keys::kPeriod.code},
    ScancodeCodes{SDL_SCANCODE_SLASH, keys::kSlash.code},
    ScancodeCodes{SDL_SCANCODE_GRAVE, keys::kGrave.code},
    ScancodeCodes{SDL_SCANCODE_LEFTBRACKET, keys::kLeftBracket.code},
    ScancodeCodes{SDL_SCANCODE_BACKSLASH, keys::kBackslash.code},
    ScancodeCodes{SDL_SCANCODE_RIGHTBRACKET, keys::kRightBracket.code},
    ScancodeCodes{SDL_SCANCODE_APOSTROPHE, keys::kApostrophe.code},
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
    return keys::kF1.code + (scancode - SDL_SCANCODE_F1);
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

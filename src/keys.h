// The key codes the game knows, named once for the game, the desktop's key
// map and the simulator's script reader. They are the classic virtual-key
// codes of the game's first home; the latch holds them as decimal text, so
// each key carries both forms.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace quorble::keys {

struct Key {
  int code;
  std::string_view text;  // `code` in decimal, as the latch holds it
};

// The latch's text against a key: `g == kEnter`.
constexpr bool operator==(std::string_view latched, Key key) { return latched == key.text; }

inline constexpr Key kBackspace{8, "8"};
inline constexpr Key kTab{9, "9"};
inline constexpr Key kKeypadClear{12, "12"};  // keypad 5 without Num Lock
inline constexpr Key kEnter{13, "13"};
inline constexpr Key kShift{16, "16"};
inline constexpr Key kCtrl{17, "17"};
inline constexpr Key kAlt{18, "18"};
inline constexpr Key kPause{19, "19"};
inline constexpr Key kCapsLock{20, "20"};
inline constexpr Key kEsc{27, "27"};
inline constexpr Key kSpace{32, "32"};
inline constexpr Key kPageUp{33, "33"};
inline constexpr Key kPageDown{34, "34"};
inline constexpr Key kEnd{35, "35"};
inline constexpr Key kHome{36, "36"};
inline constexpr Key kLeft{37, "37"};
inline constexpr Key kUp{38, "38"};
inline constexpr Key kRight{39, "39"};
inline constexpr Key kDown{40, "40"};
inline constexpr Key kPrintScreen{44, "44"};
inline constexpr Key kInsert{45, "45"};
inline constexpr Key kDelete{46, "46"};
inline constexpr Key kLeftWindows{91, "91"};
inline constexpr Key kRightWindows{92, "92"};
inline constexpr Key kKeypad0{96, "96"};  // keypad 1 to 9 follow it
inline constexpr Key kKeypadMultiply{106, "106"};
inline constexpr Key kKeypadPlus{107, "107"};
inline constexpr Key kKeypadMinus{109, "109"};
inline constexpr Key kKeypadDecimal{110, "110"};
inline constexpr Key kKeypadDivide{111, "111"};
inline constexpr Key kF1{112, "112"};  // F2 to F12 follow it
inline constexpr Key kF2{113, "113"};
inline constexpr Key kF5{116, "116"};
inline constexpr Key kF6{117, "117"};
inline constexpr Key kF12{123, "123"};
inline constexpr Key kNumLock{144, "144"};
inline constexpr Key kScrollLock{145, "145"};
inline constexpr Key kSemicolon{186, "186"};
inline constexpr Key kEquals{187, "187"};
inline constexpr Key kComma{188, "188"};
inline constexpr Key kMinus{189, "189"};
inline constexpr Key kPeriod{190, "190"};
inline constexpr Key kSlash{191, "191"};
inline constexpr Key kGrave{192, "192"};
inline constexpr Key kLeftBracket{219, "219"};
inline constexpr Key kBackslash{220, "220"};
inline constexpr Key kRightBracket{221, "221"};
inline constexpr Key kApostrophe{222, "222"};

namespace detail {
constexpr bool Spelled(Key key) {
  std::array<char, 4> digits{};
  std::size_t n = 0;
  for (int rest = key.code; rest > 0; rest /= 10) digits[n++] = static_cast<char>('0' + rest % 10);
  if (key.text.size() != n) return false;
  for (std::size_t i = 0; i < n; ++i) {
    if (key.text[i] != digits[n - 1 - i]) return false;
  }
  return true;
}
constexpr std::array kAll{
    kBackspace,
    kTab,
    kKeypadClear,
    kEnter,
    kShift,
    kCtrl,
    kAlt,
    kPause,
    kCapsLock,
    kEsc,
    kSpace,
    kPageUp,
    kPageDown,
    kEnd,
    kHome,
    kLeft,
    kUp,
    kRight,
    kDown,
    kPrintScreen,
    kInsert,
    kDelete,
    kLeftWindows,
    kRightWindows,
    kKeypad0,
    kKeypadMultiply,
    kKeypadPlus,
    kKeypadMinus,
    kKeypadDecimal,
    kKeypadDivide,
    kF1,
    kF2,
    kF5,
    kF6,
    kF12,
    kNumLock,
    kScrollLock,
    kSemicolon,
    kEquals,
    kComma,
    kMinus,
    kPeriod,
    kSlash,
    kGrave,
    kLeftBracket,
    kBackslash,
    kRightBracket,
    kApostrophe,
};
constexpr bool AllSpelled() {
  for (Key key : kAll) {
    if (!Spelled(key)) return false;
  }
  return true;
}
}  // namespace detail
static_assert(detail::AllSpelled(), "a key's text must be its code in decimal");

}  // namespace quorble::keys

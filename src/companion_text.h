// Words the companion mode builds from a move, shared by the hint and the
// computer players.
#pragma once

#include <string>

#include "companion/strategy.h"

namespace quorble {

// " A C D" for the dice a reroll keeps; empty when it keeps none.
inline std::string KeptLetters(const companion::Move& move) {
  std::string letters;
  for (int i = 0; i < 5; ++i) {
    if (move.keep[i]) letters += std::string(" ") + static_cast<char>('A' + i);
  }
  return letters;
}

// A row's title without the blanks the board speaks around it.
inline std::string Bare(const std::string& title) {
  const auto first = title.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return title.substr(first, title.find_last_not_of(' ') + 1 - first);
}

// " on sheet 2" when the game has more than one sheet.
inline std::string SheetWords(int sheets, int sheet) {
  return sheets == 1 ? std::string() : " on sheet " + std::to_string(sheet);
}

}  // namespace quorble

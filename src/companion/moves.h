// What the game accepts as a score, for the strategies that must never name
// a row it would refuse.
#pragma once

#include "companion/strategy.h"

namespace quorble::companion {

inline bool FiveAlike(const Dice& dice) {
  for (int die : dice) {
    if (die != dice[0]) return false;
  }
  return true;
}

// Rows 1 to 13 take one score; the extra row takes five alike again and
// again, but only on a sheet whose row 13 holds 50.
inline bool CanScore(const Sheet& sheet, int row, const Dice& dice) {
  if (row >= 1 && row <= 13) return sheet[row] < 0;
  return row == 14 && FiveAlike(dice) && sheet[13] == 50;
}

inline Move ScoreMove(int sheet, int row) {
  Move move;
  move.sheet = sheet;
  move.row = row;
  return move;
}

inline Move RerollMove(unsigned keepMask) {
  Move move;
  move.reroll = true;
  for (int i = 0; i < 5; ++i) move.keep[i] = (keepMask >> i & 1u) != 0;
  return move;
}

}  // namespace quorble::companion

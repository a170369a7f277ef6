// The sums of one score sheet, as the log writes them and the end of the
// game speaks them.
#pragma once

#include "gamestate.h"

namespace quorble {

struct SheetSums {
  int top = 0;
  int bonus = 0;
  int bottom = 0;
  int total = 0;
};

inline SheetSums SumSheet(const PlayerSheets& cells, int s) {
  SheetSums sums;
  for (int row = 1; row <= 6; ++row) sums.top += cells[row][s];
  // 63 earns the bonus: three of each face in the top rows.
  sums.bonus = sums.top > 62 ? 35 : 0;
  for (int row = 7; row <= kRows; ++row) sums.bottom += cells[row][s];
  sums.total = sums.top + sums.bonus + sums.bottom;
  return sums;
}

}  // namespace quorble

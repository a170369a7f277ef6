// Whole games of one player played by a strategy with fair dice, scored as
// the game scores them: for measuring a strategy and for catching a move the
// game would refuse.
#pragma once

#include <cstdint>
#include <random>

#include "companion/strategy.h"

namespace quorble::companion {

struct PlayedGame {
  int total = 0;  // every sheet's rows, bonus and extra row, added up
  int turns = 0;
  int refused = 0;  // moves naming a row the game would not take
  int extraScores = 0;
};

// The final score of the sheets as the game adds it up at the end.
int FinalScore(const std::vector<Sheet>& sheets);

PlayedGame PlayGame(const Strategy& strategy, int sheetCount, std::mt19937_64& random);

}  // namespace quorble::companion

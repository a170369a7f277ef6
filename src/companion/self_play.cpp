#include "companion/self_play.h"

#include <algorithm>

#include "companion/moves.h"
#include "gamestate.h"

namespace quorble::companion {
namespace {

constexpr int kRollsPerTurn = 3;

bool Finished(const std::vector<Sheet>& sheets) {
  for (const Sheet& sheet : sheets) {
    for (int row = 1; row <= 13; ++row) {
      if (sheet[row] < 0) return false;
    }
  }
  return true;
}

int Points(const Dice& dice, int row) {
  Indexed<int, kDice + 1> game{};
  for (int i = 0; i < kDice; ++i) game[i + 1] = dice[i];
  return RowValue(game, row);
}

// Plays one turn and gives the row scored, or 0 when the strategy named a
// row the game refuses, in which case the turn is lost and scores nothing.
int PlayTurn(const Strategy& strategy, std::vector<Sheet>& sheets, std::mt19937_64& random) {
  std::uniform_int_distribution<int> face(1, 6);
  Dice dice{};
  for (int& die : dice) die = face(random);
  Move move;
  for (int rollsLeft = kRollsPerTurn - 1;; --rollsLeft) {
    move = strategy.Choose(sheets, dice, rollsLeft);
    if (!move.reroll || rollsLeft == 0) break;
    for (int i = 0; i < kDice; ++i) dice[i] = move.keep[i] ? dice[i] : face(random);
  }
  if (move.reroll || move.sheet < 1 || move.sheet > static_cast<int>(sheets.size())) return 0;
  Sheet& played = sheets[static_cast<std::size_t>(move.sheet - 1)];
  if (!CanScore(played, move.row, dice)) return 0;
  int& cell = played[move.row];
  cell = move.row < kRows ? Points(dice, move.row) : std::max(cell, 0) + Points(dice, move.row);
  return move.row;
}

}  // namespace

int FinalScore(const std::vector<Sheet>& sheets) {
  int total = 0;
  for (const Sheet& sheet : sheets) {
    int top = 0;
    for (int row = 1; row <= 6; ++row) top += std::max(sheet[row], 0);
    int bottom = 0;
    for (int row = 7; row <= kRows; ++row) bottom += std::max(sheet[row], 0);
    total += top + (top >= 63 ? 35 : 0) + bottom;
  }
  return total;
}

PlayedGame PlayGame(const Strategy& strategy, int sheetCount, std::mt19937_64& random) {
  Sheet empty;
  empty.fill(-1);
  std::vector<Sheet> sheets(static_cast<std::size_t>(sheetCount), empty);
  PlayedGame game;
  // A strategy that keeps being refused would never finish; cap the turns.
  const int maxTurns = 1000 * sheetCount;
  while (!Finished(sheets) && game.turns < maxTurns) {
    ++game.turns;
    const int row = PlayTurn(strategy, sheets, random);
    game.refused += row == 0 ? 1 : 0;
    game.extraScores += row == kRows ? 1 : 0;
  }
  game.total = FinalScore(sheets);
  return game;
}

}  // namespace quorble::companion

// A beginner's way of playing: chase the face that shows most often, stop at
// any roll worth 25 or more, and score where the dice give most points now.
// It never looks ahead, so it scratches rows and misses bonuses that a
// player who plans would not.
#include <algorithm>

#include "companion/dice_sets.h"
#include "companion/moves.h"

namespace quorble::companion {
namespace {

constexpr int kGoodEnough = 25;

struct Scored {
  Move move;
  int points = -1;
};

Scored MostPoints(const std::vector<Sheet>& sheets, const Dice& dice) {
  const auto& sets = DiceSets::Get();
  const int roll = sets.IndexOf(dice);
  Scored best{ScoreMove(1, 1), -1};
  for (std::size_t s = 0; s < sheets.size(); ++s) {
    for (int row = 1; row <= 14; ++row) {
      if (!CanScore(sheets[s], row, dice)) continue;
      const int points = sets.Points(roll, row);
      if (points > best.points) best = {ScoreMove(static_cast<int>(s) + 1, row), points};
    }
  }
  return best;
}

// The dice showing the face seen most often, the higher face on a tie.
unsigned MostCommonFace(const Dice& dice) {
  int bestFace = dice[0];
  int bestCount = 0;
  for (int face = 6; face >= 1; --face) {
    const auto count = std::count(dice.begin(), dice.end(), face);
    if (count > bestCount) {
      bestCount = static_cast<int>(count);
      bestFace = face;
    }
  }
  unsigned mask = 0;
  for (int i = 0; i < 5; ++i) mask |= dice[i] == bestFace ? 1u << i : 0u;
  return mask;
}

class CasualStrategy final : public Strategy {
 public:
  Move Choose(const std::vector<Sheet>& sheets, const Dice& dice, int rollsLeft) const override {
    const Scored now = MostPoints(sheets, dice);
    if (rollsLeft <= 0 || now.points >= kGoodEnough) return now.move;
    const unsigned keep = MostCommonFace(dice);
    return keep == 0x1f ? now.move : RerollMove(keep);
  }
};

}  // namespace

std::unique_ptr<Strategy> MakeCasualStrategy() { return std::make_unique<CasualStrategy>(); }

}  // namespace quorble::companion

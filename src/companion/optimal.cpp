// The optimal strategy for one sheet, and a rule built on it for two or three.
//
// Several sheets share one stream of turns, so their futures are not
// independent and the one-sheet table does not solve them exactly. The rule
// used here: a score on sheet s is worth its points and bonus plus the change
// it makes to s's expected future, V_s(after) - V_s(now); the turn is then
// played to maximise the best such gain over all sheets and rows, keeps
// included. With one sheet this is exactly the optimal strategy, since V(now)
// is the same for every choice; with more it spends each turn where it
// gains most against what that sheet expected anyway.
#include <limits>
#include <mutex>

#include "companion/moves.h"
#include "companion/value_table.h"

namespace quorble::companion {
namespace {

constexpr double kTie = 1e-9;  // differences below this are rounding, not choice

// One turn's plan for the player's sheets as they stand: what every roll and
// keep is worth with 0, 1 or 2 rolls left.
class TurnPlan {
 public:
  TurnPlan(const ValueTable& table, const std::vector<Sheet>& sheets) : table_(table) {
    scoreNow_.fill(-std::numeric_limits<double>::infinity());
    for (const Sheet& sheet : sheets) {
      const SheetState state = SheetState::Of(sheet);
      const double now = table.Value(state);
      states_.push_back(state);
      worthNow_.push_back(now);
      const auto worth = [&table](int index) { return double{table.Values()[index]}; };
      MergeScoreValues(state, worth, now, now, scoreNow_);
    }
    KeepValues(scoreNow_, 0, lastRoll_);
    KeepValues(scoreNow_, 1, twoRolls_);
  }

  Move Choose(const Dice& dice, int rollsLeft) const {
    const auto& sets = DiceSets::Get();
    if (rollsLeft <= 0) return BestScore(sets.IndexOf(dice));
    const auto& keeps = rollsLeft == 1 ? lastRoll_ : twoRolls_;
    unsigned bestMask = 0x1f;
    double best = keeps[sets.IndexOf(dice)];
    for (unsigned mask = 0x1f; mask-- > 0;) {
      const double value = keeps[sets.IndexOfKept(dice, mask)];
      if (value > best + kTie) {
        best = value;
        bestMask = mask;
      }
    }
    // Keeping all five is as good as anything: score now.
    if (bestMask == 0x1f) return BestScore(sets.IndexOf(dice));
    return RerollMove(bestMask);
  }

 private:
  Move BestScore(int roll) const {
    Move move = ScoreMove(1, 1);
    double best = -std::numeric_limits<double>::infinity();
    for (std::size_t s = 0; s < states_.size(); ++s) {
      ForEachScore(states_[s], roll, [&](int row, int points, const SheetState& next) {
        const double after = row == kExtraRow ? worthNow_[s] : table_.Value(next);
        const double gain = points + after - worthNow_[s];
        if (gain > best + kTie) {
          best = gain;
          move = ScoreMove(static_cast<int>(s) + 1, row);
        }
      });
    }
    return move;
  }

  const ValueTable& table_;
  std::vector<SheetState> states_;
  std::vector<double> worthNow_;
  SetValues<double> scoreNow_;
  SetValues<double> lastRoll_;  // keeps' worth when their roll is the last
  SetValues<double> twoRolls_;  // keeps' worth with one roll after theirs
};

class OptimalStrategy final : public Strategy {
 public:
  explicit OptimalStrategy(std::shared_ptr<const ValueTable> table) : table_(std::move(table)) {}

  Move Choose(const std::vector<Sheet>& sheets, const Dice& dice, int rollsLeft) const override {
    // A turn asks up to three times about the same sheets; the plan is kept
    // for them rather than worked out each time.
    std::lock_guard lock(mutex_);
    if (!plan_ || sheets != planSheets_) {
      plan_ = std::make_unique<TurnPlan>(*table_, sheets);
      planSheets_ = sheets;
    }
    return plan_->Choose(dice, rollsLeft);
  }

 private:
  std::shared_ptr<const ValueTable> table_;
  mutable std::mutex mutex_;
  mutable std::unique_ptr<TurnPlan> plan_;
  mutable std::vector<Sheet> planSheets_;
};

}  // namespace

std::unique_ptr<Strategy> MakeOptimalStrategy(std::shared_ptr<const ValueTable> table) {
  return std::make_unique<OptimalStrategy>(std::move(table));
}

}  // namespace quorble::companion

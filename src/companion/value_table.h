// The worth of every state of one sheet under optimal play, and how a sheet
// of the game maps onto a state.
#pragma once

#include <utility>
#include <vector>

#include "companion/dice_sets.h"
#include "companion/strategy.h"
#include "companion/turn.h"

namespace quorble::companion {

inline constexpr int kBonusLine = 63;  // an upper sum from here on earns the bonus
inline constexpr int kBonus = 35;
inline constexpr int kFilledRows = 13;  // rows that fill; row 14 only adds up
inline constexpr int kExtraRow = 14;
inline constexpr int kFiveAlikeScore = 50;

// What of a sheet matters to its future: which rows are filled, the upper
// sum as far as the bonus cares, and whether row 13 holds the 50 that opens
// the extra row.
struct SheetState {
  unsigned filled = 0;  // bit r-1 for row r, rows 1 to 13
  int upper = 0;        // 0 to 63
  bool fifty = false;

  static SheetState Of(const Sheet& sheet);
  bool Full() const { return filled == (1u << kFilledRows) - 1; }
  bool Has(int row) const { return (filled >> (row - 1) & 1u) != 0; }
  // The state after scoring `points` on row `row`, rows 1 to 13.
  SheetState After(int row, int points) const;
  // Points beyond the row's own that scoring there earns now: the bonus.
  int BonusFor(int row, int points) const;
  int Index() const;
};

class ValueTable {
 public:
  static constexpr int kStates = (1 << kFilledRows) * (kBonusLine + 1) * 2;
  // One worth for each state index; missing ones are taken as 0.
  explicit ValueTable(std::vector<float> values) : values_(std::move(values)) {
    values_.resize(kStates, 0.0f);
  }
  // The expected score still to come from the state, bonus included.
  double Value(const SheetState& state) const { return values_[state.Index()]; }
  const IndexedVector<float>& Values() const { return values_; }

 private:
  IndexedVector<float> values_;
};

// Calls `visit(row, points, next)` for every row of this sheet that the
// game lets the roll be scored on: `points` with the bonus they earn, `next`
// the state it leads to, the same state for the extra row.
template <class Visit>
void ForEachScore(const SheetState& state, int roll, const Visit& visit) {
  const auto& sets = DiceSets::Get();
  for (int row = 1; row <= kFilledRows; ++row) {
    if (state.Has(row)) continue;
    const int points = sets.Points(roll, row);
    visit(row, points + state.BonusFor(row, points), state.After(row, points));
  }
  if (state.fifty && sets.FiveAlike(roll)) visit(kExtraRow, sets.Points(roll, kExtraRow), state);
}

// Raises each five-dice roll's entry of `best` to the worth of scoring it on
// the best row of this sheet: the points and bonus and the worth of the state
// they lead to, less `offset`. `self` is the worth of this very state, which
// the extra row leads back to; `worth` gives a state's worth by its index.
template <class Num, class Worth>
void MergeScoreValues(const SheetState& state, const Worth& worth, Num self, double offset,
                      SetValues<Num>& best) {
  for (int roll : DiceSets::Get().Rolls()) {
    ForEachScore(state, roll, [&](int row, int points, const SheetState& next) {
      const Num after = row == kExtraRow ? self : Num{worth(next.Index())};
      const Num value = after + Num{points - offset};
      if (value > best[roll]) best[roll] = value;
    });
  }
}

}  // namespace quorble::companion

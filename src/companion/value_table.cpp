// Backward induction over the states of one sheet. A state's worth depends
// only on states with one more row filled and, through the extra row, on
// itself; so states are solved from the full sheet back to the empty one,
// and the self-loop is closed by Newton's method on the state's own worth.
#include "companion/value_table.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace quorble::companion {
namespace {

constexpr int kUpperRows = 6;
constexpr int kSums = kBonusLine + 1;

// For each set of filled upper rows, the upper sums (capped at the bonus
// line) that the dice can have left there; the others are never reached.
std::vector<std::uint64_t> ReachableUpperSums() {
  std::vector<std::uint64_t> reach(1u << kUpperRows, 0);
  reach[0] = 1;
  for (unsigned rows = 1; rows < reach.size(); ++rows) {
    int row = 1;
    while ((rows >> (row - 1) & 1u) == 0) ++row;
    const std::uint64_t before = reach[rows & ~(1u << (row - 1))];
    for (int sum = 0; sum < kSums; ++sum) {
      if ((before >> sum & 1u) == 0) continue;
      for (int alike = 0; alike <= 5; ++alike) {
        reach[rows] |= std::uint64_t{1} << std::min(kBonusLine, sum + alike * row);
      }
    }
  }
  return reach;
}

template <class Num>
SetValues<Num> Unscored() {
  SetValues<Num> best;
  best.fill(Num{-std::numeric_limits<double>::infinity()});
  return best;
}

// The worth of a turn from `state` when the state itself is worth `self`.
template <class Num>
Num TurnValue(const SheetState& state, const IndexedVector<double>& worths, Num self) {
  auto scoreNow = Unscored<Num>();
  MergeScoreValues(
      state, [&worths](int index) { return worths[index]; }, self, 0.0, scoreNow);
  SetValues<Num> keeps;
  KeepValues(scoreNow, 2, keeps);
  return keeps[DiceSets::Get().Empty()];
}

// The worth w with w = TurnValue(w). The turn's worth is convex and piecewise
// linear in w with slope below 1 (the chance of ending on the extra row), so
// Newton's method from below reaches the fixed point exactly within a few
// steps: each step solves one policy's linear equation.
double SelfConsistentValue(const SheetState& state, const IndexedVector<double>& worths,
                           double start) {
  double guess = start;
  for (int step = 0; step < 100; ++step) {
    const Sloped turn = TurnValue(state, worths, Sloped{guess, 1.0});
    const double next = guess + (turn.value - guess) / (1.0 - turn.slope);
    if (std::abs(next - guess) < 1e-10) return next;
    guess = next;
  }
  return guess;
}

}  // namespace

SheetState SheetState::Of(const Sheet& sheet) {
  SheetState state;
  int upper = 0;
  for (int row = 1; row <= kFilledRows; ++row) {
    if (sheet[row] < 0) continue;
    state.filled |= 1u << (row - 1);
    if (row <= kUpperRows) upper += sheet[row];
  }
  state.upper = std::clamp(upper, 0, kBonusLine);
  state.fifty = sheet[13] == kFiveAlikeScore;
  return state;
}

SheetState SheetState::After(int row, int points) const {
  SheetState next = *this;
  next.filled |= 1u << (row - 1);
  if (row <= kUpperRows) next.upper = std::min(kBonusLine, upper + points);
  if (row == 13) next.fifty = points == kFiveAlikeScore;
  return next;
}

int SheetState::BonusFor(int row, int points) const {
  const bool crosses = row <= kUpperRows && upper < kBonusLine && upper + points >= kBonusLine;
  return crosses ? kBonus : 0;
}

int SheetState::Index() const {
  return (static_cast<int>(filled) * kSums + upper) * 2 + (fifty ? 1 : 0);
}

std::shared_ptr<const ValueTable> ComputeValueTable() {
  IndexedVector<double> worths(ValueTable::kStates, 0.0);
  const auto reach = ReachableUpperSums();
  for (int filled = (1 << kFilledRows) - 1; filled >= 0; --filled) {
    SheetState state;
    state.filled = static_cast<unsigned>(filled);
    if (state.Full()) continue;  // nothing more to score: worth 0
    const std::uint64_t sums = reach[state.filled & ((1u << kUpperRows) - 1)];
    for (int upper = 0; upper < kSums; ++upper) {
      if ((sums >> upper & 1u) == 0) continue;
      state.upper = upper;
      state.fifty = false;
      const double plain = TurnValue(state, worths, 0.0);
      worths[state.Index()] = plain;
      if (!state.Has(13)) continue;
      state.fifty = true;
      worths[state.Index()] = SelfConsistentValue(state, worths, plain);
    }
  }
  return std::make_shared<const ValueTable>(std::vector<float>(worths.begin(), worths.end()));
}

double OptimalExpectedScore(const ValueTable& table) { return table.Value(SheetState{}); }

}  // namespace quorble::companion

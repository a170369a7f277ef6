// One turn solved backwards: the worth of a finished roll is given, and from
// it the worth of every keep and every roll with one or two rolls still to
// come. Written over a number type so that the same code also carries the
// derivative that the extra row's self-loop needs (see Sloped).
#pragma once

#include "companion/dice_sets.h"

namespace quorble::companion {

// A value together with its rate of change in one unknown: the worth of the
// very state the turn starts in, which scoring on the extra row returns to.
struct Sloped {
  double value = 0;
  double slope = 0;
  Sloped operator+(const Sloped& o) const { return {value + o.value, slope + o.slope}; }
  Sloped operator*(double k) const { return {value * k, slope * k}; }
  bool operator>(const Sloped& o) const { return value > o.value; }
};

template <class Num>
using SetValues = Indexed<Num, kDiceSets>;

// Given the worth of each roll of five dice, fills in every smaller set with
// the expected worth of rolling the dice it lacks. Dice are independent, so
// adding them one at a time gives the same expectation as rolling them at once.
template <class Num>
void ExpectOverRolls(SetValues<Num>& values) {
  const auto& sets = DiceSets::Get();
  const auto& order = sets.BySize();
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    const int set = *it;
    if (sets.Size(set) == 5) continue;
    Num sum{};
    for (int face = 1; face <= kFaces; ++face) sum = sum + values[sets.Add(set, face)];
    values[set] = sum * (1.0 / kFaces);
  }
}

// For every set, the best worth among its subsets: what the best keep from
// those dice is worth. On ties the larger subset, found first, stays.
template <class Num>
void BestSubsets(const SetValues<Num>& keeps, SetValues<Num>& best) {
  const auto& sets = DiceSets::Get();
  for (int set : sets.BySize()) {
    Num top = keeps[set];
    for (int face = 1; face <= kFaces; ++face) {
      const int fewer = sets.Remove(set, face);
      if (fewer >= 0 && best[fewer] > top) top = best[fewer];
    }
    best[set] = top;
  }
}

// The keeps' worth with `rollsAfter` rolls still to come after this keep's
// roll, 0 to 2, given the worth of scoring each roll. With `rollsAfter` 2
// the empty keep's worth is the worth of the turn before its first roll.
template <class Num>
void KeepValues(const SetValues<Num>& scoreNow, int rollsAfter, SetValues<Num>& keeps) {
  keeps = scoreNow;
  ExpectOverRolls(keeps);
  SetValues<Num> best;
  for (int layer = 0; layer < rollsAfter; ++layer) {
    BestSubsets(keeps, best);
    keeps = best;
    ExpectOverRolls(keeps);
  }
}

}  // namespace quorble::companion

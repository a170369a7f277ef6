#include "companion/dice_sets.h"

#include <algorithm>

#include "gamestate.h"

namespace quorble::companion {
namespace {

constexpr int kKeys = 6 * 6 * 6 * 6 * 6 * 6;  // counts 0 to 5 for each face

int KeyOf(const Indexed<int, kFaces + 1>& counts) {
  int key = 0;
  for (int face = kFaces; face >= 1; --face) key = key * 6 + counts[face];
  return key;
}

}  // namespace

const DiceSets& DiceSets::Get() {
  static const DiceSets sets;
  return sets;
}

DiceSets::DiceSets() : byKey_(kKeys, -1) {
  NumberSets();
  LinkSets();
  ValueRolls();
}

// Every key whose counts add up to five dice or fewer is a set.
void DiceSets::NumberSets() {
  for (int key = 0; key < kKeys; ++key) {
    FaceCounts counts{};
    int rest = key;
    int total = 0;
    for (int face = 1; face <= kFaces; ++face) {
      counts[face] = rest % 6;
      rest /= 6;
      total += counts[face];
    }
    if (total > 5) continue;
    byKey_[key] = static_cast<int>(counts_.size());
    counts_.push_back(counts);
    size_.push_back(total);
  }
}

// The moves between sets, and the sets in the orders a turn walks them.
void DiceSets::LinkSets() {
  add_.assign(counts_.size(), {});
  remove_.assign(counts_.size(), {});
  const int sets = static_cast<int>(counts_.size());
  for (int set = 0; set < sets; ++set) {
    for (int face = 1; face <= kFaces; ++face) {
      auto more = counts_[set];
      ++more[face];
      add_[set][face] = size_[set] < 5 ? Lookup(more) : -1;
      auto fewer = counts_[set];
      --fewer[face];
      remove_[set][face] = counts_[set][face] > 0 ? Lookup(fewer) : -1;
    }
    bySize_.push_back(set);
    if (size_[set] == 5) rolls_.push_back(set);
  }
  std::stable_sort(bySize_.begin(), bySize_.end(),
                   [this](int a, int b) { return size_[a] < size_[b]; });
}

// Valued by the game's own rule, so that the solver and the game can never
// disagree about what a roll is worth.
void DiceSets::ValueRolls() {
  points_.assign(counts_.size(), {});
  for (int roll : rolls_) {
    Indexed<int, kDice + 1> dice{};
    int die = 1;
    for (int face = 1; face <= kFaces; ++face) {
      for (int n = 0; n < counts_[roll][face]; ++n) dice[die++] = face;
    }
    for (int row = 1; row <= kRows; ++row) points_[roll][row] = RowValue(dice, row);
  }
}

int DiceSets::Lookup(const FaceCounts& counts) const { return byKey_[KeyOf(counts)]; }

int DiceSets::IndexOf(const Dice& dice) const { return IndexOfKept(dice, 0x1f); }

int DiceSets::IndexOfKept(const Dice& dice, unsigned mask) const {
  FaceCounts counts{};
  for (int i = 0; i < 5; ++i) {
    if ((mask >> i & 1u) != 0 && dice[i] >= 1 && dice[i] <= kFaces) ++counts[dice[i]];
  }
  return Lookup(counts);
}

bool DiceSets::FiveAlike(int roll) const {
  for (int face = 1; face <= kFaces; ++face) {
    if (counts_[roll][face] == 5) return true;
  }
  return false;
}

}  // namespace quorble::companion

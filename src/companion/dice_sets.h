// Every multiset of zero to five dice, numbered once, with the moves between
// them that a turn needs: adding a rolled die and dropping a kept one. The
// order of the dice never matters to a row's value, so a turn is solved over
// these 462 sets rather than over 7776 ordered rolls.
#pragma once

#include <vector>

#include "companion/strategy.h"
#include "indexed.h"

namespace quorble::companion {

inline constexpr int kFaces = 6;
inline constexpr int kDiceSets = 462;  // multisets of 0 to 5 dice
inline constexpr int kRollSets = 252;  // multisets of exactly 5 dice

class DiceSets {
 public:
  static const DiceSets& Get();

  int Size(int set) const { return size_[set]; }
  int Count(int set, int face) const { return counts_[set][face]; }
  // The set with one more die showing `face`, or -1 when it already has five.
  int Add(int set, int face) const { return add_[set][face]; }
  // The set with one die showing `face` fewer, or -1 when it has none.
  int Remove(int set, int face) const { return remove_[set][face]; }
  // Sets ordered by size, the empty set first.
  const std::vector<int>& BySize() const { return bySize_; }
  const std::vector<int>& Rolls() const { return rolls_; }
  int Empty() const { return bySize_.front(); }

  int IndexOf(const Dice& dice) const;
  // The set of the dice whose bit in `mask` is set, bit 0 for die A.
  int IndexOfKept(const Dice& dice, unsigned mask) const;
  // The points the game gives a set of five dice on rows 1 to 14.
  int Points(int roll, int row) const { return points_[roll][row]; }
  bool FiveAlike(int roll) const;

 private:
  DiceSets();
  void NumberSets();
  void LinkSets();
  void ValueRolls();
  using FaceCounts = Indexed<int, kFaces + 1>;  // dice of each face 1 to 6

  int Lookup(const FaceCounts& counts) const;

  IndexedVector<int> size_;
  IndexedVector<FaceCounts> counts_;
  IndexedVector<FaceCounts> add_;
  IndexedVector<FaceCounts> remove_;
  std::vector<int> bySize_;
  std::vector<int> rolls_;
  IndexedVector<int> byKey_;
  IndexedVector<Indexed<int, 15>> points_;
};

}  // namespace quorble::companion

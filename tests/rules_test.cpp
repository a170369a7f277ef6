// The dice: reseeds a moment apart draw differently, and the value of every
// telling hand on all fourteen rows, in every order of its faces: the pivot
// rules must not depend on where a face lies.
#include <gtest/gtest.h>

#include <algorithm>

#include "gamestate.h"

namespace quorble {
namespace {

struct Hand {
  std::array<int, 5> faces;
  Indexed<int, 14> values;  // rows 1 to 14
};

const Hand kHands[] = {
    {{4, 4, 4, 4, 4}, {0, 0, 0, 20, 0, 0, 20, 20, 25, 0, 0, 20, 50, 100}},
    {{2, 2, 3, 3, 3}, {0, 4, 9, 0, 0, 0, 13, 0, 25, 0, 0, 13, 0, 100}},
    {{1, 1, 2, 2, 3}, {2, 4, 3, 0, 0, 0, 0, 0, 0, 0, 0, 9, 0, 100}},
    {{5, 5, 5, 5, 2}, {0, 2, 0, 0, 20, 0, 22, 22, 0, 0, 0, 22, 0, 100}},
    {{3, 1, 3, 2, 3}, {1, 2, 9, 0, 0, 0, 12, 0, 0, 0, 0, 12, 0, 100}},
    {{1, 2, 3, 4, 6}, {1, 2, 3, 4, 0, 6, 0, 0, 0, 30, 0, 16, 0, 100}},
    {{1, 3, 4, 5, 6}, {1, 0, 3, 4, 5, 6, 0, 0, 0, 30, 0, 19, 0, 100}},
    {{2, 3, 4, 5, 5}, {0, 2, 3, 4, 10, 0, 0, 0, 0, 30, 0, 19, 0, 100}},
    {{1, 2, 4, 5, 6}, {1, 2, 0, 4, 5, 6, 0, 0, 0, 0, 0, 18, 0, 100}},
    {{1, 2, 3, 4, 5}, {1, 2, 3, 4, 5, 0, 0, 0, 0, 30, 40, 15, 0, 100}},
    {{6, 5, 4, 3, 2}, {0, 2, 3, 4, 5, 6, 0, 0, 0, 30, 40, 20, 0, 100}},
    // Four alike and a single is no full house; a run of five is a small straight too.
    {{6, 6, 6, 6, 1}, {1, 0, 0, 0, 0, 24, 25, 25, 0, 0, 0, 25, 0, 100}},
    {{1, 1, 6, 6, 3}, {2, 0, 3, 0, 0, 12, 0, 0, 0, 0, 0, 17, 0, 100}},
};

TEST(RowValue, EveryHandInEveryOrder) {
  for (const Hand& hand : kHands) {
    auto faces = hand.faces;
    std::sort(faces.begin(), faces.end());
    do {
      std::array<int, kDice + 1> dice{0, faces[0], faces[1], faces[2], faces[3], faces[4]};
      for (int row = 1; row <= kRows; ++row) {
        EXPECT_EQ(RowValue(dice, row), hand.values[row - 1])
            << "row " << row << " dice " << faces[0] << faces[1] << faces[2] << faces[3]
            << faces[4];
      }
    } while (std::next_permutation(faces.begin(), faces.end()));
  }
}

}  // namespace
}  // namespace quorble

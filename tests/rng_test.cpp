// The dice draw: faces stay within 1 to 6 and come up fairly.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/common/rng.h"

namespace quorble {
namespace {

int Face(float r) { return static_cast<int>(std::floor(static_cast<double>(r) * 6.0)) + 1; }

TEST(Rng, AMillionFacesAreFair) {
  Rng rng;
  rng.Seed(43200.123456);
  std::array<int, 8> counts{};
  constexpr int kDraws = 1000000;
  for (int i = 0; i < kDraws; ++i) {
    const float r = rng.Next();
    ASSERT_GE(r, 0.0f);
    ASSERT_LT(r, 1.0f);
    const int face = Face(r);
    ASSERT_GE(face, 1);
    ASSERT_LE(face, 6);
    ++counts[face];
  }
  double chiSquare = 0;
  const double expected = kDraws / 6.0;
  for (int face = 1; face <= 6; ++face) {
    chiSquare += (counts[face] - expected) * (counts[face] - expected) / expected;
  }
  // 5 degrees of freedom: 20.5 is passed by chance once in a thousand runs.
  EXPECT_LT(chiSquare, 20.5);
}

TEST(Rng, LargestDrawStaysBelowSeven) {
  EXPECT_EQ(Face(std::nextafter(1.0f, 0.0f)), 6);
}

TEST(Rng, ReseedsAMicrosecondApartDiffer) {
  Rng a, b;
  a.Seed(43200.000001);
  b.Seed(43200.000002);
  int same = 0;
  for (int i = 0; i < 20; ++i) same += a.Next() == b.Next() ? 1 : 0;
  EXPECT_LT(same, 20);
}

}  // namespace
}  // namespace quorble

// The dice's random numbers: a well-known generator, reseeded from a clock
// reading whose every bit counts, so two reseeds a microsecond apart differ.
#pragma once

#include <cstdint>
#include <random>

#include "bit_copy.h"

namespace quorble {

class Rng {
 public:
  void Seed(double seed) {
    const auto bits = BitCopy<std::uint64_t>(seed);
    std::seed_seq sequence{static_cast<std::uint32_t>(bits),
                           static_cast<std::uint32_t>(bits >> 32)};
    generator_.seed(sequence);
  }

  // 0 <= r < 1 in single precision: 24 random bits, so 1 is never reached.
  float Next() { return static_cast<float>(generator_() >> 8) * (1.0f / 16777216.0f); }

 private:
  std::mt19937 generator_{5489u};
};

}  // namespace quorble

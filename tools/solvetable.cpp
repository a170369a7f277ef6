// Solves the companion's value table, writes it where the game finds it and
// prints the optimal expected score of one sheet with the time it took.
// Run at build time, so the table always comes from the code beside it.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "companion/strategy.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s TABLE-FILE\n", argv[0]);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  const auto table = quorble::companion::ComputeValueTable();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const std::string bytes = quorble::companion::SerializeValueTable(*table);
  std::ofstream out(argv[1], std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) {
    std::fprintf(stderr, "%s: cannot write %s\n", argv[0], argv[1]);
    return 1;
  }
  std::printf("optimal expected score of one sheet: %.2f\n",
              quorble::companion::OptimalExpectedScore(*table));
  std::printf("solved in %.1f s; %zu bytes written to %s\n", took.count(), bytes.size(), argv[1]);
  return 0;
}

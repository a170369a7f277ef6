// Plays many simulated games with the companion's strategies and prints
// their mean final scores beside the table's optimal expected score, so the
// solver's claim can be checked against play. Usage:
//   quorble-companion-bench [TABLE-FILE] [GAMES]
// The table file defaults to the one the build solved; without a valid one
// the table is solved first.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "companion/self_play.h"

namespace {

using quorble::companion::Strategy;

std::shared_ptr<const quorble::companion::ValueTable> LoadOrSolve(const char* path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const auto start = std::chrono::steady_clock::now();
  auto table = quorble::companion::ParseValueTable(bytes);
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
  if (table) {
    std::printf("table of %zu bytes checked and parsed in %.1f ms\n", bytes.size(), took.count());
    return table;
  }
  std::printf("no valid table in %s; solving it\n", path);
  return quorble::companion::ComputeValueTable();
}

void Report(const char* name, const Strategy& strategy, int sheets, int games) {
  std::mt19937_64 random(20261123u + static_cast<unsigned>(sheets));
  double sum = 0;
  double squares = 0;
  long refused = 0;
  long extras = 0;
  const auto start = std::chrono::steady_clock::now();
  for (int game = 0; game < games; ++game) {
    const auto played = quorble::companion::PlayGame(strategy, sheets, random);
    sum += played.total;
    squares += static_cast<double>(played.total) * played.total;
    refused += played.refused;
    extras += played.extraScores;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const double mean = sum / games;
  const double deviation = std::sqrt(std::max(0.0, squares / games - mean * mean));
  std::printf(
      "%-8s %d sheet(s), %d games: mean %.2f (standard error %.2f), "
      "%.3f extra scores a game, %ld refused moves, %.1f s\n",
      name, sheets, games, mean, deviation / std::sqrt(games), static_cast<double>(extras) / games,
      refused, took.count());
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : QUORBLE_STRATEGY_FILE;
  const int games = argc > 2 ? std::max(1, std::atoi(argv[2])) : 100000;
  const auto table = LoadOrSolve(path);
  std::printf("optimal expected score of one sheet (table): %.2f\n",
              quorble::companion::OptimalExpectedScore(*table));
  const auto optimal = quorble::companion::MakeOptimalStrategy(table);
  const auto casual = quorble::companion::MakeCasualStrategy();
  Report("optimal", *optimal, 1, games);
  Report("casual", *casual, 1, games);
  // Several sheets are played by a rule built on the one-sheet table; these
  // show what it and the casual rule make of them, with fewer games.
  for (int sheets = 2; sheets <= 3; ++sheets) {
    Report("optimal", *optimal, sheets, games / 10);
    Report("casual", *casual, sheets, games / 10);
  }
  return 0;
}

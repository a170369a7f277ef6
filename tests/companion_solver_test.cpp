// The companion's solver: the set arithmetic it rests on against brute
// force, table entries that can be worked out by hand, moves in positions
// whose best play is known, legality in whole games, and the table's bytes.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <random>

#include "companion/dice_sets.h"
#include "companion/self_play.h"
#include "companion/turn.h"
#include "companion/value_table.h"

namespace quorble::companion {
namespace {

// A sheet with every row filled but `empty`; `upper` is spread over the
// filled upper rows and row 13 holds `row13` unless it is empty.
Sheet SheetWith(std::initializer_list<int> empty, int upper = 0, int row13 = 0) {
  Sheet sheet{};
  sheet.fill(0);
  sheet[14] = -1;
  sheet[13] = row13;
  for (int row : empty) sheet[row] = -1;
  for (int row = 6; row >= 1 && upper > 0; --row) {
    if (sheet[row] < 0) continue;
    sheet[row] = std::min(upper, 5 * row);
    upper -= sheet[row];
  }
  return sheet;
}

const ValueTable& BuiltTable() {
  static const auto table = [] {
    std::ifstream in(QUORBLE_STRATEGY_FILE, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    return ParseValueTable(bytes);
  }();
  if (!table) throw std::runtime_error("no valid table at " QUORBLE_STRATEGY_FILE);
  return *table;
}

TEST(DiceSets, ExpectationsMatchRollingEveryOrderedOutcome) {
  const auto& sets = DiceSets::Get();
  ASSERT_EQ(static_cast<int>(sets.Rolls().size()), kRollSets);
  // An arbitrary worth for each roll, so no symmetry can hide a wrong link.
  SetValues<double> values{};
  for (int roll : sets.Rolls()) values[roll] = std::sin(roll * 1.7) * 10 + sets.Points(roll, 12);
  SetValues<double> expected = values;
  ExpectOverRolls(expected);
  const Dice kept[] = {
      {0, 0, 0, 0, 0}, {6, 0, 0, 0, 0}, {2, 2, 0, 0, 0}, {1, 3, 5, 0, 0}, {4, 4, 4, 1, 0}};
  for (const Dice& keep : kept) {
    const int free = static_cast<int>(std::count(keep.begin(), keep.end(), 0));
    double sum = 0;
    int outcomes = 1;
    for (int i = 0; i < free; ++i) outcomes *= 6;
    for (int outcome = 0; outcome < outcomes; ++outcome) {
      Dice dice = keep;
      int rest = outcome;
      for (int& die : dice) {
        if (die == 0) die = rest % 6 + 1, rest /= 6;
      }
      sum += values[sets.IndexOf(dice)];
    }
    EXPECT_NEAR(expected[sets.IndexOfKept(keep, 0x1f >> free)], sum / outcomes, 1e-9);
  }
}

// Worths that follow from probability alone: chance is five independent
// dice each kept from 5 up, then from 4 up (70/3 in all); a die reaches a
// wanted face within three rolls with chance 91/216; five alike come within
// three rolls with chance 2783176/60466176.
TEST(ValueTable, EntriesWorkedOutByHand) {
  const double reachFace = 91.0 / 216;
  const double noSix = std::pow(125.0 / 216, 5);
  struct Case {
    const char* what;
    Sheet sheet;
    double worth;
  } cases[] = {
      {"only chance left", SheetWith({12}), 70.0 / 3},
      {"only ones left", SheetWith({1}), 5 * reachFace},
      {"only sixes left, one six earns the bonus", SheetWith({6}, 57),
       5 * reachFace * 6 + 35 * (1 - noSix)},
      {"only sixes left, bonus already earned", SheetWith({6}, 63), 5 * reachFace * 6},
      {"only five alike left", SheetWith({13}), 50 * 2783176.0 / 60466176},
      {"all filled", SheetWith({}), 0},
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(BuiltTable().Value(SheetState::Of(c.sheet)), c.worth, 1e-4) << c.what;
  }
}

// With 50 on row 13 the extra row can come again and again, so the worth
// of a state feeds on itself. It must gain something, and no more than a
// run of turns, each ending in five alike with chance at most q, can bring:
// open = (A + 100 p) / (1 - p) with A, the row's share, below plain.
TEST(ValueTable, ExtraRowRaisesTheStateItLoopsOn) {
  const double q = 2783176.0 / 60466176;
  for (const int row : {1, 7, 12}) {
    const double plain = BuiltTable().Value(SheetState::Of(SheetWith({row}, 0, 0)));
    const double open = BuiltTable().Value(SheetState::Of(SheetWith({row}, 0, 50)));
    EXPECT_GT(open, plain) << row;
    EXPECT_LE(open, (plain + 100 * q) / (1 - q)) << row;
  }
}

std::string Describe(const Move& move) {
  if (!move.reroll) return "score " + std::to_string(move.sheet) + "/" + std::to_string(move.row);
  std::string text = "keep";
  for (int i = 0; i < 5; ++i) text += move.keep[i] ? std::string(" ") + char('A' + i) : "";
  return text;
}

TEST(OptimalStrategy, HandCheckedPositions) {
  Sheet empty;
  empty.fill(-1);
  const Sheet fifty = SheetWith({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, 0, 50);
  const struct {
    const char* what;
    std::vector<Sheet> sheets;
    Dice dice;
    int rollsLeft;
    const char* best;  // "score SHEET/ROW" or "keep" and the dice kept
  } positions[] = {
      {"five alike, row 13 and chance empty",
       {SheetWith({12, 13})},
       {4, 4, 4, 4, 4},
       0,
       "score 1/13"},
      {"five alike on the first roll", {SheetWith({12, 13})}, {4, 4, 4, 4, 4}, 2, "score 1/13"},
      {"a large straight on the first roll", {empty}, {3, 1, 2, 5, 4}, 2, "score 1/11"},
      {"five alike count as a full house", {SheetWith({1, 9})}, {2, 2, 2, 2, 2}, 0, "score 1/9"},
      {"five alike again with 50 on row 13", {fifty}, {3, 3, 3, 3, 3}, 0, "score 1/14"},
      {"chance, one roll to come", {SheetWith({12})}, {6, 4, 5, 1, 2}, 1, "keep A B C"},
      {"chance, two rolls to come", {SheetWith({12})}, {6, 4, 5, 1, 2}, 2, "keep A C"},
      {"only ones left", {SheetWith({1})}, {1, 3, 1, 4, 5}, 2, "keep A C"},
      {"the extra row where the 50 is",
       {SheetWith({13}), SheetWith({12}, 0, 50)},
       {5, 5, 5, 5, 5},
       0,
       "score 2/14"},
      {"no extra row where row 13 holds 0",
       {SheetWith({}), SheetWith({12})},
       {5, 5, 5, 5, 5},
       0,
       "score 2/12"},
      {"the bonus is worth weak sixes", {SheetWith({6, 12}, 57)}, {6, 1, 1, 2, 2}, 0, "score 1/6"},
  };
  const auto strategy = MakeOptimalStrategy(ParseValueTable(SerializeValueTable(BuiltTable())));
  for (const auto& p : positions) {
    EXPECT_EQ(Describe(strategy->Choose(p.sheets, p.dice, p.rollsLeft)), p.best) << p.what;
  }
}

TEST(Strategies, WholeGamesNeverNameARowTheGameRefuses) {
  const auto optimal = MakeOptimalStrategy(ParseValueTable(SerializeValueTable(BuiltTable())));
  const auto casual = MakeCasualStrategy();
  std::mt19937_64 random(14);
  for (int sheets = 1; sheets <= 3; ++sheets) {
    for (const Strategy* strategy : {optimal.get(), casual.get()}) {
      for (int game = 0; game < 40; ++game) {
        const PlayedGame played = PlayGame(*strategy, sheets, random);
        EXPECT_EQ(played.refused, 0);
        EXPECT_EQ(played.turns, 13 * sheets + played.extraScores);
      }
    }
  }
}

TEST(TableFile, RoundTripKeepsEveryValue) {
  std::vector<float> values(ValueTable::kStates);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i % 9973) / 7;
  const ValueTable table(values);
  const auto back = ParseValueTable(SerializeValueTable(table));
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(back->Values(), values);
}

TEST(TableFile, RefusesBytesThatAreNotAWholeTable) {
  const std::string good =
      SerializeValueTable(ValueTable(std::vector<float>(ValueTable::kStates, 1)));
  ASSERT_NE(ParseValueTable(good), nullptr);
  const auto flipped = [&good](std::size_t at) {
    std::string bad = good;
    bad[at] = static_cast<char>(bad[at] ^ 0x10);
    return bad;
  };
  const auto withValue = [](float value) {
    std::vector<float> values(ValueTable::kStates, 1);
    values[12345] = value;
    return SerializeValueTable(ValueTable(values));
  };
  const struct {
    const char* what;
    std::string bytes;
  } bad[] = {
      {"empty", ""},
      {"one byte short", good.substr(0, good.size() - 1)},
      {"one byte more", good + '\0'},
      {"magic word", flipped(0)},
      {"count of states", flipped(8)},
      {"a value", flipped(good.size() / 2)},
      {"the checksum", flipped(good.size() - 1)},
      {"not a number", withValue(std::nanf(""))},
      {"infinite", withValue(INFINITY)},
      {"negative", withValue(-1)},
      {"beyond any score", withValue(1e9f)},
  };
  for (const auto& b : bad) EXPECT_EQ(ParseValueTable(b.bytes), nullptr) << b.what;
}

}  // namespace
}  // namespace quorble::companion

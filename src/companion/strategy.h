// The computer's play of one turn, for computer players and the spoken hint.
// Two strengths stand behind one interface: the optimal strategy, which
// maximises the expected final score of a sheet under this game's own rules,
// and a casual one that a beginner can beat.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "indexed.h"

namespace quorble::companion {

using Dice = Indexed<int, 5>;    // faces 1 to 6 of dice A to E, as they lie
using Sheet = Indexed<int, 15>;  // rows 1 to 14 (index 0 unused); -1 while empty,
                                 // row 14 the running total of extra scores

// What to do with the dice now.
struct Move {
  bool reroll = false;      // keep the dice marked and roll the others
  Indexed<bool, 5> keep{};  // with reroll: which of dice A to E stay
  int row = 0;              // without reroll: the row to score, 1 to 14
  int sheet = 0;            // without reroll: the sheet, 1 to the sheets in play
};

class Strategy {
 public:
  virtual ~Strategy() = default;
  // `sheets` holds the player's sheets in play, sheet 1 first; `rollsLeft` is
  // 0 to 2, and 0 means the dice must be scored. The move never names a row
  // the game would refuse.
  virtual Move Choose(const std::vector<Sheet>& sheets, const Dice& dice, int rollsLeft) const = 0;
};

// The expected score still to come from every state of one sheet under
// optimal play, computed by backward induction; see value_table.cpp.
class ValueTable;

// The file the build writes the table to, beside the sound samples.
inline constexpr char kValueTableFile[] = "quorble-strategy.bin";
// The table is 4 MiB and some bytes; anything much larger is not ours.
inline constexpr std::size_t kValueTableLimit = std::size_t{8} << 20;

// Builds the table from nothing (a few seconds; done at build time by a tool).
std::shared_ptr<const ValueTable> ComputeValueTable();
// The table as bytes, and back; null for bytes that are not a whole table.
std::string SerializeValueTable(const ValueTable& table);
std::shared_ptr<const ValueTable> ParseValueTable(const std::string& bytes);
// The optimal expected final score of one empty sheet.
double OptimalExpectedScore(const ValueTable& table);

std::unique_ptr<Strategy> MakeOptimalStrategy(std::shared_ptr<const ValueTable> table);
std::unique_ptr<Strategy> MakeCasualStrategy();

}  // namespace quorble::companion

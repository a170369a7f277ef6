// The simulator's script language is a contract other tools write to.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/sim/script.h"

namespace quorble::sim {
namespace {

TEST(SimScript, KeyNames) {
  // The named keys are the table in keys.h, checked through the scenario
  // tests' transcripts; these are the rules around them: any case, and the
  // numbered families up to their bounds.
  const std::pair<const char*, int> kNames[] = {
      {"Z", 90},       {"ENTER", 13}, {"kp0", 96},   {"kp9", 105}, {"F12", 123}, {"vk:1", 1},
      {"vk:254", 254}, {"vk:0", 0},   {"vk:255", 0}, {"f13", 0},   {"kp10", 0},  {"nosuch", 0},
  };
  for (const auto& [name, code] : kNames) EXPECT_EQ(KeyCode(name), code) << name;
}

TEST(SimScript, ReadsEveryCommand) {
  std::istringstream in(
      "# a comment\n\nvoices 5\ndate 2026-11-19\nclock 23:59:58\ndice 1 6\n"
      "key r esc\nafter 1.5 key up\nclose\ndice 3\n");
  const Script script = ParseScript(in);
  EXPECT_EQ(script.voices, 5);
  EXPECT_EQ(script.date.month, 11);
  EXPECT_EQ(script.clockSeconds, 86398);
  EXPECT_EQ(script.dice, (std::deque<int>{1, 6, 3}));
  ASSERT_EQ(script.presses.size(), 4u);
  EXPECT_EQ(script.presses[1].code, 27);
  EXPECT_TRUE(script.presses[2].after);
  EXPECT_DOUBLE_EQ(script.presses[2].delay, 1.5);
  EXPECT_TRUE(script.presses[3].close);
}

TEST(SimScript, RefusesWhatItCannotRead) {
  const char* const kBad[] = {
      "voices 21",  "key r\nvoices 2", "date 2026-13-01", "clock 24:00:00", "dice 7",
      "key nosuch", "after x key a",   "after 1 a",       "frobnicate",     "close now",
  };
  for (const char* text : kBad) {
    std::istringstream in(text);
    EXPECT_THROW(ParseScript(in), std::runtime_error) << text;
  }
}

}  // namespace
}  // namespace quorble::sim

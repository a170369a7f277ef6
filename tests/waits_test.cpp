// The key latch and the waits, seen from outside: one key stands in the
// latch, timed waits run their full time, and the waits that a key may end
// end on the key already standing.
#include <gtest/gtest.h>

#include "game_script.h"

namespace quorble::test {
namespace {

// Two keys typed while " getting saved game " is spoken, when no pump
// runs: the first pump delivers both, only the later one stands, and
// without its letter. Had Esc stood, the leaving prompt would follow.
TEST(Waits, LatchHoldsOnlyTheLastKeyTypedAhead) {
  SimWorld world;
  std::vector<int> cells(14, -1);
  SimWorld::Write(world.Data() / "quorble.sav", SaveText(1, 1, {{"Ann", 0, 0, 0, cells}}));
  const SimRun run = world.Run("key n n\nafter 0.3 key esc\nafter 0.1 key x\n");
  const int keys = run.Find("key 27");
  ASSERT_GE(keys, 0) << run.Dump();
  EXPECT_GT(keys, run.Find("getting saved game"));
  EXPECT_EQ(run.lines[keys + 1].text, "key 88");
  EXPECT_TRUE(HeardFrom(run, keys + 2,
                        "\"\" | \" Press M to switch mode from dice to score board and back. \""))
      << run.Dump();
  EXPECT_EQ(run.Find("exit the game without saving"), -1);
}

// Keys during a delay or a sample are latched and change nothing.
TEST(Waits, DelaysAndSamplesRunTheirFullTime) {
  SimWorld world;
  const SimRun run = world.Run("after 0.2 key a\nafter 0.6 key b\n");
  const int filler = run.Find("sound stop");
  const int spec = run.Find("sound stop", filler + 1);
  ASSERT_GE(spec, 0) << run.Dump();
  EXPECT_DOUBLE_EQ(run.lines[filler].time, 0.5);
  EXPECT_NEAR(run.lines[spec].time, 0.7 + 30428.0 / 44102.0, 0.001);
}

// The Enter that marks a die still stands in the latch, so the delay before
// the click ends at once; a key then stops the click, and the delay behind
// it ends at once on that key.
TEST(Waits, KeyEndsTheClickAndTheDelayBehindIt) {
  SimWorld world;
  const SimRun run = world.Run(NewGameKeys(1) + "dice 1 2 3 4 5\nkey r enter\nafter 0.05 key x\n");
  const int click = run.Find("sound open quorble6.wav");
  ASSERT_GE(click, 0) << run.Dump();
  EXPECT_DOUBLE_EQ(run.lines[click].time,
                   run.lines[run.Find("key 13", run.Find("Select Dice"))].time);
  const int stop = run.Find("sound stop", click);
  EXPECT_NEAR(run.lines[stop].time - run.lines[click].time, 0.05, 1e-9);
  EXPECT_EQ(run.lines[stop + 2].text, "speak async \" A. equals \"");
  EXPECT_DOUBLE_EQ(run.lines[stop + 2].time, run.lines[stop].time);
}

// A reroll draws for the marked dice alone, in the order of the dice.
TEST(Waits, RerollDrawsOnlyTheMarkedDiceInOrder) {
  SimWorld world;
  const SimRun run = world.Run(NewGameKeys(1) + "dice 1 2 3 4 5 6 6\nkey r b enter e enter r k\n");
  const int second = run.Find("sound open quorble2.wav");
  ASSERT_GE(second, 0) << run.Dump();
  EXPECT_TRUE(HeardFrom(run, run.Find("\" dice \"", second), "DICE 1 6 3 4 6")) << run.Dump();
}

}  // namespace
}  // namespace quorble::test

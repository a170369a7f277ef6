// Start-up as a player hears it, with its sounds and delays.
#include <gtest/gtest.h>

#include "sim_runner.h"

namespace quorble::test {
namespace {

TEST(StartUp, GreetingInOrderWithItsDelays) {
  SimWorld world;
  const SimRun run = world.Run("");
  ASSERT_EQ(run.status, 3) << run.Dump();
  const std::vector<std::string> expected = {
      "caption \" Quorble  By Tavi Orlund \"",
      "sound open quorble7.wav", "sound pos 0", "sound volume 0", "sound freq 22051", "sound loop",
      "voice new", "voice use 0", "voice rate 0", "voice volume 95", "speak \"\"",
      "sound stop", "sound release",
      "sound open quorble5.wav", "sound pos 40000", "sound volume 0", "sound freq 22051",
      "sound play", "sound stop", "sound release",
      "sound open quorble0.wav", "sound pos 0", "sound volume 0", "sound freq 22051",
      "sound play", "sound stop", "sound release",
      "speak \" Version 2. By Tavi Orlund \"",
      "speak async \" Would you like to read the instructions? \"",
      "speak async \" yes \"",
      "stuck",
  };
  EXPECT_EQ(run.Events(), expected) << run.Dump();
  // The filler sounds for half a second after the voice has loaded.
  EXPECT_DOUBLE_EQ(run.lines[run.Find("sound stop")].time, 0.5);
  EXPECT_DOUBLE_EQ(run.lines[run.Find("quorble5.wav")].time, 0.7);
  const int version = run.Find("Version 2");
  // 27 characters at 0.06 s, then 0.3 s before the question.
  EXPECT_NEAR(run.lines[version + 1].time - run.lines[version].time, 1.62 + 0.3, 1e-9);
}

TEST(StartUp, NoVoicesShowsTheBoxAndLeavesNoFile) {
  SimWorld world;
  const SimRun run = world.Run("voices 0\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  EXPECT_NE(run.Find("msgbox \"Sorry but I couldn't find any voices to use\\x0dPlease contact Tavi Orlund\""), -1);
  EXPECT_EQ(run.Find("speak async"), -1);
  EXPECT_FALSE(std::filesystem::exists(world.Data()));
  EXPECT_EQ(run.Events().back(), "end");
}

}  // namespace
}  // namespace quorble::test

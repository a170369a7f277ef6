// Turns as a player hears them: rolls, the dice screen, the board, the
// spoken score and its question, and the ways out of a turn.
#include <gtest/gtest.h>

#include "game_script.h"

namespace quorble::test {
namespace {

const std::string kAnn = NamedGame({"shift a n n"});

TEST(Turn, RollsAndReviewsInOrderWithTheirDelays) {
  SimWorld world;
  const SimRun run = world.Run(kAnn + "dice 1 2 3 4 5\nkey r b enter e enter r\ndice 6 6\n" +
                               "key r down enter enter\n");
  ASSERT_EQ(run.status, 3) << run.Dump();
  const int roll = run.Find("key 82");
  Texts samples;
  for (int at = run.Find("sound open", roll); at >= 0; at = run.Find("sound open", at + 1)) {
    samples.push_back(run.lines[at].text.substr(11));
  }
  // All five dice, two picks, two dice rolled again, and no sample for none.
  EXPECT_EQ(Chain(samples), "quorble5.wav | quorble6.wav | quorble6.wav | quorble2.wav");
  EXPECT_TRUE(HeardFrom(run, run.Find("sound stop", roll),
                        "+0.000 sound stop | +0.200 DICE 1 2 3 4 5 | "
                        R"(+0.600 " Select Dice " | +0.600 " A. equals " | +0.600 " 1")"));
  const int reroll = run.Find("key 82", roll + 1);
  EXPECT_TRUE(
      HeardFrom(run, reroll, R"(+0.000 key 82 | +0.000 "r" | +0.200 sound open quorble2.wav)"));
  // The third roll rolls nothing, and the dice lead straight on to the board.
  const int third = run.Find("key 82", reroll + 1);
  EXPECT_TRUE(
      HeardFrom(run, third,
                R"(+0.000 key 82 | +0.000 "r" | +0.400 DICE 1 6 3 4 6 | +0.600 " score " | )"
                R"(+0.600 " sheet " | +0.600 " ones " | +0.700 key 40)"));
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 13", third),
                R"(+0.000 key 13 | +0.200 " Score  0 points " | +0.200 " for  twos " | )"
                R"(+0.400 " Is this Correct? " | +0.400 " yes " | +0.500 key 13 | )"
                R"(+0.500 " Ann player number  1" | +0.500 " Press R, to roll the dice ")"));
}

// The Enter that marks a die still stands in the latch, so the delay before
// the click ends at once; a key then stops the click, and the delay behind
// it ends at once on that key.
TEST(Turn, KeyEndsTheClickAndTheDelayBehindIt) {
  SimWorld world;
  const SimRun run = world.Run(NamedGame() + "dice 1 2 3 4 5\nkey r enter\nafter 0.05 key x\n");
  const int click = run.Find("sound open quorble6.wav");
  ASSERT_GE(click, 0) << run.Dump();
  EXPECT_DOUBLE_EQ(run.lines[click].time,
                   run.lines[run.Find("key 13", run.Find("Select Dice"))].time);
  const int stop = run.Find("sound stop", click);
  EXPECT_NEAR(run.lines[stop].time - run.lines[click].time, 0.05, 1e-9);
  EXPECT_EQ(run.lines[stop + 2].text, "speak async \" A. equals \"");
  EXPECT_DOUBLE_EQ(run.lines[stop + 2].time, run.lines[stop].time);
}

TEST(Turn, PromptAndDiceScreenKeys) {
  SimWorld world;
  const SimRun run = world.Run(kAnn + "key x f1\ndice 1 2 3 4 5\nkey r c enter k x s u up k\n");
  ASSERT_EQ(run.status, 3) << run.Dump();
  const std::string help =
      R"(" Press M to switch mode from dice to score board and back. " | " S to save game. " | )"
      R"(" escape key to exit the game. " | " Press R, to roll the dice ")";
  EXPECT_TRUE(HeardFrom(run, run.Find("key 88"), R"(key 88 | "x" | )" + help));
  EXPECT_TRUE(HeardFrom(run, run.Find("key 112"), "key 112 | " + help)) << "F1 is not echoed";
  const int keep = run.Find("key 75");
  EXPECT_TRUE(HeardFrom(
      run, keep,
      R"(key 75 | "k" | !" you can not keep your dice until you roll them. " | " C. equals ")"));
  EXPECT_TRUE(HeardFrom(
      run, run.Find("key 88", keep),
      R"(key 88 | "x" | " Use the arrow keys or press the letter of the die  you wish to reroll. )"
      R"( Then press enter or space bar to select that die. " | " Press the R key to roll the die )"
      R"(after selecting all of them that you wish to reroll. " | " press the s key to respeak all )"
      R"(dice. " | " press the K key to keep die as they are " | " Press the M key to switch mode )"
      R"(to review the score board. " | " press the U key to unselect all of the die. " | " C. equals ")"));
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 83", keep), R"(key 83 | "s" | DICE 1 2 - 4 5 | key 85)"));
  EXPECT_TRUE(HeardFrom(
      run, run.Find("key 85", keep),
      R"(key 85 | "u" | " Select Dice " | " A. equals " | " 1" | key 38 | " E. equals " | )"
      R"(" 5" | key 75 | "k" | )"
      R"(DICE 1 2 3 4 5 | " score ")"));
}

TEST(Turn, FanfareExtraRowAndRefusals) {
  SimWorld world;
  std::string script = kAnn + "dice 6 6 6 6 6\nkey r s k enter n up enter\n";
  script += "key down down down down down down down down down down down down enter enter\n";
  script += "dice 6 6 6 6 6\nkey r k up enter enter\n";
  script += "dice 1 2 3 4 5\nkey r k up enter up enter down down enter enter\n";
  script += "dice 6 6 6 6 6\nkey r k up enter enter\nkey m up esc\n";
  const SimRun run = world.Run(script);
  ASSERT_EQ(run.status, 3) << run.Dump();
  const int roll = run.Find("key 82");
  const int second = run.Find("Ann player number", roll);
  const int third = run.Find("Ann player number", second + 1);
  EXPECT_EQ(Count(run, "open quorble0.wav", roll), 3) << "once in each turn of five alike";
  EXPECT_EQ(Count(run, "open quorble0.wav", second), 2);
  // The fanfare waits until the last value has been heard.
  EXPECT_TRUE(HeardFrom(run, run.Find("sound stop", roll),
                        R"(+0.000 sound stop | +0.200 DICE 6 6 6 6 6 | +0.400 !" " | )"
                        "+4.520 sound open quorble0.wav"));
  // A no stores nothing and goes back to the dice and the same row.
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 78", roll),
                R"(key 78 | "n" | DICE 6 6 6 6 6 | " score " | " sheet " | " ones " | key 38)"));
  EXPECT_TRUE(HeardFrom(run, run.Find("key 13", run.Find("key 38")),
                        R"(+0.000 key 13 | +0.200 beep | +0.500 !" Sorry but you can not have an )"
                        R"(extra quorble without first having a quorble. " | +5.720 " score " | )"
                        R"(+5.720 " sheet " | +5.720 " ones " | +5.820 key 40)"));
  EXPECT_NE(run.Find(R"(" Score  100 points ")", second), -1);
  EXPECT_NE(run.Find(R"(" for  extra kwor-bul ")", second), -1);
  const int refusalB = run.Find("key 13", third);
  EXPECT_TRUE(HeardFrom(
      run, refusalB,
      R"(+0.000 key 13 | +0.200 beep | +0.200 !" Sorry but you do not have a )"
      R"(kwor-bul. so it can not be scored as an extra kwor-bull." | +5.300 " score " | )"
      R"(+5.300 " sheet " | +5.300 " extra kwor-bul " | +5.300 " 100points " | +5.400 key 38)"));
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 13", refusalB + 1),
                R"(+0.000 key 13 | +0.200 beep | +0.500 !" You already have a score for )"
                R"(kwor-bul " | +3.140 "kwor-bul " | +3.140 " 50points " | +3.240 key 40)"));
  EXPECT_NE(run.Find(R"(" Score  1 point ")", refusalB), -1);
  // M at the roll prompt looks at the board; Esc there is no leaving prompt.
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 77", run.Find("Ann player number", third + 1)),
                R"(key 77 | "m" | " score " | " sheet " | " ones " | " 1point " | key 38 | )"
                R"(" extra kwor-bul " | " 200points " | key 27 | " Press R, to roll the dice ")"));
}

// A quorble scored as 0 earns no extra one.
TEST(Turn, NoExtraRowAfterAQuorbleOfNothing) {
  SimWorld world;
  std::vector<int> cells = ExampleCells(0);
  cells[0] = -1;  // ones still open: the game is not over
  SimWorld::Write(world.Data() / "quorble.sav", SaveText(1, 1, {{"Ann", 0, 0, 0, cells}}));
  const SimRun run = world.Run("key n n\n" + Turn("6 6 6 6 6", 14));
  EXPECT_NE(run.Find("without first having a quorble"), -1) << run.Dump();
}

TEST(Turn, EscapeAtEachStageComesBackWhereItWasAsked) {
  SimWorld world;
  const SimRun run =
      world.Run(kAnn + "key esc up up enter\ndice 1 2 3 4 5\nkey r b enter esc enter r\n" +
                "dice 6\nkey m esc x n k down esc enter esc y\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  EXPECT_NE(run.Find("sound open quorble1.wav"), -1) << "one die rolled has its sound too";
  const std::string leave = R"(" Do you wish to exit the game without saving it? " | " No ")";
  EXPECT_TRUE(HeardFrom(run, run.Find("key 27"),
                        "key 27 | " + leave +
                            R"( | key 38 | " Yes " | key 38 | " No " | key 13 | )" +
                            R"(" Ann player number  1" | " Press R, to roll the dice ")"));
  EXPECT_TRUE(HeardFrom(run, run.Find("key 27", run.Find("key 82")),
                        R"(+0.000 key 27 | +0.000 " Do you wish to exit the game without saving )"
                        R"(it? " | +0.000 " No " | +0.100 key 13 | +0.300 DICE 1 - 3 4 5 | )"
                        R"(+0.700 " Select Dice ")"));
  EXPECT_TRUE(HeardFrom(run, run.Find("key 27", run.Find("key 77")),
                        "key 27 | " + leave + R"( | key 88 | "x" | )" + leave +
                            R"( | key 78 | "n" | DICE 1 6 3 4 5 | " Select Dice ")"));
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 27", run.Find("key 75")),
                "key 27 | " + leave + R"( | key 13 | DICE 1 6 3 4 5 | " score " | )" +
                    R"(" sheet " | " twos " | key 27 | )" + leave +
                    R"( | key 89 | "y" | !" thank you for playing Kwor-bul, By Tavi Orlund ")"));
}

TEST(Turn, ThreeSheetsEndAfterTheLastRowOfTheThird) {
  SimWorld world;
  const SimRun run = world.Run(NamedGame({"shift a n n"}, "t") + FillSheet(1) + FillSheet(2) +
                               FillSheet(3) + "key esc\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  EXPECT_EQ(Count(run, " Press R, to roll the dice "), 39);
  EXPECT_EQ(Count(run, R"(" on sheet  3")"), 13);
  EXPECT_NE(run.Find(R"(" sheet  3 ")"), -1);
  const int over = run.Find("game scores");
  EXPECT_NE(run.Find(R"(" total score sheet  3")", over), -1);
  EXPECT_NE(run.Find(R"(" 918 points ")", over), -1);
  const std::string log = SimWorld::Read(world.Data() / "quorblelog.txt");
  EXPECT_NE(log.find("score sheet # 3\r\n ones  3 points"), std::string::npos) << log;
  EXPECT_NE(log.find("grand total 918 points\r\n"), std::string::npos) << log;
}

}  // namespace
}  // namespace quorble::test

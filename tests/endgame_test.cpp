// The end of a game: every sheet read out, the winner, the end menu and the
// board review, each started from a saved game one turn before its end.
#include <gtest/gtest.h>

#include "game_script.h"

namespace quorble::test {
namespace {

const std::string kMenu =
    R"(" press f1 to repeat score.   f2 to repeat entire scoring.   Or, M key to review score board. ")";

// Ann has finished with 306; Bob, in a voice and rate of his own, has only
// row 13 left and takes it with `dice`.
SimRun LastTurn(const SimWorld& world, const std::string& dice, const std::string& then) {
  SimWorld::Write(
      world.Data() / "quorble.sav",
      SaveText(2, 1, {{"Ann", 1, 0, 0, ExampleCells(50, 0)}, {"Bob", 0, 1, 2, ExampleCells(-1)}}));
  return world.Run("key n n\n" + Turn(dice, 13) + then);
}

int WinnerLines(const SimWorld& world) {
  const std::string log = SimWorld::Read(world.Data() / "quorblelog.txt");
  const size_t first = log.find("The winner is");
  return first == std::string::npos ? 0 : first == log.rfind("The winner is") ? 1 : 2;
}

TEST(EndOfGame, KeyCutsTheReadingWhereItComes) {
  const struct {
    double after;  // seconds from the Enter that ends the game
    const char* key;
    const char* lastHeard;
    double menuAt;
    bool winnerLogged;
  } kCases[] = {
      {1.0, "x", " Ann! with  306 points", 20.988, true},  // in the fanfare: no effect
      {1.95, "x", " Ann player number  1", 2.05, false},
      {2.2, "ctrl", " 208", 2.35, false},                 // no rate dialogue here
      {5.0, "f12", " 306 points ", 5.0, false},           // Ann's lines heard out
      {14.5, "x", " 306 points ", 14.5, false},           // in the list of totals
      {18.1, "x", " Ann! with  306 points", 18.1, true},  // the pause after the winner
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.after);
    SimWorld world;
    const SimRun run = LastTurn(
        world, "6 6 6 6 6", "after " + std::to_string(c.after) + " key " + c.key + "\nkey esc\n");
    ASSERT_EQ(run.status, 0) << run.Dump();
    const int over = run.Find("key 13", run.Find("Is this Correct?"));
    const int menu = run.Find(kMenu, over);
    ASSERT_NE(menu, -1) << run.Dump();
    EXPECT_NEAR(run.lines[menu].time - run.lines[over].time, c.menuAt, 1e-6);
    int last = menu - 1;
    while (!run.lines[last].text.starts_with("speak async")) --last;
    EXPECT_EQ(run.lines[last].text, std::string("speak async \"") + c.lastHeard + "\"");
    EXPECT_EQ(run.Find("to adjust the speech rate", over), -1);
    EXPECT_EQ(run.Find("do you wish to use this voice", over), -1);
    EXPECT_EQ(WinnerLines(world), c.winnerLogged ? 1 : 0);
  }
  // Cut after Ann's lines: Bob's voice is loaded, and F1 still gives the
  // true totals and writes the winner line.
  SimWorld world;
  const SimRun run = LastTurn(world, "6 6 6 6 6", "after 5 key x\nkey f1 esc\n");
  const int key = run.Find("key 88");
  const int menu = run.Find(kMenu, key);
  EXPECT_EQ(run.lines[run.Find("voice use", key)].text, "voice use 1");
  EXPECT_LT(run.Find("voice use", key), menu);
  EXPECT_LT(run.Find("speak purge", key), menu) << "what was queued is cut";
  EXPECT_GT(run.Find("Bob player number", run.Find("game scores")), menu)
      << "none of his lines yet";
  EXPECT_NE(run.Find(R"(" Ann! with  306 points")", menu), -1);
  EXPECT_EQ(WinnerLines(world), 1);
}

TEST(EndOfGame, MenuRepeatsAndReviewsBoards) {
  SimWorld world;
  const SimRun run =
      LastTurn(world, "1 2 3 4 5", "key f1 f1 f1 f2 m 0 3 esc kp1 enter a 2 down esc esc\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  const int over = run.Find("key 13", run.Find("Is this Correct?"));
  EXPECT_EQ(WinnerLines(world), 1);
  EXPECT_EQ(Count(run, R"(" The winner! is!  Player number  1")", over), 5);
  EXPECT_EQ(Count(run, R"(" Ann! with  306 points")", over), 5) << "Bob has 256";
  EXPECT_EQ(Count(run, "open quorble0.wav", over), 2);
  EXPECT_EQ(Count(run, R"(" game scores ")", run.Find("key 113")), 1);
  EXPECT_EQ(Count(run, "press the number of the player's score board to review.", over), 7);
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 50", over),
                R"(key 50 | "Bob player number  2" | " score " | " sheet " | "kwor-bul " | )"
                R"(" 0points " | key 40 | " extra kwor-bul " | " 0points " | key 27 | )" +
                    kMenu + R"( | key 27 | !" thank you for playing Kwor-bul, By Tavi Orlund ")"));
  EXPECT_FALSE(fs::exists(world.Data() / "quorble.sav")) << "a finished game is not kept";
}

TEST(EndOfGame, OnePlayerHearsNoWinnerUntilF1) {
  SimWorld world;
  SimWorld::Write(world.Data() / "quorble.sav",
                  SaveText(1, 1, {{"Ann", 0, 0, 0, ExampleCells(-1)}}));
  // The key comes while Ann's final score is still being spoken.
  const SimRun run = world.Run("key n n\n" + Turn("6 6 6 6 6", 13) + "after 4 key x\nkey f1 esc\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  const int key = run.Find("key 88");
  const int menu = run.Find(kMenu, key);
  EXPECT_EQ(run.lines[menu].time, run.lines[key].time) << "the pause ends at once";
  EXPECT_EQ(run.Find("speak purge", key), run.Find("speak purge", menu)) << "and nothing is cut";
  EXPECT_EQ(run.Find(R"(" scores ")"), run.Find(R"(" scores ")", menu));
  EXPECT_EQ(run.Find("The winner!"), run.Find("The winner!", menu));
  EXPECT_TRUE(HeardFrom(run, run.Find("key 112", menu),
                        R"(key 112 | " scores " | " Ann player number  1" | " 306 points " | )"
                        R"(" The winner! is!  Player number  1" | " Ann! with  306 points" | )" +
                            kMenu));
}

}  // namespace
}  // namespace quorble::test

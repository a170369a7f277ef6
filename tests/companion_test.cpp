// The companion mode as a player hears it: computer players from set-up to
// the end of a game, the hint and the running totals, and saved games that
// remember who the computer plays.
#include <gtest/gtest.h>

#include <sstream>

#include "game_script.h"

namespace quorble::test {
namespace {

const std::string kOn = "--companion";

// Ann and `computers` computer players, up to Ann's first roll prompt.
std::string WithComputers(int players, int computers) {
  return "key n n enter " + std::to_string(players) + " y " + std::to_string(computers) +
         "\nkey shift a n n enter enter y\n";
}

// Ann's turn that keeps the first roll and scores it on `row`.
std::string AnnScores(int row) {
  std::string keys = "key r k";
  for (int i = 1; i < row; ++i) keys += " down";
  return keys + " enter enter\n";
}

// The first text spoken after line `at` before the next key; empty for none.
std::string SpokenAfter(const SimRun& run, int at) {
  for (int i = at + 1; i < static_cast<int>(run.lines.size()); ++i) {
    const std::string& text = run.lines[i].text;
    if (text.starts_with("key ")) return {};
    if (text.starts_with("speak ") && text != "speak purge") return Unquote(text);
  }
  return {};
}

// The lines of a file the game wrote, without their CR LF.
std::vector<std::string> FileLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, line.find('\r')));
  return lines;
}

TEST(Companion, OneHumanAndTwoComputersPlayAWholeGame) {
  SimWorld world;
  std::string script = WithComputers(3, 2);
  for (int row = 1; row <= 13; ++row) script += AnnScores(row);
  const SimRun run = world.Run(script + "key x\n", kOn);
  ASSERT_EQ(run.status, 0) << run.Dump();
  // Each speaker in a voice of their own, every turn ending in its decision.
  const struct {
    std::string intro;
    std::string voice;
  } kPlayers[] = {{" Ann player number  1", "voice use 0"},
                  {" computer 1 player number  2", "voice use 1"},
                  {" computer 2 player number  3", "voice use 2"}};
  for (const auto& player : kPlayers) {
    SCOPED_TRACE(player.intro);
    int turns = 0;
    for (int at = run.Find(player.intro); at >= 0; at = run.Find(player.intro, at + 1)) {
      EXPECT_EQ(run.lines[at - 2].text, player.voice);
      ++turns;
    }
    EXPECT_GE(turns, 13);
  }
  const int end = run.Find(R"(" game scores ")");
  ASSERT_NE(end, -1);
  const auto turns = [&](const std::string& part) {
    return Count(run, part) - Count(run, part, end);
  };
  EXPECT_EQ(turns(R"(speak async " scores )"),
            turns("computer 1 player number") + turns("computer 2 player number"));
  const std::string log = SimWorld::Read(world.Data() / "quorblelog.txt");
  EXPECT_NE(log.find("Player # 2computer 1\r\n"), std::string::npos) << log;
  EXPECT_NE(log.find("Player # 3computer 2\r\n"), std::string::npos) << log;
  EXPECT_FALSE(fs::exists(world.Data() / "quorble.sav"));
}

// Ann scores ones; computer 1 rolls three sixes, keeps them and rolls two
// more; computer 2 rolls five alike at once.
const std::string kThreeTurns =
    WithComputers(3, 2) + "dice 1 2 3 4 5 6 6 6 1 2 6 6 6 6 6 6 6\n" + AnnScores(1);

TEST(Companion, ComputerTurnsAreSpokenInTheirVoicesAtAPaceToFollow) {
  SimWorld world;
  const SimRun run = world.Run(kThreeTurns, kOn);
  ASSERT_EQ(run.status, 3) << run.Dump();
  const int first = run.Find(R"(" computer 1 player number  2")");
  ASSERT_GE(first, 0) << run.Dump();
  EXPECT_EQ(run.lines[first - 2].text, "voice use 1");
  EXPECT_TRUE(
      HeardFrom(run, first,
                R"(" computer 1 player number  2" | sound open quorble5.wav | sound stop | )"
                R"(" dice " | " A. equals  6" | " B. equals  6" | " C. equals  6" | )"
                R"(" D. equals  1" | " E. equals  2" | " keeps A B C " | )"
                R"(sound open quorble2.wav | sound stop | " dice " | " A. equals  6" | )"
                R"(" B. equals  6" | " C. equals  6" | " D. equals  6" | " E. equals  6" | )"
                R"(sound open quorble0.wav | sound stop | " scores 50 points for kwor-bul ")"));
  // Each line is heard out, and a pause follows, before the next step.
  const int dice = run.Find(R"(" dice ")", first);
  const int keeps = run.Find(R"(" keeps A B C ")", dice);
  double speech = 0;
  for (int i = dice; i < keeps; ++i)
    speech += 0.06 * static_cast<double>(Unquote(run.lines[i].text).size());
  EXPECT_NEAR(run.lines[keeps].time - run.lines[dice].time, speech + 0.4, 1e-3);
  const int second = run.Find(R"(" computer 2 player number  3")", keeps);
  EXPECT_EQ(run.lines[second - 2].text, "voice use 2");
  EXPECT_NE(run.Find(R"(" scores 50 points for kwor-bul ")", second), -1);
  EXPECT_TRUE(HeardFrom(run, run.Find("voice use 0", second), R"(" Ann player number  1")"));
}

TEST(Companion, AnyKeyHurriesAComputerToItsDecision) {
  SimWorld world;
  const SimRun run = world.Run(kThreeTurns + "after 1 key x\n", kOn);
  ASSERT_EQ(run.status, 3) << run.Dump();
  const int key = run.Find("key 88");
  ASSERT_GE(key, 0) << run.Dump();
  EXPECT_LT(run.Find("computer 1 player number"), key);
  EXPECT_TRUE(HeardFrom(run, key, R"(key 88 | " scores 50 points for kwor-bul ")"));
  const int decision = run.Find(" scores 50", key);
  EXPECT_DOUBLE_EQ(run.lines[decision].time, run.lines[key].time);
  // The next computer is not hurried by it.
  EXPECT_TRUE(HeardFrom(run, run.Find("computer 2 player number", decision),
                        R"(" computer 2 player number  3" | sound open quorble5.wav)"));
}

TEST(Companion, HintAndTotalsSpeakWhereTheyAct) {
  const std::string keys =
      "dice 6 6 6 1 2\n"
      "key f5 f6 m f5 f6 m r\n"  // roll prompt, and its board
      "key f5 f6 m f5 f6 m\n"    // dice screen, and its board
      "key k f5 f6\n";           // row choice
  const std::string totals = " upper 0, 63 short of the bonus, lower 0, total 0 ";
  const std::vector<std::string> heard = {
      "",    totals, "", totals, " keep A B C ", totals, " keep A B C ", totals, " score on sixes ",
      totals};
  const std::string kPeople =
      "key n n enter 2 y\nkey shift a n n enter enter y\nkey b enter enter y\n";
  for (const bool on : {true, false}) {
    SCOPED_TRACE(on ? "companion" : "plain");
    SimWorld world;
    const SimRun run = on ? world.Run(WithComputers(2, 1) + keys, kOn) : world.Run(kPeople + keys);
    std::vector<std::string> got;
    for (int at = run.Find("key 11"); at >= 0; at = run.Find("key 11", at + 1)) {
      if (run.lines[at].text == "key 116" || run.lines[at].text == "key 117") {
        got.push_back(SpokenAfter(run, at));
      }
    }
    // Without the mode both keys only cut the speech.
    EXPECT_EQ(got, on ? heard : std::vector<std::string>(heard.size())) << run.Dump();
  }
}

TEST(Companion, TotalsOfEachSheetAndTheGrandTotal) {
  SimWorld world;
  std::vector<int> cells = ExampleCells(50);
  for (int row = 1; row <= 14; ++row) cells.push_back(row <= 6 ? row : -1);
  SimWorld::Write(world.Data() / "quorble.sav", SaveText(1, 2, {{"Ann", 0, 0, 0, cells}}));
  const SimRun run = world.Run("key n n f6\n", kOn);
  ASSERT_EQ(run.status, 3) << run.Dump();
  EXPECT_TRUE(HeardFrom(run, run.Find("key 117"),
                        R"(key 117 | " sheet 1, upper 63 with the bonus, lower 208, total 306 " | )"
                        R"(" sheet 2, upper 21, no bonus, lower 0, total 21 " | )"
                        R"(" grand total 327 ")"));
}

TEST(Companion, SavedGamesRememberTheComputerPlayers) {
  SimWorld world;
  const fs::path save = world.Data() / "quorble.sav";
  ASSERT_EQ(world.Run(WithComputers(3, 2) + AnnScores(1) + "key s\n", kOn).status, 0);
  auto lines = FileLines(SimWorld::Read(save));
  ASSERT_EQ(lines.size(), 4u + 3 * 18 + 1);
  EXPECT_EQ(lines[4 + 18], "computer 1");
  EXPECT_EQ(lines[4 + 36], "computer 2");
  EXPECT_EQ(lines.back(), " 6 ");  // players 2 and 3

  // Taken up without the option, the computers go on playing and are saved
  // again as computers.
  const SimRun resumed = world.Run("key n n\n" + AnnScores(2) + "key s\n");
  ASSERT_EQ(resumed.status, 0) << resumed.Dump();
  EXPECT_NE(resumed.Find(R"(" computer 2 player number  3")"), -1) << resumed.Dump();
  lines = FileLines(SimWorld::Read(save));
  EXPECT_EQ(lines.back(), " 6 ");
  EXPECT_EQ(lines[4 + 18 + 4 + 1], lines[4 + 18 + 4]);  // a computer's row 2 as well as row 1
}

TEST(Companion, AGameOfPeopleAloneIsSavedAsEver) {
  SimWorld world;
  const std::string script =
      "key n n enter 2 y 0\nkey a enter enter y\nkey b enter enter y\nkey s\n";
  ASSERT_EQ(world.Run(script, kOn).status, 0);
  const std::vector<int> empty(14, -1);
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav"),
            SaveText(1, 1, {{"a", 0, 0, 0, empty}, {"b", 0, 0, 0, empty}}));
}

TEST(Companion, SetUpQuestionTakesADigitBelowThePlayers) {
  SimWorld world;
  const SimRun run = world.Run("key n n enter 3 y f1 3 x 1\n", kOn);
  EXPECT_TRUE(HeardFrom(run, run.Find(R"(" How many of them are computer players? ")"),
                        R"(" How many of them are computer players? " | key 112 | )"
                        R"(" How many of them are computer players? " | key 51 | "3" | )"
                        R"(" Lets try that again please. " | )"
                        R"(" How many of them are computer players? " | key 88 | "x" | )"
                        R"(" Lets try that again please. " | )"
                        R"(" How many of them are computer players? " | key 49 | "1" | )"
                        R"(" Enter the name of player number  1")"));
  // One player alone is not asked.
  const SimRun alone = world.Run("key n n enter 1 y\n", kOn);
  EXPECT_EQ(alone.Find("computer players"), -1);
  EXPECT_NE(alone.Find("Enter the name of player number  1"), -1);
}

TEST(Companion, WithoutItsTableTheCompanionPlaysTheSimpleWayAndSaysSo) {
  SimWorld world;
  const fs::path samples = world.Root() / "samples";
  fs::create_directories(samples);
  for (int i = 0; i <= 7; ++i) {
    const std::string name = "quorble" + std::to_string(i) + ".wav";
    fs::copy_file(fs::path(QUORBLE_SAMPLES) / name, samples / name);
  }
  SimWorld::Write(samples / "quorble-strategy.bin", "not a table");
  const SimRun run =
      world.Run(WithComputers(2, 1) + AnnScores(1), kOn + " --samples '" + samples.string() + "'");
  ASSERT_EQ(run.status, 3) << run.Dump();
  EXPECT_TRUE(HeardFrom(run, run.Find("strategy table"),
                        R"(" The companion's strategy table is missing, so it plays the simple )"
                        R"(way. " | " Ann player number  1")"));
  EXPECT_NE(run.Find(R"(speak async " scores )"), -1);
}

// A full house on the first roll: the casual player takes it, the optimal
// one plays on for fives.
TEST(Companion, StrengthIsChosenByTheOption) {
  const std::string script = WithComputers(2, 1) + "dice 1 2 3 4 5 5 5 5 2 2\n" + AnnScores(1);
  const struct {
    std::string option;
    int status;
    std::string first;
  } kCases[] = {{"--companion", 3, " keeps A B C "},
                {"--companion=casual", 3, " scores 25 points for full house "},
                {"--companion=optimal", 3, " keeps A B C "},
                {"--companion=strong", 2, ""}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.option);
    SimWorld world;
    const SimRun run = world.Run(script, c.option);
    ASSERT_EQ(run.status, c.status) << run.Dump();
    if (c.status != 3) continue;
    const int at = run.Find(R"(" E. equals  2")", run.Find("computer 1 player number"));
    EXPECT_TRUE(HeardFrom(run, at, R"(" E. equals  2" | ")" + c.first + "\"")) << run.Dump();
  }
}

}  // namespace
}  // namespace quorble::test

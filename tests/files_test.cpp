// What a game leaves on disk: the log, the saved game, the configuration,
// and what a closed window or a bad file does to them.
#include <gtest/gtest.h>

#include "game_script.h"

namespace quorble::test {
namespace {

std::string Crlf(const std::string& text) {
  std::string out;
  for (char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

// `text` with its line `n`, counted from 0, replaced by `by`, or dropped.
std::string WithLine(std::string text, int n, const char* by) {
  size_t at = 0;
  for (int i = 0; i < n; ++i) at = text.find("\r\n", at) + 2;
  return text.replace(at, text.find("\r\n", at) + 2 - at, by ? std::string(by) + "\r\n" : "");
}

// Ann at rate -2, with two turns scored: what kSaveExample holds.
const std::string kAnnTwoTurns =
    "key n n enter 1 y\nkey shift a n n ctrl down down enter enter enter y\n" +
    Turn("1 1 1 2 2", 1) + Turn("2 2 3 3 3", 9);

const std::string kSaveExample =
    SaveText(1, 1, {{"Ann", 0, 0, -2, {3, -1, -1, -1, -1, -1, -1, -1, 25, -1, -1, -1, -1, -1}}});

const std::string kLogExample = Crlf(R"(Quorble log file 11-19-2026 By Tavi Orlund

Player # 1Ann
 ones  3 points 
 twos  6 points 
 threes  9 points 
 fours  12 points 
 fives  15 points 
 sixes  18 points 
 three of a kind  20 points 
 four of a kind  22 points 
 full house  25 points 
 small straight  30 points 
 large straight  40 points 
 chance  21 points 
quorble  50 points 
 extra quorble  0 points 
top score 63 points
bonus 35 points
bottom score 208 points
total score 306 points
 
 
)");

TEST(Files, LogOfTheLastGameWithItsWinnerLineAfterF1) {
  SimWorld world;
  const fs::path log = world.Data() / "quorblelog.txt";
  const SimRun first =
      world.Run("date 2026-11-18\n" + NamedGame({"shift a n n"}) + FillSheet() + "key esc\n");
  ASSERT_EQ(first.status, 0) << first.Dump();
  std::string older = kLogExample;
  older.replace(older.find("11-19"), 5, "11-18");
  EXPECT_EQ(SimWorld::Read(log), older) << "one player: no winner line without F1";
  const SimRun second =
      world.Run("date 2026-11-19\n" + NamedGame({"shift a n n"}) + FillSheet() + "key f1 esc\n");
  ASSERT_EQ(second.status, 0) << second.Dump();
  EXPECT_EQ(SimWorld::Read(log), kLogExample + "The winner is Ann! with  306 points\r\n");
}

TEST(Files, SavedGamesThatCannotBeTrustedAreSetAside) {
  const auto with = [](int line, const char* by) { return WithLine(kSaveExample, line, by); };
  const auto two = [](int pup, int finAnn, const char* nfin) {
    return WithLine(
        SaveText(pup, 1,
                 {{"Ann", finAnn, 0, 0, ExampleCells(50, 0)}, {"Bob", 0, 0, 0, ExampleCells(-1)}}),
        3, nfin);
  };
  const struct {
    const char* what;
    std::string text;
    bool bad;
  } kCases[] = {
      {"as written", kSaveExample, false},
      {"two players, one finished", two(2, 1, " 1 "), false},
      {"truncated", with(21, nullptr), true},
      {"a line too many", kSaveExample + " -1 \r\n", true},
      {"player up beyond the players", with(1, " 2 "), true},
      {"the player up has finished", two(1, 1, " 1 "), true},
      {"finished count off", two(2, 0, " 1 "), true},
      {"all finished", with(3, " 1 "), true},
      {"six ones from five dice", with(8, " 6 "), true},
      {"twos of 3", with(9, " 3 "), true},
      {"full house of 20", with(16, " 20 "), true},
      {"chance of 0", with(19, " 0 "), true},
      {"extra row of 150", with(21, " 150 "), true},
      {"extra row beyond any game", with(21, " 1000000000 "), true},
      {"extra row without a quorble", with(21, " 100 "), true},
      {"computers alone", kSaveExample + " 1 \r\n", true},
      {"a full board not finished",
       SaveText(1, 1, {{"Ann", 0, 0, 0, ExampleCells(50)}, {"Bob", 0, 0, 0, ExampleCells(-1)}}),
       true},
      {"finished with an empty row",
       SaveText(2, 1, {{"Ann", 1, 0, 0, ExampleCells(-1)}, {"Bob", 0, 0, 0, ExampleCells(-1)}}),
       true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    SimWorld world;
    SimWorld::Write(world.Data() / "quorble.sav.bad", "older");
    SimWorld::Write(world.Data() / "quorble.sav", c.text);
    const SimRun run = world.Run("key n n\n");
    ASSERT_EQ(run.status, 3) << run.Dump();
    const int getting = run.Find(R"(speak " getting saved game ")");
    if (!c.bad) {
      EXPECT_NE(run.Find("player number ", getting), -1) << run.Dump();
      EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav"), c.text);
      continue;
    }
    EXPECT_TRUE(HeardFrom(run, getting,
                          R"(!" getting saved game " | !" The saved game could not be read. A new )"
                          R"(game begins. " | " Select which game you wish to play ")"));
    EXPECT_FALSE(fs::exists(world.Data() / "quorble.sav"));
    EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav.bad"), "older");
    EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav.bad.1"), c.text);
  }
}

// A file that can't be read is set aside under the first free name, and
// when there is none it stays where it is, through leaving and saving.
TEST(Files, UnreadableSavedGameIsNeverLost) {
  const std::string bad = WithLine(kSaveExample, 0, " 0 ");
  SimWorld world;
  const fs::path save = world.Data() / "quorble.sav";
  fs::create_directories(world.Data() / "quorble.sav.bad");
  SimWorld::Write(save, bad);
  ASSERT_EQ(world.Run("key n n\n").status, 3);
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav.bad.1"), bad);

  for (int n = 2; n < 100; ++n) {
    fs::create_directories(world.Data() / ("quorble.sav.bad." + std::to_string(n)));
  }
  SimWorld::Write(save, bad);
  const SimRun left = world.Run(NamedGame({"a"}) + "key esc y\n");
  ASSERT_EQ(left.status, 0) << left.Dump();
  EXPECT_NE(left.Find("could not be read"), -1);
  EXPECT_EQ(SimWorld::Read(save), bad);
  const SimRun saved = world.Run(NamedGame({"a"}) + "key s\n");
  EXPECT_NE(saved.Find("The game could not be saved."), -1) << saved.Dump();
  EXPECT_EQ(SimWorld::Read(save), bad);
}

TEST(Files, SaveThatCannotBeWrittenGoesBackToTheTurn) {
  SimWorld world;
  fs::create_directories(world.Data() / "quorble.sav");
  const SimRun run = world.Run(NamedGame({"shift a n n"}) + "key s\n");
  ASSERT_EQ(run.status, 3) << run.Dump();
  EXPECT_TRUE(
      HeardFrom(run, run.Find("key 83"),
                R"(key 83 | "s" | " The game could not be saved. " | " Ann player number  1" | )"
                R"(" Press R, to roll the dice ")"));
}

// The instruction text is copied once into the data folder: the current
// folder's first, else the one beside the samples, never over a copy that
// is there, and never from the program into the current folder.
TEST(Files, InstructionTextFromTheCurrentFolderElseTheProgramsOwn) {
  const std::string programs = SimWorld::Read(fs::path(QUORBLE_SAMPLES) / "quorble.txt");
  ASSERT_FALSE(programs.empty());
  struct Case {
    const char* inCwd;   // nullptr: none there
    const char* inData;  // nullptr: none there
    bool documents;
    std::string copy;  // what the data folder holds afterwards; "" for nothing
  };
  const Case kCases[] = {
      {nullptr, nullptr, true, programs}, {"own\nlast", nullptr, true, "own\r\nlast\r\n"},
      {"own\n", "kept", true, "kept"},    {nullptr, "kept", true, "kept"},
      {nullptr, nullptr, false, ""},
  };
  for (const Case& c : kCases) {
    SimWorld world;
    if (c.inCwd) SimWorld::Write(world.Cwd() / "quorble.txt", c.inCwd);
    if (c.inData) SimWorld::Write(world.Data() / "quorble.txt", c.inData);
    const SimRun run = world.Run("key n n\n", c.documents);
    ASSERT_EQ(run.status, 3) << run.Dump();
    const fs::path data = c.documents ? world.Data() : world.Cwd();
    EXPECT_EQ(SimWorld::Read(data / "quorble.txt"), c.copy)
        << (c.inCwd ? c.inCwd : "none in the current folder");
  }
}

TEST(Files, ClosedWindowLosesNoGame) {
  SimWorld world;
  SimWorld::Write(world.Cwd() / "lobbyhub.exe", "");
  const fs::path save = world.Data() / "quorble.sav", config = world.Data() / "quorble.cfg";
  const auto silentEnd = [](const SimRun& run) {
    const int close = run.Find("close");
    EXPECT_EQ(run.status, 0) << run.Dump();
    EXPECT_NE(close, -1);
    EXPECT_EQ(run.Find("speak", close), -1) << run.Dump();
    return close;
  };
  // Closed on the dice screen: the game as S would have saved it at this turn.
  const SimRun turn = world.Run(kAnnTwoTurns + "dice 4 4 4 4 4\nkey r b enter\nclose\n");
  silentEnd(turn);
  EXPECT_EQ(turn.Find("launch"), -1);
  EXPECT_EQ(SimWorld::Read(save), kSaveExample);
  EXPECT_EQ(SimWorld::Read(config), " 0 \r\n-2 \r\n");

  // Before the first turn nothing is written, and the saved game stays.
  SimWorld::Write(config, " 1 \r\n 3 \r\n");
  silentEnd(world.Run("close\n"));
  EXPECT_EQ(SimWorld::Read(save), kSaveExample);
  EXPECT_EQ(SimWorld::Read(config), " 1 \r\n 3 \r\n");
  fs::remove(save);
  fs::remove(config);
  silentEnd(world.Run("key n n enter 1 y shift a\nclose\n"));
  EXPECT_FALSE(fs::exists(save));
  EXPECT_FALSE(fs::exists(config));

  // At the end menu the game is over: it leaves as from the menu. A voice
  // changed in the last turn is kept; a rate is not.
  SimWorld::Write(save, SaveText(1, 1, {{"Ann", 0, 2, 1, ExampleCells(-1)}}));
  std::string last = Turn("6 6 6 6 6", 13);
  last.replace(last.find("r k"), 3, "r ctrl up enter f12 enter y k");
  const SimRun end = world.Run("key n n\n" + last + "close\n");
  const int close = silentEnd(end);
  EXPECT_NE(end.Find("launch lobbyhub.exe", close), -1);
  EXPECT_FALSE(fs::exists(save));
  EXPECT_EQ(SimWorld::Read(config), " 0 \r\n 1 \r\n");
  EXPECT_TRUE(fs::exists(world.Data() / "quorblelog.txt"));
}

}  // namespace
}  // namespace quorble::test

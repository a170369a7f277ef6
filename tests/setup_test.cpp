// The questions of start-up and the set-up of a new game, key by key, as a
// player hears them.
#include <gtest/gtest.h>

#include <algorithm>

#include "sim_runner.h"

namespace quorble::test {
namespace {

using Texts = std::vector<std::string>;

const std::string kAskIns = " Would you like to read the instructions? ";
const std::string kAskKeys = " Would you like to read the special key instructions? ";
const std::string kSelect = " Select which game you wish to play ";
const std::string kPress = " Press a number for the number of players ";
const std::string kAgain = " Lets try that again please. ";
const std::string kName1 = " Enter the name of player number  1";
const std::string kIs1 = " player number  1 is ";
const std::string kCorrect = " is this correct? ";
const std::string kRate = "to adjust the speech rate, use the arrow keys and then press enter";
const std::string kK = " kwor-bul ", kD = " double kwor-bul ", kT = " triple kwor-bul ";
const std::string kRoll = " Press R, to roll the dice ";
const std::string kRules = "RULES";  // stands for the whole instructions text

std::string Players(int n) {
  return " is  " + std::to_string(n) + " correct for the number of players? ";
}

// What is heard from the first text equal to `first` on.
Texts HeardFrom(const SimRun& run, const std::string& first) {
  Texts all = run.Spoken();
  auto at = std::find(all.begin(), all.end(), first);
  Texts heard(at, all.end());
  for (auto& text : heard) {
    if (text.rfind(" kwor-bul game instructions.", 0) == 0) text = kRules;
  }
  return heard;
}

Texts Flat(const std::vector<Texts>& groups) {
  Texts flat;
  for (const auto& group : groups) flat.insert(flat.end(), group.begin(), group.end());
  return flat;
}

TEST(Instructions, BothQuestionsTakeTheirKeys) {
  const Texts ask = {kAskIns, " yes "};
  const Texts toGame = {kAskKeys, " yes ", "n", kSelect, kK};
  const struct {
    const char* script;
    std::vector<Texts> heard;
  } cases[] = {
      {"key n n", {ask, {"n"}, toGame}},
      // A key pressed during the greeting answers nothing.
      {"after 3 key y\nkey n n", {ask, {"n"}, toGame}},
      {"key down enter n", {ask, {" no "}, toGame}},
      // Each reading is queued with the question behind it; Enter reads again.
      {"key enter y up enter n", {ask, {kRules}, ask, {"y", kRules}, ask, {" no "}, toGame}},
      // Unknown keys ask again at yes, without an echo; keypad point is N.
      {"key up a f1 esc kp1 kpdot n", {ask, {" no "}, ask, ask, ask, ask, {"n"}, toGame}},
      {"key ctrl enter n n", {ask, {kRate, "0"}, ask, {"n"}, toGame}},
      {"key f12 y n n", {ask, {" do you wish to use this voice? ", " no "}, ask, {"n"}, toGame}},
      {"key n enter n",
       {ask,
        {"n", kAskKeys, " yes ",
         " Special Key Instructions.  f1, repeat current prompt.  f2, repeat more information. "
         " f12, change voice.  escape key, exit game.  control key, change rate of speech. "},
        toGame}},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string(c.script) + "\n");
    EXPECT_EQ(HeardFrom(run, kAskIns), Flat(c.heard)) << c.script << "\n" << run.Dump();
  }
}

TEST(Instructions, TextIsOnePieceJoinedByBlanks) {
  SimWorld world;
  const SimRun run = world.Run("key enter\n");
  const Texts all = run.Spoken();
  const std::string text = all[std::find(all.begin(), all.end(), " yes ") - all.begin() + 1];
  EXPECT_EQ(text.find(" kwor-bul game instructions. The object of the game is to fill all"), 0u);
  for (const char* seam : {"score as you can.   The top part", "63 or above.   The following",
                           "  You get the total points of all", "large straight.  Chance is",
                           "each time.   The game continues"}) {
    EXPECT_NE(text.find(seam), std::string::npos) << seam;
  }
  EXPECT_TRUE(text.ends_with("scoring areas except for the extra kwor-bul.")) << text;
}

TEST(Keys, HeldBackKeysOnlyCutTheSpeech) {
  SimWorld world;
  const SimRun run = world.Run("key f3 comma n\n");
  std::string chain;
  for (int i = run.Find("key 114"); i < run.Find(kAskKeys); ++i) chain += run.lines[i].text + "|";
  EXPECT_EQ(chain,
            "key 114|speak purge|key 188|speak purge|key 78|speak purge|voice rate 5|speak purge|"
            "speak async \"n\"|voice rate 0|")
      << run.Dump();
}

// The variant chosen is what a saved game records on its third line.
TEST(SetUp, GameChoiceMovesWrapsAndFallsBack) {
  const struct {
    const char* keys;
    Texts heard;
    const char* variant;
  } cases[] = {
      {"enter", {kSelect, kK}, " 1 "},
      {"up enter", {kSelect, kK, kT}, " 3 "},
      {"down down down enter", {kSelect, kK, kD, kT, kK}, " 1 "},
      {"t up enter", {kSelect, kK, "t", kT, kD}, " 2 "},
      {"t y enter", {kSelect, kK, "t", kT, "y", kK}, " 1 "},
      {"d x enter", {kSelect, kK, "d", kD, "x", kSelect, kK}, " 1 "},
      {"d f1 up enter", {kSelect, kK, "d", kD, kSelect, kK, kT}, " 3 "},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string("key n n ") + c.keys + "\nkey 1 y enter enter y s\n");
    Texts heard = HeardFrom(run, kSelect);
    heard.resize(std::find(heard.begin(), heard.end(), kPress) - heard.begin());
    EXPECT_EQ(heard, c.heard) << c.keys << "\n" << run.Dump();
    const std::string save = SimWorld::Read(world.Data() / "quorble.sav");
    EXPECT_EQ(save.substr(0, 15), std::string(" 1 \r\n 1 \r\n") + c.variant + "\r\n") << c.keys;
  }
}

TEST(SetUp, NumberOfPlayersRefusesAndConfirms) {
  const struct {
    const char* keys;
    Texts heard;
  } cases[] = {
      {"0 a kp1 up 2 y",
       {kPress, "0", kAgain, kPress, "a", kAgain, kPress, "a", kAgain, kPress, "&", kAgain, kPress,
        "2", Players(2), " yes ", kName1}},
      {"f1 9 y", {kPress, kPress, "9", Players(9), " yes ", kName1}},
      // N is not echoed and starts over; an unknown key asks the question alone.
      {"3 n 3 up enter 3 x enter",
       {kPress, "3", Players(3), " yes ", kPress, "3", Players(3), " yes ", " no ", kPress, "3",
        Players(3), " yes ", "x", Players(3), " yes ", kName1}},
      {"5 ctrl enter y",
       {kPress, "5", Players(5), " yes ", kRate, "0", "", Players(5), " yes ", kName1}},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string("key n n enter ") + c.keys + "\n");
    EXPECT_EQ(HeardFrom(run, kPress), c.heard) << c.keys << "\n" << run.Dump();
  }
}

TEST(SetUp, NameEntryTypesWhatTheKeysGive) {
  const struct {
    const char* keys;
    Texts echoes;
    std::string name;
  } cases[] = {
      {"shift shift a b", {"A", "b"}, "Ab"},
      {"shift backspace a", {"a"}, "a"},
      {"backspace a b backspace c", {"a", "b", "b", "c"}, "ac"},
      {"a f1 shift f1 b", {"a", kName1, kName1, "B"}, "B"},
      {"esc pagedown space shift 1 kp1 f2", {"\x1b", "\"", " ", "1", "a", "q"}, "\x1b\" 1aq"},
      {"a ctrl up enter f3 comma b", {"a", kRate, "0", "1", "", "b"}, "ab"},
      {"", {}, ""},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string("key n n enter 1 y ") + c.keys + " enter\n");
    const Texts expected = Flat({{kName1}, c.echoes, {kIs1, c.name, kCorrect, " yes ", "stuck"}});
    Texts heard = HeardFrom(run, kName1);
    heard.push_back(run.Events().back());
    EXPECT_EQ(heard, expected) << c.keys << "\n" << run.Dump();
  }
}

TEST(SetUp, WrongNameIsTypedAgainBeforeAnyVoiceQuestion) {
  SimWorld world;
  const SimRun run = world.Run("key n n enter 1 y a enter n b enter x up enter c enter y\n");
  const Texts expected = Flat({
      {kName1, "a", kIs1, "a", kCorrect, " yes "},
      {"n", kName1, "b", kIs1, "b", kCorrect, " yes "},
      {"x", kIs1, "b", kCorrect, " yes ", " no "},
      {kName1, "c", kIs1, "c", kCorrect, " yes "},
      {"y", "c do you wish to use this voice? ", " no "},
  });
  EXPECT_EQ(HeardFrom(run, kName1), expected) << run.Dump();
  EXPECT_GT(run.Find("sound open quorble7.wav", 2), run.Find("speak async \"y\"")) << run.Dump();
}

// Each of these starts 0.2 s after the key that ended the step before.
TEST(SetUp, DelaysBetweenTheSteps) {
  SimWorld world;
  const SimRun run = world.Run(NewGameKeys(1));
  for (const auto& text : {kAskKeys, kSelect, kPress, kName1, kCorrect}) {
    int key = run.Find("\"" + text + "\"");
    ASSERT_GE(key, 0) << text;
    const double at = run.lines[key].time;
    while (run.lines[key].event != "key") --key;
    EXPECT_NEAR(at - run.lines[key].time, 0.2, 1e-9) << text;
  }
}

TEST(StartUp, SavedGameIsTakenUpAndATypedAheadKeyLosesItsLetter) {
  SimWorld world;
  ASSERT_EQ(world.Run(NewGameKeys(1) + "key s\n").status, 0);
  // R pressed while " getting saved game " is spoken reaches the roll
  // prompt as a key without a letter: the help, not a roll.
  const SimRun run = world.Run("key n n\nafter 0.5 key r\n");
  const Texts expected = Flat({
      {kAskKeys, " yes ", "n", " getting saved game ", "  player number  1", kRoll, ""},
      {" Press M to switch mode from dice to score board and back. ", " S to save game. "},
      {" escape key to exit the game. ", kRoll},
  });
  EXPECT_EQ(HeardFrom(run, kAskKeys), expected) << run.Dump();
  EXPECT_EQ(run.Find("quorble5.wav", run.Find("getting saved game")), -1);
}

}  // namespace
}  // namespace quorble::test

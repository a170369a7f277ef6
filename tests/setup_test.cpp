// Start-up and the set-up of a new game, key by key, as a player hears
// them, with their sounds and delays. Only the last key typed ahead stands
// in the latch, and timed waits run their full time whatever is typed.
#include <gtest/gtest.h>

#include <algorithm>

#include "game_script.h"

namespace quorble::test {
namespace {

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
const std::string kRules = "RULES";  // stands for the whole instructions text

std::string Players(int n) {
  return " is  " + std::to_string(n) + " correct for the number of players? ";
}

// Keys during a delay or a sample are latched and change nothing.
TEST(StartUp, GreetingInOrderWithItsDelays) {
  SimWorld world;
  const SimRun run = world.Run("after 0.2 key a\nafter 0.6 key b\n");
  ASSERT_EQ(run.status, 3) << run.Dump();
  EXPECT_EQ(
      Chain(run.Events()),
      "caption \" Quorble  By Tavi Orlund \" | "
      "sound open quorble7.wav | sound pos 0 | sound volume 0 | sound freq 22051 | sound loop | "
      "voice new | voice use 0 | voice rate 0 | voice volume 95 | speak \"\" | key 65 | "
      "sound stop | sound release | "
      "sound open quorble5.wav | sound pos 40000 | sound volume 0 | sound freq 22051 | "
      "sound play | key 66 | sound stop | sound release | "
      "sound open quorble0.wav | sound pos 0 | sound volume 0 | sound freq 22051 | "
      "sound play | sound stop | sound release | "
      "speak \" Version 2. By Tavi Orlund \" | "
      "speak async \" Would you like to read the instructions? \" | speak async \" yes \" | stuck")
      << run.Dump();
  // The filler sounds for half a second after the voice has loaded.
  const int filler = run.Find("sound stop");
  EXPECT_DOUBLE_EQ(run.lines[filler].time, 0.5);
  EXPECT_DOUBLE_EQ(run.lines[run.Find("quorble5.wav")].time, 0.7);
  // The start-up sound is the five-dice throw's sound data from byte 40000 on, at 22051 Hz.
  const int tail = run.Find("sound stop", filler + 1);
  const auto throwBytes = fs::file_size(fs::path(QUORBLE_SAMPLES) / "quorble5.wav") - 44;
  EXPECT_NEAR(run.lines[tail].time, 0.7 + static_cast<double>(throwBytes - 40000) / 44102.0, 0.001);
  EXPECT_NEAR(run.lines[run.Find("quorble0.wav")].time - run.lines[tail].time, 0.1, 1e-9);
  const int version = run.Find("Version 2");
  // 27 characters at 0.06 s, then 0.3 s before the question.
  EXPECT_NEAR(run.lines[version + 1].time - run.lines[version].time, 1.62 + 0.3, 1e-9);
}

TEST(StartUp, NoVoicesShowsTheBoxAndTouchesNoFile) {
  SimWorld world;
  SimWorld::Write(world.Data() / "quorble.cfg", " 2 \r\n 1 \r\n");
  SimWorld::Write(world.Data() / "quorble.sav", "kept");
  const SimRun run = world.Run("voices 0\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  EXPECT_NE(run.Find("msgbox \"Sorry but I couldn't find any voices to use\\x0dPlease contact "
                     "Tavi Orlund\""),
            -1);
  EXPECT_EQ(run.Find("speak async"), -1);
  EXPECT_EQ(run.Events().back(), "end");
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.cfg"), " 2 \r\n 1 \r\n");
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav"), "kept");
  EXPECT_EQ(std::distance(fs::directory_iterator(world.Cwd()), {}), 0);
}

// Two keys typed while " getting saved game " is spoken, when no pump
// runs: the first pump delivers both, only the later one stands, and
// without its letter, so the roll prompt gives its help. Had Esc stood,
// the leaving prompt would follow.
TEST(StartUp, LatchHoldsOnlyTheLastKeyTypedAhead) {
  SimWorld world;
  SimWorld::Write(world.Data() / "quorble.sav",
                  SaveText(1, 1, {{"Ann", 0, 0, 0, ExampleCells(-1)}}));
  const SimRun run = world.Run("key n n\nafter 0.3 key esc\nafter 0.1 key x\n");
  const int getting = run.Find("getting saved game");
  EXPECT_TRUE(HeardFrom(
      run, getting,
      R"(!" getting saved game " | " Ann player number  1" | " Press R, to roll the dice " | )"
      R"(key 27 | key 88 | "" | " Press M to switch mode from dice to score board and back. " | )"
      R"(" S to save game. " | " escape key to exit the game. " | " Press R, to roll the dice ")"));
  EXPECT_EQ(run.Events().back(), "stuck");
  EXPECT_EQ(run.Find("quorble5.wav", getting), -1) << "a saved game is taken up without a roll";
}

TEST(Instructions, BothQuestionsTakeTheirKeys) {
  const Texts ask = {kAskIns, " yes "};
  const Texts toGame = {kAskKeys, " yes ", "n", kSelect, kK};
  const struct {
    const char* script;
    std::vector<Texts> heard;
  } cases[] = {
      // A key pressed during the greeting answers nothing.
      {"after 3 key y\nkey n n", {ask, {"n"}, toGame}},
      // Each reading is queued with the question behind it; Enter reads again.
      {"key enter y up enter n", {ask, {kRules}, ask, {"y", kRules}, ask, {" no "}, toGame}},
      // Unknown keys ask again at yes, without an echo; keypad point is N.
      {"key up a f1 esc kp1 kpdot n", {ask, {" no "}, ask, ask, ask, ask, {"n"}, toGame}},
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
    Texts heard = run.Spoken(kAskIns);
    for (auto& text : heard) {
      if (text.starts_with(" kwor-bul game instructions.")) text = kRules;
    }
    EXPECT_EQ(heard, Flat(c.heard)) << c.script << "\n" << run.Dump();
  }
}

TEST(Instructions, TextIsOnePieceJoinedByBlanks) {
  SimWorld world;
  const SimRun run = world.Run("key enter\n");
  const std::string text = run.Spoken(" yes ").at(1);
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
  EXPECT_EQ(run.Between("key 114", kAskKeys),
            "key 114 | speak purge | key 188 | speak purge | key 78 | speak purge | voice rate 5 | "
            "speak purge | speak async \"n\" | voice rate 0")
      << run.Dump();
}

// The variant chosen is what a saved game records on its third line.
TEST(SetUp, GameChoiceMovesWrapsAndFallsBack) {
  const struct {
    const char* keys;
    Texts heard;
    const char* variant;
  } cases[] = {
      {"up enter", {kSelect, kK, kT}, " 3 "},
      {"down down down enter", {kSelect, kK, kD, kT, kK}, " 1 "},
      {"t y enter", {kSelect, kK, "t", kT, "y", kK}, " 1 "},
      {"d x enter", {kSelect, kK, "d", kD, "x", kSelect, kK}, " 1 "},
      {"d f1 up enter", {kSelect, kK, "d", kD, kSelect, kK, kT}, " 3 "},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string("key n n ") + c.keys + "\nkey 1 y enter enter y s\n");
    Texts heard = run.Spoken(kSelect);
    heard.erase(std::find(heard.begin(), heard.end(), kPress), heard.end());
    EXPECT_EQ(heard, c.heard) << c.keys << "\n" << run.Dump();
    EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav").substr(0, 15),
              std::string(" 1 \r\n 1 \r\n") + c.variant + "\r\n")
        << c.keys;
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
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run(std::string("key n n enter ") + c.keys + "\n");
    EXPECT_EQ(run.Spoken(kPress), c.heard) << c.keys << "\n" << run.Dump();
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
    Texts heard = run.Spoken(kName1);
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
  EXPECT_EQ(run.Spoken(kName1), expected) << run.Dump();
  EXPECT_GT(run.Find("sound open quorble7.wav", 2), run.Find("speak async \"y\"")) << run.Dump();
}

// Each of these starts 0.2 s after the key that ended the step before.
TEST(SetUp, DelaysBetweenTheSteps) {
  SimWorld world;
  const SimRun run = world.Run(NamedGame());
  for (const auto& text : {kAskKeys, kSelect, kPress, kName1, kCorrect}) {
    int key = run.Find("\"" + text + "\"");
    ASSERT_GE(key, 0) << text;
    const double at = run.lines[key].time;
    while (!run.lines[key].text.starts_with("key ")) --key;
    EXPECT_NEAR(at - run.lines[key].time, 0.2, 1e-9) << text;
  }
}

}  // namespace
}  // namespace quorble::test

// The rate and voice dialogues, the way out of the game, and the voice and
// rate that one run hands to the next.
#include <gtest/gtest.h>

#include "game_script.h"

namespace quorble::test {
namespace {

const std::string kVoiceA = "a do you wish to use this voice? ";
const std::string kThanks = " thank you for playing Kwor-bul, By Tavi Orlund ";
const std::string kSorry = "Sorry, but I could not find the Brindlesoft game menu program.";
// From the greeting to player 1's voice question, the name being "a".
const std::string kToVoiceA = "key n n enter 1 y a enter y\n";

Texts VoicesUsed(const SimRun& run, int from) {
  Texts used;
  for (int i = from; i < static_cast<int>(run.lines.size()); ++i) {
    if (run.lines[i].text.starts_with("voice use")) used.push_back(run.lines[i].text.substr(6));
  }
  return used;
}

TEST(VoiceDialog, RotationSkipsTheLastVoiceAndTheAnswerIsKept) {
  const struct {
    int voices;
    const char* keys;
    Texts used;  // the last is the head of the turn, with the voice kept
    const char* stored;
  } cases[] = {
      {4, "enter n enter enter y", {"use 1", "use 2", "use 0", "use 1", "use 1"}, " 1 \r\n 0 \r\n"},
      {3, "enter enter enter up enter", {"use 1", "use 0", "use 1", "use 1"}, " 1 \r\n 0 \r\n"},
      {1, "enter n y", {"use 0", "use 0", "use 0"}, " 0 \r\n 0 \r\n"},
  };
  for (const auto& c : cases) {
    SimWorld world;
    const SimRun run = world.Run("voices " + std::to_string(c.voices) + "\n" + kToVoiceA + "key " +
                                 c.keys + "\nkey esc y\n");
    EXPECT_EQ(VoicesUsed(run, run.Find(kVoiceA)), c.used) << c.keys << "\n" << run.Dump();
    EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.cfg"), c.stored) << c.keys;
  }
  // The filler is made ready before the question, and loops only while a
  // new voice loads; the question then comes in that voice.
  SimWorld world;
  const SimRun run = world.Run(kToVoiceA + "key enter\n");
  const Texts all = run.Events();
  EXPECT_EQ(Chain(Texts(all.end() - 18, all.end())),
            "speak purge | sound open quorble7.wav | sound pos 0 | sound volume 0 | sound pan 0 | "
            "sound freq 22051 | speak async \"a do you wish to use this voice? \" | "
            "speak async \" no \" | key 13 | speak purge | sound loop | voice new | voice use 1 | "
            "speak \" \" | sound stop | speak async \"a do you wish to use this voice? \" | "
            "speak async \" no \" | stuck")
      << run.Dump();
}

// With two voices F12 has no other voice to offer; with more, questions
// within questions stop at sixteen.
TEST(VoiceDialog, TwoVoicesAskNothingAndNestingStopsAtSixteen) {
  SimWorld world;
  const SimRun two = world.Run("voices 2\nkey f12 n n enter 1 y a enter y\n");
  EXPECT_EQ(two.Between("key 123", "key 78"),
            "key 123 | speak purge | speak async \" Would you like to read the instructions? \" | "
            "speak async \" yes \"")
      << two.Dump();
  EXPECT_EQ(two.Spoken("y").at(1), " a player number  1") << two.Dump();
  std::string script = "key";
  for (int i = 0; i < 20; ++i) script += " f12";
  for (int i = 0; i < 16; ++i) script += " y";
  const SimRun run = world.Run(script + " n n\n");
  EXPECT_EQ(Count(run, "sound open quorble7.wav"), 17) << run.Dump();
  EXPECT_NE(run.Find(" Select which game you wish to play "), -1) << run.Dump();
}

TEST(RateDialog, ArrowsChangeAndSpeakTheRate) {
  SimWorld world;
  const SimRun run = world.Run("key ctrl up down down a enter n n\n");
  // Arrows cut the old value; another key and Enter cut nothing.
  EXPECT_EQ(run.Between("key 17", "key 78"),
            "key 17 | speak purge | voice rate 0 | "
            "speak async \"to adjust the speech rate, use the arrow keys and then press enter\" | "
            "speak async \"0\" | "
            "key 38 | voice rate 1 | speak purge | speak async \"1\" | "
            "key 40 | voice rate 0 | speak purge | speak async \"0\" | "
            "key 40 | voice rate -1 | speak purge | speak async \"-1\" | "
            "key 65 | voice rate -1 | "
            "speak async \"to adjust the speech rate, use the arrow keys and then press enter\" | "
            "speak async \"-1\" | "
            "key 13 | speak async \" Would you like to read the instructions? \" | "
            "speak async \" yes \"")
      << run.Dump();
}

// Files in the current folder; the launcher is found there whatever its
// case, and started by the name it has there.
TEST(Leaving, TailWithAndWithoutALauncher) {
  const std::string thanks = "speak \"" + kThanks + "\" | sound release | ";
  const struct {
    const char* file;
    std::string tail;
  } cases[] = {
      {"lobbyhub.exe.old", thanks + "beep | beep | speak \"" + kSorry + "\" | end"},
      {"lobbyhub.exe", thanks + "launch lobbyhub.exe | end"},
      {"LobbyHub.EXE", thanks + "launch LobbyHub.EXE | end"},  // by its name on disk
  };
  for (const auto& c : cases) {
    SimWorld world;
    SimWorld::Write(world.Cwd() / c.file, "");
    const SimRun run = world.Run(NamedGame() + "key esc y\n");
    const int from = run.Find("speak \"" + kThanks);
    ASSERT_GE(from, 0) << run.Dump();
    const Texts all = run.Events();
    const std::string tail = Chain(Texts(all.begin() + from, all.end()));
    EXPECT_EQ(tail, c.tail) << run.Dump();
    if (tail.find("beep") == std::string::npos) continue;
    // Two beeps 0.1 s apart, the apology 0.1 s later, and 0.2 s after it the end.
    const auto at = [&](int i) { return run.lines[from + i].time; };
    EXPECT_NEAR(at(3) - at(2), 0.1, 1e-9);
    EXPECT_NEAR(at(4) - at(3), 0.1, 1e-9);
    EXPECT_NEAR(at(5) - at(4), 0.06 * static_cast<double>(kSorry.size()) + 0.2, 1e-9);
  }
}

TEST(Config, ReadFromBothFoldersTheDataFolderLast) {
  const struct {
    const char *cwd, *data;
    const char* greeting;
  } cases[] = {
      {" 1 \r\n 4 \r\n", nullptr, "voice use 1 | voice rate 4"},
      {" 1 \r\n 4 \r\n", " 2 \r\n-3 \r\n", "voice use 2 | voice rate -3"},
      {" 1 \r\n 4 \r\n", "garbage\r\n", "voice use 0 | voice rate 0"},
      {nullptr, " 3 \r\n 2 \r\n", "voice use 0 | voice rate 2"},  // three voices: 0 to 2
      {nullptr, "-1 \r\n 50 \r\n", "voice use 0 | voice rate 50"},
      {nullptr, " 2 \r\n", "voice use 2 | voice rate 0"},
      {nullptr, " x \r\n 7 \r\n", "voice use 0 | voice rate 7"},
  };
  for (const auto& c : cases) {
    SimWorld world;
    if (c.cwd) SimWorld::Write(world.Cwd() / "quorble.cfg", c.cwd);
    if (c.data) SimWorld::Write(world.Data() / "quorble.cfg", c.data);
    const SimRun run = world.Run("");
    EXPECT_EQ(run.Between("voice use", "voice volume"), c.greeting)
        << (c.cwd ? c.cwd : "-") << "|" << (c.data ? c.data : "-");
  }
}

// A data folder already there under another case is the one used.
TEST(Config, DataFolderFoundWhateverItsCase) {
  SimWorld world;
  SimWorld::Write(world.Data().parent_path() / "BrindleSoft" / "quorble.cfg", " 1 \r\n 4 \r\n");
  const SimRun run = world.Run("");
  EXPECT_EQ(run.Between("voice use", "voice volume"), "voice use 1 | voice rate 4");
  EXPECT_FALSE(fs::exists(world.Data()));
}

}  // namespace
}  // namespace quorble::test

// What keeps a saved game safe from a second copy of the game, from files
// planted or grown in the data folder, and from stale copies under another
// case.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <set>

#include "game_script.h"

namespace quorble::test {
namespace {

std::set<std::string> Listing(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

const std::string kAnn = SaveText(1, 1, {{"Ann", 0, 1, 2, std::vector<int>(14, -1)}});

TEST(Safety, SecondCopyOnTheSameDataFolderTouchesNothing) {
  SimWorld world;
  SimWorld::Write(world.Cwd() / "quorble.txt", "How to play\r\n");
  SimWorld::Write(world.Cwd() / "lobbyhub.exe", "");
  SimWorld::Write(world.Data() / "quorble.sav", kAnn);
  SimWorld::Write(world.Data() / "quorble.cfg", " 1 \r\n 2 \r\n");
  SimWorld::Write(world.Data() / "quorble.lock", "");
  const auto before = Listing(world.Data());
  {
    // The first copy, as far as the second can tell.
    const int held = ::open((world.Data() / "quorble.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);
    const SimRun second = world.Run("key n n s\n");
    ::close(held);
    EXPECT_EQ(second.status, 1) << second.Dump();
    EXPECT_NE(second.stderrText.find("Quorble is already running."), std::string::npos);
    EXPECT_NE(second.Find(R"(speak " Quorble is already running. ")"), -1) << second.Dump();
    EXPECT_EQ(second.Find("launch"), -1);
    EXPECT_EQ(second.Events().back(), "end");
  }
  EXPECT_EQ(Listing(world.Data()), before);
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav"), kAnn);
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.cfg"), " 1 \r\n 2 \r\n");
  // Once the first copy is gone, the game starts as ever.
  const SimRun next = world.Run("key n n s\n");
  EXPECT_EQ(next.status, 0) << next.Dump();
  EXPECT_TRUE(fs::exists(world.Data() / "quorble.txt"));
}

// A link planted under the old temporary name is never followed.
TEST(Safety, PlantedLinkIsNotFollowed) {
  SimWorld world;
  const fs::path outside = world.Root() / "outside";
  SimWorld::Write(outside, "precious");
  fs::create_directories(world.Data());
  fs::create_symlink(outside, world.Data() / "quorble.cfg");
  fs::create_symlink(outside, world.Data() / "quorblelog.txt");
  SimWorld::Write(world.Data() / "quorble.sav",
                  SaveText(1, 1, {{"Ann", 0, 2, 1, ExampleCells(-1)}}));
  // The last row scored ends the game: the log is appended to, the configuration written.
  const SimRun run = world.Run("key n n\n" + Turn("6 6 6 6 6", 13) + "key f1 esc\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  EXPECT_EQ(SimWorld::Read(outside), "precious");
  EXPECT_FALSE(fs::is_symlink(world.Data() / "quorble.cfg"));
}

// Nothing the game reads comes near 8 MiB: a bigger file is not read.
TEST(Safety, OversizedFilesAreNotRead) {
  SimWorld world;
  const std::string longName(2 * 1024 * 1024, 'x');
  const std::string save = SaveText(1, 1, {{longName, 0, 0, 0, std::vector<int>(14, -1)}});
  SimWorld::Write(world.Data() / "quorble.sav", save);
  SimWorld::Write(world.Data() / "quorble.cfg",
                  " 2 \r\n 4 \r\n" + std::string(2 * 1024 * 1024, ' '));
  const SimRun run = world.Run("key n n\n");
  EXPECT_EQ(run.status, 3);
  EXPECT_NE(run.Find("could not be read"), -1);
  EXPECT_EQ(run.Find("voice use 2"), -1) << "the configuration was read";
  EXPECT_EQ(SimWorld::Read(world.Data() / "quorble.sav.bad"), save);
}

// The game's files are found blind to case, and written over where found.
TEST(Safety, FilesUnderAnotherCaseAreWrittenOver) {
  SimWorld world;
  SimWorld::Write(world.Data() / "Quorble.Cfg", " 1 \r\n 3 \r\n");
  SimWorld::Write(world.Data() / "QuorbleLog.TXT", "old log\r\n");
  SimWorld::Write(world.Data() / "quorble.sav",
                  SaveText(1, 1, {{"Ann", 0, 2, 1, ExampleCells(-1)}}));
  const SimRun run = world.Run("key n n\n" + Turn("6 6 6 6 6", 13) + "key f1 esc\n");
  ASSERT_EQ(run.status, 0) << run.Dump();
  const auto names = Listing(world.Data());
  EXPECT_FALSE(names.count("quorble.cfg") || names.count("quorblelog.txt")) << "a copy beside";
  EXPECT_EQ(SimWorld::Read(world.Data() / "Quorble.Cfg"), " 2 \r\n 1 \r\n");
  EXPECT_NE(SimWorld::Read(world.Data() / "QuorbleLog.TXT").find("The winner is Ann!"),
            std::string::npos);
}

}  // namespace
}  // namespace quorble::test

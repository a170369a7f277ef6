// The game killed with SIGKILL at every call that changes a file: each file
// it keeps is then the old whole file or the new whole file, never a torn
// one, and the next start goes on as if nothing happened. The preloaded shim
// counts the calls and kills at the one chosen.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "game_script.h"

namespace quorble::test {
namespace {

using Contents = std::optional<std::string>;  // nothing: no file

const std::string kShim = std::string("LD_PRELOAD=") + QUORBLE_SHIM +
                          " ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0";

Contents ReadIf(const fs::path& path) {
  if (!fs::exists(path)) return std::nullopt;
  return SimWorld::Read(path);
}

std::string Show(const Contents& contents) { return contents ? *contents : "(no file)"; }

struct Scenario {
  const char* what;
  std::map<std::string, std::string> before;  // data folder's files at the start
  std::string script;
  std::vector<std::string> watched;  // names in the data folder
};

const std::string kHowTo = "How to play\r\n";
const std::string kOldConfig = " 1 \r\n 3 \r\n";
const std::vector<int> kEmpty(14, -1);

std::string AnnSave(const std::vector<int>& cells) {
  return SaveText(1, 1, {{"Ann", 0, 0, -2, cells}});
}

std::vector<Scenario> Scenarios() {
  const std::string nearEnd = AnnSave(ExampleCells(-1));
  const std::string finish = "key n n\n" + Turn("6 6 6 6 6", 13) + "key f1 esc\n";
  return {
      {"saved after a turn",
       {{"quorble.sav", AnnSave(kEmpty)}, {"quorble.cfg", kOldConfig}},
       "key n n\n" + Turn("1 1 1 2 2", 1) + "key s\n",
       {"quorble.sav", "quorble.cfg", "quorble.txt"}},
      {"a new game of two on three sheets, saved",
       {},
       NamedGame({"a", "b"}, "t") + "key s\n",
       {"quorble.sav", "quorble.cfg", "quorble.txt"}},
      {"finished and logged",
       {{"quorble.sav", nearEnd}, {"quorblelog.txt", "old log\r\n"}, {"quorble.cfg", kOldConfig}},
       finish,
       {"quorble.sav", "quorble.cfg", "quorblelog.txt"}},
      {"left without saving",
       {{"quorble.sav", AnnSave(kEmpty)}, {"quorble.cfg", kOldConfig}},
       "key n n esc y\n",
       {"quorble.sav", "quorble.cfg"}},
      {"window closed in a turn",
       {{"quorble.sav", AnnSave(kEmpty)}, {"quorble.cfg", kOldConfig}},
       "key n n\n" + Turn("1 1 1 2 2", 1) + "dice 4 4 4 4 4\nkey r\nclose\n",
       {"quorble.sav", "quorble.cfg"}},
      {"unreadable, set aside, a new game saved",
       {{"quorble.sav", " 0 \r\n"}, {"quorble.cfg", kOldConfig}},
       NamedGame({"a"}) + "key s\n",
       {"quorble.sav", "quorble.sav.bad", "quorble.cfg"}},
  };
}

class CrashWorld {
 public:
  explicit CrashWorld(const Scenario& scenario) : scenario_(scenario) {
    SimWorld::Write(world_.Cwd() / "quorble.txt", kHowTo);
    for (const auto& [name, bytes] : scenario.before) SimWorld::Write(world_.Data() / name, bytes);
    // The data folder is made by the game when it has no files yet.
    if (scenario.before.empty()) fs::create_directories(world_.Root() / "docs");
  }
  SimRun Run(const std::string& environment) {
    return world_.Run(scenario_.script, true, environment);
  }
  std::map<std::string, Contents> Watched() const {
    std::map<std::string, Contents> state;
    for (const auto& name : scenario_.watched) state[name] = ReadIf(world_.Data() / name);
    return state;
  }
  // The next start: whatever the game saved is taken up; a file it could
  // never read stays set aside or in place.
  void ExpectNextStartGoesOn(const Contents& oldSave, bool oldReadable) {
    const SimRun next = world_.Run("key n n\n");
    EXPECT_EQ(next.status, 3) << next.Dump();
    for (const auto& entry : fs::directory_iterator(world_.Data())) {
      EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos)
          << "left behind: " << entry.path();
    }
    if (oldReadable) {
      EXPECT_EQ(next.Find("could not be read"), -1) << next.Dump();
      return;
    }
    const bool kept = ReadIf(world_.Data() / "quorble.sav.bad") == oldSave ||
                      ReadIf(world_.Data() / "quorble.sav.bad.1") == oldSave;
    EXPECT_TRUE(kept);
  }

 private:
  const Scenario& scenario_;
  SimWorld world_;
};

// The number of file-changing calls of an undisturbed run, and what the
// watched files hold before and after it.
struct Reference {
  long calls = 0;
  std::map<std::string, Contents> before, after;
};

Reference Undisturbed(const Scenario& scenario) {
  CrashWorld world(scenario);
  Reference reference;
  reference.before = world.Watched();
  const fs::path log = fs::temp_directory_path() / ("quorble-shim-" + std::to_string(getpid()));
  fs::remove(log);
  const SimRun run = world.Run(kShim + " QUORBLE_SHIM_LOG=" + log.string());
  EXPECT_EQ(run.status, 0) << run.Dump();
  std::istringstream lines(SimWorld::Read(log));
  for (std::string line; std::getline(lines, line);) ++reference.calls;
  fs::remove(log);
  reference.after = world.Watched();
  return reference;
}

bool Readable(const Scenario& scenario) {
  return std::find(scenario.watched.begin(), scenario.watched.end(), "quorble.sav.bad") ==
         scenario.watched.end();
}

// Old or new, whole; a log may also be new without its winner line yet.
void ExpectWhole(const Reference& reference, const std::map<std::string, Contents>& now) {
  for (const auto& [name, contents] : now) {
    const Contents& before = reference.before.at(name);
    const Contents& after = reference.after.at(name);
    bool whole = contents == before || contents == after;
    if (!whole && contents && after && name != "quorble.sav") {
      const auto winner = after->find("The winner is");
      whole = winner != std::string::npos && *contents == after->substr(0, winner);
    }
    // A file set aside leaves no file behind until the new game is saved.
    if (!whole && name == "quorble.sav" && !contents) {
      whole = reference.before.count("quorble.sav.bad") != 0;
    }
    EXPECT_TRUE(whole) << name << " holds:\n" << Show(contents);
  }
}

TEST(Crash, KilledAtEveryFileChangeLosesNothing) {
  long points = 0;
  for (const Scenario& scenario : Scenarios()) {
    SCOPED_TRACE(scenario.what);
    const Reference reference = Undisturbed(scenario);
    ASSERT_GT(reference.calls, 3);
    // Just before each call, and once all are done (at = calls + 1).
    for (long at = 1; at <= reference.calls + 1; ++at, ++points) {
      SCOPED_TRACE("killed before call " + std::to_string(at));
      CrashWorld world(scenario);
      const SimRun run = world.Run(kShim + " QUORBLE_KILL_AT=" + std::to_string(at));
      if (at <= reference.calls) {
        EXPECT_NE(run.status, 0) << "not killed";
      }
      ExpectWhole(reference, world.Watched());
      world.ExpectNextStartGoesOn(reference.before.at("quorble.sav"), Readable(scenario));
    }
  }
  std::printf("%ld kill points\n", points);
  EXPECT_GE(points, 100);
}

// Data reach the disk before the rename that publishes them, and every
// change of a folder's entries is synced before the game goes on: what the
// game has announced survives a power cut.
TEST(Crash, EveryChangeIsSyncedBeforeTheNext) {
  for (const Scenario& scenario : Scenarios()) {
    SCOPED_TRACE(scenario.what);
    CrashWorld world(scenario);
    const fs::path log = fs::temp_directory_path() / ("quorble-sync-" + std::to_string(getpid()));
    fs::remove(log);
    world.Run(kShim + " QUORBLE_SHIM_LOG=" + log.string());
    std::istringstream lines(SimWorld::Read(log));
    fs::remove(log);
    std::string unsyncedData, unsyncedEntry;
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string number, call, what;
      words >> number >> call >> what;
      if (call == "write" && what == "file") unsyncedData = line;
      if (call == "fsync" && what == "file") unsyncedData.clear();
      if (call == "fsync" && what == "folder") unsyncedEntry.clear();
      if (call == "rename" || call == "unlink" || call == "mkdir" || call == "open") {
        EXPECT_EQ(unsyncedData, "") << "before " << line;
        EXPECT_EQ(unsyncedEntry, "") << "before " << line;
      }
      if (call == "rename" || call == "unlink" || call == "mkdir") unsyncedEntry = line;
    }
    EXPECT_EQ(unsyncedData, "") << "at the end";
    EXPECT_EQ(unsyncedEntry, "") << "at the end";
  }
}

}  // namespace
}  // namespace quorble::test

// The pure parts of the desktop platform's shell and speech settings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/shell.h"

namespace quorble::desktop {
namespace {

TEST(DocumentsFolderTest, FindsTheFolderNamedInUserDirs) {
  const std::pair<const char*, const char*> kCases[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", "/home/ana/Documents"},
      {"# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
       "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\nXDG_MUSIC_DIR=\"$HOME/Music\"\n",
       "/home/ana/Dokumente"},
      {"XDG_DOCUMENTS_DIR=\"/srv/papers\"\n", "/srv/papers"},
      {"  XDG_DOCUMENTS_DIR=\"$HOME/Docs/\"  \r\n", "/home/ana/Docs"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", ""},  // home itself means none
      {"XDG_DOCUMENTS_DIR=\"Documents\"\n", ""},
      {"# XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", ""},
      {"XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n", ""},
  };
  for (const auto& [file, documents] : kCases) {
    EXPECT_EQ(DocumentsFolderIn(file, "/home/ana"), documents) << file;
  }
}

namespace fs = std::filesystem;

// A fresh folder, removed with everything in it at the end of the test.
class Scratch {
 public:
  Scratch() {
    std::string name = (fs::temp_directory_path() / "quorble-shell.XXXXXX").string();
    root_ = mkdtemp(name.data());
  }
  ~Scratch() {
    std::error_code ec;
    fs::remove_all(root_, ec);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  std::string Path(const std::string& relative) const { return (root_ / relative).string(); }
  void Make(const std::string& relative, const std::string& content = "") const {
    const fs::path path = root_ / relative;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
  }
  void MakeFolder(const std::string& relative) const { fs::create_directories(root_ / relative); }

 private:
  fs::path root_;
};

TEST(ProgramFolderTest, FindsTheSamplesBesideTheBinaryElseInTheInstallTree) {
  struct Case {
    std::string binary;                // the executable's folder
    std::vector<std::string> samples;  // folders that hold the samples
    std::string found;
  };
  const Case kCases[] = {
      {"build", {"build", "share/games/quorble"}, "build"},
      {"usr/games", {"usr/share/games/quorble"}, "usr/share/games/quorble"},
      {"usr/games", {"usr/share/quorble"}, "usr/share/quorble"},
      {"usr/games", {"usr/share/games/quorble", "usr/share/quorble"}, "usr/share/games/quorble"},
      {"usr/games", {"compiled-in"}, "compiled-in"},
      {"usr/games", {}, "usr/games"},  // none anywhere: the game plays silence
  };
  for (const Case& c : kCases) {
    Scratch scratch;
    scratch.MakeFolder(c.binary);
    for (const auto& folder : c.samples) scratch.Make(folder + "/quorble7.wav");
    EXPECT_EQ(ProgramFolderFor(scratch.Path(c.binary), scratch.Path("compiled-in")),
              scratch.Path(c.found))
        << c.binary << " with samples in " << testing::PrintToString(c.samples);
  }
}

// Sets an environment variable for one scope and puts the old value back.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    setenv(name, value.c_str(), 1);
  }
  ~ScopedVariable() {
    if (old_) {
      setenv(name_, old_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(DocumentsFolderTest, FollowsUserDirsElseDocumentsElseTheHomeFolder) {
  struct Case {
    const char* userDirs;  // nullptr: no such file
    std::vector<std::string> folders;
    const char* found;  // under the scratch folder; nullptr for none at all
  };
  const Case kCases[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", {"home/Papers", "home/Documents"}, "home/Papers"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", {"home/Documents"}, "home/Documents"},  // not made
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", {"home"}, "home"},
      {nullptr, {"home/Documents"}, "home/Documents"},
      {nullptr, {"home"}, "home"},
      {nullptr, {}, nullptr},  // no home folder at all
  };
  for (const Case& c : kCases) {
    Scratch scratch;
    for (const auto& folder : c.folders) scratch.MakeFolder(folder);
    if (c.userDirs != nullptr) scratch.Make("config/user-dirs.dirs", c.userDirs);
    ScopedVariable home("HOME", scratch.Path("home"));
    ScopedVariable config("XDG_CONFIG_HOME", scratch.Path("config"));
    EXPECT_EQ(UserDocumentsFolder(), c.found ? scratch.Path(c.found) : std::string())
        << (c.userDirs ? c.userDirs : "no user-dirs.dirs");
  }
}

}  // namespace
}  // namespace quorble::desktop

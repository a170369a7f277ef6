// Runs scripts through quorble-sim in a fresh folder of its own and gives
// the transcript back in the pieces tests look at.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorble::test {

struct Line {
  double time;
  std::string event;  // "speak", "sound", "key", ...
  std::string rest;   // what follows the event word
  std::string text;   // the whole line without its time
};

struct SimRun {
  int status = -1;
  std::vector<Line> lines;
  std::string stderrText;

  // The texts spoken, synchronous and queued alike, in order.
  std::vector<std::string> Spoken() const;
  // Every line without its time, in order.
  std::vector<std::string> Events() const;
  // Index of the first line at or after `from` whose text contains `part`;
  // -1 when there is none.
  int Find(const std::string& part, int from = 0) const;
  std::string Dump() const;
};

// A temporary home for one test: docs/ is the documents folder and cwd/
// the current folder. Removed at the end of the test.
class SimWorld {
 public:
  SimWorld();
  ~SimWorld();
  SimWorld(const SimWorld&) = delete;
  SimWorld& operator=(const SimWorld&) = delete;

  SimRun Run(const std::string& script, bool withDocs = true) const;
  std::filesystem::path Docs() const { return root_ / "docs"; }
  std::filesystem::path Data() const { return root_ / "docs" / "brindlesoft"; }
  std::filesystem::path Cwd() const { return root_ / "cwd"; }
  static std::string Read(const std::filesystem::path& path);
  static void Write(const std::filesystem::path& path, const std::string& bytes);

 private:
  std::filesystem::path root_;
};

// The keys and lines that take a new game from the greeting to the first
// player's roll prompt: instructions declined, the variant, players named
// with their default name answers, voices kept.
std::string NewGameKeys(int players, const std::string& variantKey = "enter");

}  // namespace quorble::test

// Scenario tests' tools: quorble-sim run on a script in a fresh folder of
// its own, its transcript in the pieces tests look at, builders for whole
// games (forced dice and the keys that score them, saved games as the game
// writes them), and a short way to write what is heard.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorble::test {

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

// Texts joined by " | ".
inline std::string Chain(const Texts& texts) {
  std::string chain;
  for (const auto& text : texts) chain += (chain.empty() ? "" : " | ") + text;
  return chain;
}

// Groups of texts one after the other.
inline Texts Flat(const std::vector<Texts>& groups) {
  Texts flat;
  for (const auto& group : groups) flat.insert(flat.end(), group.begin(), group.end());
  return flat;
}

// The text between the quotes of a transcript line, unescaped.
inline std::string Unquote(const std::string& line) {
  const auto open = line.find('"');
  if (open == std::string::npos) return {};
  std::string text;
  for (size_t i = open + 1; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] != '\\') {
      text += line[i];
    } else if (line[i + 1] == 'x') {
      text += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16));
      i += 3;
    } else {
      text += line[++i];
    }
  }
  return text;
}

struct SimRun {
  struct Line {
    double time;
    std::string text;  // the whole line without its time
  };
  // Lines are found by int positions, -1 for none, so they are indexed by
  // int; a position off the transcript throws rather than reads past it.
  struct Lines : std::vector<Line> {
    const Line& operator[](int i) const { return at(static_cast<size_t>(i)); }
  };
  int status = -1;
  Lines lines;
  std::string stderrText;

  // The texts spoken, synchronous and queued alike, in order; with `first`,
  // from the first text equal to it on.
  Texts Spoken(const std::string& first = "") const {
    Texts spoken;
    for (const auto& line : lines) {
      if (!line.text.starts_with("speak ") || line.text == "speak purge") continue;
      const std::string text = Unquote(line.text);
      if (!spoken.empty() || first.empty() || text == first) spoken.push_back(text);
    }
    return spoken;
  }

  // Every line without its time, in order.
  Texts Events() const {
    Texts events;
    for (const auto& line : lines) events.push_back(line.text);
    return events;
  }

  // Index of the first line at or after `from` whose text contains `part`;
  // -1 when there is none.
  int Find(const std::string& part, int from = 0) const {
    for (int i = std::max(from, 0); i < static_cast<int>(lines.size()); ++i) {
      if (lines[i].text.find(part) != std::string::npos) return i;
    }
    return -1;
  }

  // The lines from the first that contains `from` up to the next that
  // contains `to`, joined by " | "; empty when either is missing.
  std::string Between(const std::string& from, const std::string& to) const {
    const int begin = Find(from), end = Find(to, begin + 1);
    if (begin < 0 || end < 0) return {};
    const Texts all = Events();
    return Chain(Texts(all.begin() + begin, all.begin() + end));
  }

  std::string Dump() const {
    std::ostringstream out;
    out << "status " << status << "\n";
    for (const auto& line : lines) out << line.time << " " << line.text << "\n";
    return out.str() + stderrText;
  }
};

// A temporary home for one test: docs/ is the documents folder and cwd/
// the current folder. Removed at the end of the test.
class SimWorld {
 public:
  SimWorld() {
    std::string pattern = (fs::temp_directory_path() / "quorble-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    fs::create_directories(root_ / "docs");
    fs::create_directories(Cwd());
  }
  ~SimWorld() {
    std::error_code ec;
    fs::remove_all(root_, ec);
  }
  SimWorld(const SimWorld&) = delete;
  SimWorld& operator=(const SimWorld&) = delete;

  fs::path Root() const { return root_; }
  fs::path Data() const { return root_ / "docs" / "brindlesoft"; }
  fs::path Cwd() const { return root_ / "cwd"; }

  static std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
  }

  static void Write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
  }

  // Without `documents` the user has no documents folder. `environment`
  // goes in front of the command, as "NAME=value ...", and `options` on the
  // command line behind the test's own.
  SimRun Run(const std::string& script, bool documents = true, const std::string& environment = "",
             const std::string& options = "") const {
    Write(root_ / "script", script);
    const auto quoted = [](const fs::path& path) { return " '" + path.string() + "'"; };
    const fs::path docs = documents ? root_ / "docs" : fs::path();
    const std::string command = environment + " " + QUORBLE_SIM + " --samples" +
                                quoted(QUORBLE_SAMPLES) + " --cwd" + quoted(Cwd()) + " --docs" +
                                quoted(docs) + " " + options + quoted(root_ / "script") + " >" +
                                quoted(root_ / "out") + " 2>" + quoted(root_ / "err");
    SimRun run;
    const int raw = std::system(command.c_str());
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.stderrText = Read(root_ / "err");
    KeepTranscript(Read(root_ / "out"));
    std::istringstream transcript(Read(root_ / "out"));
    for (std::string text; std::getline(transcript, text);) {
      const auto blank = text.find(' ');
      run.lines.push_back({std::stod(text.substr(0, blank)), text.substr(blank + 1)});
    }
    return run;
  }

  SimRun Run(const std::string& script, const std::string& options) const {
    return Run(script, true, "", options);
  }
  // A literal would be taken for the documents flag.
  SimRun Run(const std::string& script, const char* options) const = delete;

 private:
  // With QUORBLE_TRANSCRIPT_DIR set, every transcript is kept there, one file
  // per run named by its test, so two builds' behaviour can be diffed whole.
  static void KeepTranscript(const std::string& transcript) {
    const char* dir = std::getenv("QUORBLE_TRANSCRIPT_DIR");
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (dir == nullptr || *dir == '\0' || test == nullptr) return;
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    std::replace(name.begin(), name.end(), '/', '_');
    for (int n = 1;; ++n) {
      const fs::path path = fs::path(dir) / (name + "." + std::to_string(n) + ".txt");
      if (!fs::exists(path)) return Write(path, transcript);
    }
  }

  fs::path root_;
};

// A new game up to the first roll prompt, instructions declined, players
// named by typed keys such as "shift a n n" (by default one without a
// name), voices kept.
inline std::string NamedGame(const std::vector<std::string>& names = {""},
                             const std::string& variant = "") {
  std::string keys = "key n n " + variant + " enter " + std::to_string(names.size()) + " y\n";
  for (const auto& name : names) keys += "key " + name + " enter enter y\n";
  return keys;
}

// One turn: the first roll shows `dice`, K keeps them, and the score goes to
// `row` of `sheet`. Sheet 3 is reached by Left from sheet 1.
inline std::string Turn(const std::string& dice, int row, int sheet = 1) {
  const char* const toSheet[] = {"", "", " right", " left"};
  std::string keys = "dice " + dice + "\nkey r k" + toSheet[sheet];
  for (int i = 1; i < row; ++i) keys += " down";
  return keys + " enter enter\n";
}

// Dice worth 3, 6, 9, 12, 15, 18, 20, 22, 25, 30, 40, 21 and 50 on rows 1 to 13.
inline const std::vector<std::string> kRowDice = {
    "1 1 1 2 2", "2 2 2 1 1", "3 3 3 1 1", "4 4 4 1 1", "5 5 5 1 1", "6 6 6 1 1", "4 4 4 6 2",
    "5 5 5 5 2", "2 2 3 3 3", "1 2 3 4 6", "1 2 3 4 5", "6 5 4 3 3", "6 6 6 6 6"};

inline std::string FillSheet(int sheet = 1) {
  std::string keys;
  int row = 0;
  for (const auto& dice : kRowDice) keys += Turn(dice, ++row, sheet);
  return keys;
}

// The scores of kRowDice on rows 1 to 12, `quorble` on row 13, `extra` on 14.
inline std::vector<int> ExampleCells(int quorble, int extra = -1) {
  return {3, 6, 9, 12, 15, 18, 20, 22, 25, 30, 40, 21, quorble, extra};
}

struct SavedPlayer {
  std::string name;
  int fin = 0, pv = 0, pr = 0;
  std::vector<int> cells;  // 14 for each sheet, sheet 1 first
};

inline std::string SaveText(int pup, int g2p, const std::vector<SavedPlayer>& players) {
  auto line = [](int n) { return (n < 0 ? "" : " ") + std::to_string(n) + " \r\n"; };
  int nfin = 0;
  for (const auto& p : players) nfin += p.fin;
  std::string text = line(static_cast<int>(players.size())) + line(pup) + line(g2p) + line(nfin);
  for (const auto& p : players) {
    text += p.name + "\r\n" + line(p.fin) + line(p.pv) + line(p.pr);
    for (int cell : p.cells) text += line(cell);
  }
  return text;
}

inline std::string TimeMark(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "+%.3f ", seconds);
  return text;
}

// What is heard, written as items split by " | ": "text" is queued speech,
// !"text" speech that waits, DICE 1 2 - 4 5 the dice read out ("-" for a die
// without a value, and the letters 0.2 s behind " dice "), anything else a
// transcript event. An item may start with its time from the first line, as
// in "+0.200 beep".
inline std::vector<std::string> Expand(const std::string& items) {
  std::vector<std::string> out;
  for (size_t at = 0; at <= items.size();) {
    size_t end = items.find(" | ", at);
    if (end == std::string::npos) end = items.size();
    std::string item = items.substr(at, end - at), time;
    at = end + 3;
    double seconds = -1;
    if (item.starts_with("+")) {
      seconds = std::stod(item.substr(1));
      time = item.substr(0, item.find(' ') + 1);
      item = item.substr(time.size());
    }
    if (item.starts_with("DICE")) {
      out.push_back(time + "speak async \" dice \"");
      const std::string letters = seconds < 0 ? "" : TimeMark(seconds + 0.2);
      for (size_t i = 0; i < 5; ++i) {
        out.push_back(letters + "speak async \" " + static_cast<char>('A' + i) + ". equals \"");
        const char face = item[5 + 2 * i];
        if (face != '-') out.push_back(letters + "speak async \" " + face + "\"");
      }
      continue;
    }
    if (item.starts_with("\"")) item = "speak async " + item;
    if (item.starts_with("!\"")) item = "speak " + item.substr(1);
    out.push_back(time + item);
  }
  return out;
}

// Whether what is heard from line `from` on (keys, speech, samples and
// beeps) begins with `items`; with times when the first item has one.
inline ::testing::AssertionResult HeardFrom(const SimRun& run, int from, const std::string& items) {
  if (from < 0) return ::testing::AssertionFailure() << "no such line";
  const auto want = Expand(items);
  const bool timed = items.starts_with("+");
  std::vector<std::string> got;
  for (int i = from; i < static_cast<int>(run.lines.size()) && got.size() < want.size(); ++i) {
    const std::string& text = run.lines[i].text;
    if (text.starts_with("key") || text == "beep" || text == "sound stop" ||
        text.starts_with("sound open") || (text.starts_with("speak") && text != "speak purge")) {
      got.push_back((timed ? TimeMark(run.lines[i].time - run.lines[from].time) : "") + text);
    }
  }
  if (got == want) return ::testing::AssertionSuccess();
  auto failure = ::testing::AssertionFailure() << "from line " << from << ", heard:";
  for (const auto& line : got) failure << "\n  " << line;
  return failure;
}

// The lines that hold `part`, counted from line `from`.
inline int Count(const SimRun& run, const std::string& part, int from = 0) {
  int n = 0;
  for (int at = run.Find(part, from); at >= 0; at = run.Find(part, at + 1)) ++n;
  return n;
}

}  // namespace quorble::test

// Fuzzes the readers of the saved game and the configuration by running
// the whole game over them. The first byte picks the file (even: saved
// game, odd: configuration); the rest is its content. What must hold:
// - a saved game that isn't taken up is set aside byte for byte, and the
//   player is told;
// - every value taken up lies in the range the game can work with, and
//   its sums can be formed (the sanitizers catch an overflow);
// - a game taken up and saved again is saved the same way the next time;
// - a configuration never selects a voice the engine lacks.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "fuzz/memory_platform.h"
#include "gamestate.h"
#include "scoresheet.h"

namespace quorble::fuzz {
namespace {

constexpr int kVoices = 3;
const std::string kData = "/docs/brindlesoft";
// The whole transcript line, so that a name holding the words can't pass for it.
const std::string kUnreadable =
    " speak \" The saved game could not be read. A new game begins. \"\n";

// Ann on one sheet at rate -2: what the configuration runs take up.
const std::string kPlainSave =
    " 1 \r\n 1 \r\n 1 \r\n 0 \r\nAnn\r\n 0 \r\n 0 \r\n-2 \r\n 3 \r\n-1 \r\n-1 \r\n-1 \r\n"
    "-1 \r\n-1 \r\n-1 \r\n-1 \r\n 25 \r\n-1 \r\n-1 \r\n-1 \r\n-1 \r\n-1 \r\n";

[[noreturn]] void Fail(const char* what, const std::string& detail = {}) {
  std::fprintf(stderr, "oracle failed: %s\n%s\n", what, detail.c_str());
  std::abort();
}

void Check(bool holds, const char* what, const std::string& detail = {}) {
  if (!holds) Fail(what, detail);
}

struct Outcome {
  MemoryPlatform::Files files;
  std::string transcript;
  bool stuck = false;
};

sim::Script Keys() {
  sim::Script script;
  script.voices = kVoices;
  // Instructions no, special keys no, then S at the roll prompt of a game
  // taken up; a new game runs out of keys at its first question.
  for (int code : {'N', 'N'}) script.presses.push_back(sim::Press{.code = code});
  // Each computer turn before a person's roll prompt may take one S to hurry
  // it; nine players at most leave eight of them.
  for (int turn = 0; turn < kMaxPlayers; ++turn) script.presses.push_back(sim::Press{.code = 'S'});
  return script;
}

void CheckState(const Form1& form) {
  Check(form.nop >= 1 && form.nop <= 9, "players");
  Check(form.pup >= 1 && form.pup <= form.nop, "player up");
  Check(form.g2p >= 1 && form.g2p <= kSheets, "sheets");
  // Computer players left alone play a game out to its end.
  Check(form.nfin >= 0 && form.nfin <= form.nop, "finished count");
  Check(form.nfin == form.nop || form.fin[form.pup] == 0, "player up has finished");
  for (int i = 1; i <= form.nop; ++i) {
    Check(form.pv[i] >= 0 && form.pv[i] < kVoices, "voice");
    // A player is finished exactly when rows 1 to 13 are full on every
    // sheet; else the rows left can never be scored, or the game can't end.
    bool full = true;
    for (int s = 1; s <= form.g2p; ++s) {
      for (int row = 1; row < kRows; ++row) full = full && form.sheet[i][row][s] >= 0;
    }
    Check(full == (form.fin[i] == 1), "finished and full board disagree");
    for (int s = 1; s <= form.g2p; ++s) {
      for (int row = 1; row <= kRows; ++row) Check(form.sheet[i][row][s] >= -1, "cell");
      // What the log and the end of the game add up; an overflow on the
      // way is the sanitizers' to catch.
      const SheetSums sums = SumSheet(form.sheet[i], s);
      Check(sums.total > -100 && sums.total < 1000000, "a board no game can reach");
    }
  }
}

Outcome Run(const std::string& save, const std::string* config, bool checkState) {
  std::ostringstream transcript;
  MemoryPlatform platform(Keys(), sim::Folders{"/docs", "/cwd", "/nowhere"}, transcript);
  platform.folders.insert(kData);
  platform.files[kData + "/quorble.sav"] = save;
  if (config) platform.files[kData + "/quorble.cfg"] = *config;
  Outcome outcome;
  try {
    Form1 form(platform);
    form.Form_Load();
    if (checkState) CheckState(form);
  } catch (const sim::Stuck&) {
    outcome.stuck = true;
  }
  outcome.files = platform.files;
  outcome.transcript = transcript.str();
  return outcome;
}

void SavedGame(const std::string& input) {
  const Outcome first = Run(input, nullptr, true);
  const bool refused = first.transcript.find(kUnreadable) != std::string::npos;
  const auto setAside = first.files.find(kData + "/quorble.sav.bad");
  if (refused) {
    Check(setAside != first.files.end() && setAside->second == input, "set aside byte for byte");
    Check(!first.files.count(kData + "/quorble.sav"), "refused file left in place");
    return;
  }
  Check(setAside == first.files.end(), "set aside without a word");
  Check(!first.stuck, "a game taken up never reached its roll prompt", first.transcript);
  const auto saved = first.files.find(kData + "/quorble.sav");
  if (saved == first.files.end()) {
    // Only a game the computers played out to its end leaves no save.
    Check(first.files.count(kData + "/quorblelog.txt") == 1, "saved game gone", first.transcript);
    return;
  }
  const std::string written = saved->second;
  const Outcome second = Run(written, nullptr, true);
  Check(second.transcript.find(kUnreadable) == std::string::npos, "own file refused", written);
  Check(second.files.at(kData + "/quorble.sav") == written, "write, read, write differs", written);
}

void Configuration(const std::string& input) {
  const Outcome run = Run(kPlainSave, &input, false);
  Check(!run.stuck, "configuration stopped the game");
  // The first voice chosen is the configuration's.
  const auto at = run.transcript.find("voice use ");
  Check(at != std::string::npos, "no voice chosen");
  const int voice = std::atoi(run.transcript.c_str() + at + 10);
  Check(voice >= 0 && voice < kVoices, "voice beyond the engine's", run.transcript);
}

}  // namespace
}  // namespace quorble::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string content(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] % 2 == 0) {
    quorble::fuzz::SavedGame(content);
  } else {
    quorble::fuzz::Configuration(content);
  }
  return 0;
}

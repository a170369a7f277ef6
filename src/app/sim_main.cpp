// quorble-sim: runs the whole game on the simulated platform and prints
// what a player would have heard and the game asked of the machine.
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <vector>

#include "app/companion_option.h"
#include "app/options.h"
#include "gamestate.h"
#include "platform/common/disk.h"
#include "platform/sim/sim_platform.h"

namespace {

constexpr int kEnded = 0;
constexpr int kFailed = 1;
constexpr int kBadUsage = 2;
constexpr int kStuck = 3;

struct Options {
  quorble::sim::Folders folders;
  std::string script;
  quorble::Settings settings;
};

const std::vector<quorble::app::OptionEntry> kOptionTable = {
    {.name = "--docs", .valueName = "DIR", .help = "the user's documents folder"},
    {.name = "--cwd", .valueName = "DIR", .help = "the process's current folder"},
    {.name = "--samples", .valueName = "DIR", .help = "the folder of the sound samples"},
    quorble::app::CompanionOption(""),
};

// The simulator reads no environment: a run depends on its command line and
// script alone.
const char* NoEnvironment(const char*) { return nullptr; }

bool ParseCommandLine(int argc, char** argv, Options& options) {
  quorble::app::ParseError error;
  const auto parsed = quorble::app::ParseOptions(
      kOptionTable, std::vector<std::string>(argv + 1, argv + argc), NoEnvironment, error);
  if (!parsed || parsed->positional.size() != 1) return false;
  std::string strengthError;
  const auto companion = quorble::app::CompanionFrom(*parsed, strengthError);
  if (!companion) {
    std::cerr << "quorble-sim: " << strengthError << '\n';
    return false;
  }
  options.settings.companion = *companion;
  options.folders.docs = parsed->Value("--docs");
  options.folders.cwd = parsed->Value("--cwd", quorble::disk::CurrentDirectory());
  options.folders.samples = parsed->Value("--samples", quorble::disk::ExecutableFolder());
  options.script = parsed->positional.front();
  return true;
}

// The script from its file, or from standard input for "-"; nothing, and
// the reason said, when it can't be read.
std::optional<quorble::sim::Script> ReadScript(const std::string& path) {
  try {
    std::ifstream file;
    if (path != "-") {
      file.open(path);
      if (!file) throw std::runtime_error("can't read " + path);
    }
    return quorble::sim::ParseScript(path == "-" ? std::cin : file);
  } catch (const std::exception& error) {
    std::cerr << "quorble-sim: " << error.what() << '\n';
    return std::nullopt;
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!ParseCommandLine(argc, argv, options)) {
    std::cerr << "usage: quorble-sim [--docs DIR] [--cwd DIR] [--samples DIR] "
                 "[--companion[=casual]] SCRIPT\n";
    return kBadUsage;
  }
  auto script = ReadScript(options.script);
  if (!script) return kBadUsage;
  std::ostringstream transcript;
  int status = kEnded;
  {
    quorble::sim::SimPlatform platform(std::move(*script), options.folders, transcript);
    try {
      bool refused = false;
      {
        quorble::Form1 form(platform, options.settings);
        form.Form_Load();
        refused = form.alreadyRunning();
      }
      platform.Record("end");
      if (refused) {
        std::cerr << quorble::kAlreadyRunning << '\n';
        status = kFailed;
      }
    } catch (const quorble::sim::Stuck&) {
      status = kStuck;
    } catch (const std::exception& error) {
      std::cerr << "quorble-sim: " << error.what() << '\n';
      status = kFailed;
    }
  }
  std::cout << transcript.str() << std::flush;
  return status;
}

// quorble-sim: runs the whole game on the simulated platform and prints
// what a player would have heard and the game asked of the machine.
#include <fstream>
#include <iostream>
#include <sstream>

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
};

bool ParseOptions(int argc, char** argv, Options& options) {
  options.folders.cwd = quorble::disk::CurrentDirectory();
  options.folders.samples = quorble::disk::ExecutableFolder();
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool takesValue = arg == "--docs" || arg == "--cwd" || arg == "--samples";
    if (takesValue && i + 1 < argc) {
      std::string& field = arg == "--docs"  ? options.folders.docs
                           : arg == "--cwd" ? options.folders.cwd
                                            : options.folders.samples;
      field = argv[++i];
    } else if (takesValue || (arg.size() > 1 && arg[0] == '-') || !options.script.empty()) {
      return false;
    } else {
      options.script = arg;
    }
  }
  return !options.script.empty();
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!ParseOptions(argc, argv, options)) {
    std::cerr << "usage: quorble-sim [--docs DIR] [--cwd DIR] [--samples DIR] SCRIPT\n";
    return kBadUsage;
  }
  quorble::sim::Script script;
  try {
    std::ifstream file;
    if (options.script != "-") {
      file.open(options.script);
      if (!file) throw std::runtime_error("can't read " + options.script);
    }
    script = quorble::sim::ParseScript(options.script == "-" ? std::cin : file);
  } catch (const std::exception& error) {
    std::cerr << "quorble-sim: " << error.what() << '\n';
    return kBadUsage;
  }
  std::ostringstream transcript;
  int status = kEnded;
  {
    quorble::sim::SimPlatform platform(std::move(script), options.folders, transcript);
    try {
      {
        quorble::Form1 form(platform);
        form.Form_Load();
      }
      platform.Record("end");
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

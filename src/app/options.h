// The command line of the game and the simulator: a small table of options,
// each of which may also come from an environment variable, so a desktop
// entry or a launcher can set what a terminal user types.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorble::app {

struct OptionEntry {
  std::string name = {};       // "--speech"
  std::string envVar = {};     // "QUORBLE_SPEECH"; empty when the option has none
  std::string valueName = {};  // "NAME" when the option takes "=NAME"; empty for a flag
  bool valueOptional = false;  // "--companion" and "--companion=casual" both allowed
  std::string help = {};       // one line for --help
};

// What a command line said. A flag that was given holds an empty string
// unless a value came with it. The command line wins over the environment.
struct ParsedOptions {
  std::map<std::string, std::string> values;  // by option name
  std::vector<std::string> positional;
  bool Has(const std::string& name) const { return values.count(name) != 0; }
  std::string Value(const std::string& name, const std::string& fallback = "") const;
};

struct ParseError {
  std::string message;  // one line, without the program's name
};

// Reads `--name`, `--name=value` and, for options that take a value,
// `--name value`. `getenv` is injected for tests.
std::optional<ParsedOptions> ParseOptions(const std::vector<OptionEntry>& entries,
                                          const std::vector<std::string>& args,
                                          const std::function<const char*(const char*)>& getenv,
                                          ParseError& error);

// The option list for --help, one option a line.
std::string OptionHelp(const std::vector<OptionEntry>& entries);

}  // namespace quorble::app

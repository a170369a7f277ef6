// The command line both programs share: what each spelling of an option
// gives, where the environment stands, and the help text.
#include "app/options.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace quorble::app {
namespace {

const std::vector<OptionEntry> kEntries = {
    {.name = "--help", .help = "print this help and exit"},
    {.name = "--docs", .valueName = "DIR", .help = "the documents folder"},
    {.name = "--mode", .envVar = "Q_MODE", .valueName = "NAME", .help = "how to play"},
    {.name = "--extra",
     .envVar = "Q_EXTRA",
     .valueName = "KIND",
     .valueOptional = true,
     .help = "an extra player"},
    {.name = "--loud", .envVar = "Q_LOUD", .help = "louder"},
};

struct Case {
  std::vector<std::string> args;
  std::map<std::string, std::string> environment;
  std::map<std::string, std::string> values;  // or, when failing, {{"error", message}}
  std::vector<std::string> positional = {};
};

std::optional<ParsedOptions> Parse(const Case& c, ParseError& error) {
  auto getenv = [&c](const char* name) -> const char* {
    const auto found = c.environment.find(name);
    return found == c.environment.end() ? nullptr : found->second.c_str();
  };
  return ParseOptions(kEntries, c.args, getenv, error);
}

TEST(OptionsTest, ReadsEverySpellingAndPutsTheCommandLineBeforeTheEnvironment) {
  const Case kCases[] = {
      {{}, {}, {}},
      {{"--help"}, {}, {{"--help", ""}}},
      {{"--docs=/tmp/d"}, {}, {{"--docs", "/tmp/d"}}},
      {{"--docs", "/tmp/d", "script"}, {}, {{"--docs", "/tmp/d"}}, {"script"}},
      {{"-", "--docs="}, {}, {{"--docs", ""}}, {"-"}},
      {{"--extra"}, {}, {{"--extra", ""}}},
      {{"--extra=casual"}, {}, {{"--extra", "casual"}}},
      {{"--extra", "casual"}, {}, {{"--extra", ""}}, {"casual"}},
      {{},
       {{"Q_MODE", "fast"}, {"Q_EXTRA", "1"}, {"Q_LOUD", "yes"}},
       {{"--mode", "fast"}, {"--extra", ""}, {"--loud", ""}}},
      {{}, {{"Q_EXTRA", "casual"}}, {{"--extra", "casual"}}},
      {{}, {{"Q_EXTRA", "0"}, {"Q_LOUD", "0"}, {"Q_MODE", ""}}, {}},
      {{"--mode=slow"}, {{"Q_MODE", "fast"}}, {{"--mode", "slow"}}},
      {{"--nope"}, {}, {{"error", "unknown option '--nope'"}}},
      {{"--nope=3"}, {}, {{"error", "unknown option '--nope'"}}},
      {{"-h"}, {}, {{"error", "unknown option '-h'"}}},
      {{"--help=1"}, {}, {{"error", "option '--help' takes no value"}}},
      {{"--docs"}, {}, {{"error", "option '--docs' needs a value"}}},
  };
  for (const Case& c : kCases) {
    std::string shown;
    for (const auto& arg : c.args) shown += arg + " ";
    ParseError error;
    const auto parsed = Parse(c, error);
    if (c.values.count("error") != 0) {
      EXPECT_FALSE(parsed) << shown;
      EXPECT_EQ(error.message, c.values.at("error")) << shown;
      continue;
    }
    ASSERT_TRUE(parsed) << shown << error.message;
    EXPECT_EQ(parsed->values, c.values) << shown;
    EXPECT_EQ(parsed->positional, c.positional) << shown;
  }
}

TEST(OptionsTest, HelpListsEachOptionWithItsValueAndVariableInOneColumn) {
  EXPECT_EQ(OptionHelp(kEntries),
            "  --help                  print this help and exit\n"
            "  --docs=DIR              the documents folder\n"
            "  --mode=NAME             how to play (also Q_MODE)\n"
            "  --extra[=KIND]          an extra player (also Q_EXTRA)\n"
            "  --loud                  louder (also Q_LOUD)\n");
  EXPECT_EQ(OptionHelp({{.name = "--a-very-long-option-name", .valueName = "VALUE", .help = "h"}}),
            "  --a-very-long-option-name=VALUE  h\n");
}

}  // namespace
}  // namespace quorble::app

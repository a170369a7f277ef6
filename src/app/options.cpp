#include "app/options.h"

namespace quorble::app {

std::string ParsedOptions::Value(const std::string& name, const std::string& fallback) const {
  const auto found = values.find(name);
  return found == values.end() || found->second.empty() ? fallback : found->second;
}

namespace {

const OptionSpec* FindSpec(const std::vector<OptionSpec>& specs, const std::string& name) {
  for (const auto& spec : specs) {
    if (spec.name == name) return &spec;
  }
  return nullptr;
}

// An environment variable set to "0" or "" leaves a flag off.
void ReadEnvironment(const std::vector<OptionSpec>& specs,
                     const std::function<const char*(const char*)>& getenv, ParsedOptions& parsed) {
  for (const auto& spec : specs) {
    if (spec.envVar.empty()) continue;
    const char* value = getenv(spec.envVar.c_str());
    if (value == nullptr || *value == '\0') continue;
    const std::string text = value;
    if (spec.valueName.empty() || spec.valueOptional) {
      if (text == "0") continue;
      parsed.values[spec.name] = text == "1" || spec.valueName.empty() ? "" : text;
    } else {
      parsed.values[spec.name] = text;
    }
  }
}

}  // namespace

std::optional<ParsedOptions> ParseOptions(const std::vector<OptionSpec>& specs,
                                          const std::vector<std::string>& args,
                                          const std::function<const char*(const char*)>& getenv,
                                          ParseError& error) {
  ParsedOptions parsed;
  ReadEnvironment(specs, getenv, parsed);
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg.size() < 2 || arg[0] != '-' || arg == "-") {
      parsed.positional.push_back(arg);
      continue;
    }
    const auto equals = arg.find('=');
    const std::string name = arg.substr(0, equals);
    const OptionSpec* spec = FindSpec(specs, name);
    if (spec == nullptr) {
      error.message = "unknown option '" + name + "'";
      return std::nullopt;
    }
    if (equals != std::string::npos) {
      if (spec->valueName.empty()) {
        error.message = "option '" + name + "' takes no value";
        return std::nullopt;
      }
      parsed.values[name] = arg.substr(equals + 1);
    } else if (!spec->valueName.empty() && !spec->valueOptional) {
      if (i + 1 >= args.size()) {
        error.message = "option '" + name + "' needs a value";
        return std::nullopt;
      }
      parsed.values[name] = args[++i];
    } else {
      parsed.values[name] = "";
    }
  }
  return parsed;
}

std::string OptionHelp(const std::vector<OptionSpec>& specs) {
  std::string text;
  for (const auto& spec : specs) {
    std::string left = "  " + spec.name;
    if (!spec.valueName.empty()) {
      left += spec.valueOptional ? "[=" + spec.valueName + "]" : "=" + spec.valueName;
    }
    if (left.size() < 26)
      left.resize(26, ' ');
    else
      left += "  ";
    text += left + spec.help;
    if (!spec.envVar.empty()) text += " (also " + spec.envVar + ")";
    text += "\n";
  }
  return text;
}

}  // namespace quorble::app

#include "app/options.h"

namespace quorble::app {

std::string ParsedOptions::Value(const std::string& name, const std::string& fallback) const {
  const auto found = values.find(name);
  return found == values.end() || found->second.empty() ? fallback : found->second;
}

namespace {

const OptionEntry* FindEntry(const std::vector<OptionEntry>& entries, const std::string& name) {
  for (const auto& entry : entries) {
    if (entry.name == name) return &entry;
  }
  return nullptr;
}

// An environment variable set to "0" or "" leaves a flag off.
void ReadEnvironment(const std::vector<OptionEntry>& entries,
                     const std::function<const char*(const char*)>& getenv, ParsedOptions& parsed) {
  for (const auto& entry : entries) {
    if (entry.envVar.empty()) continue;
    const char* value = getenv(entry.envVar.c_str());
    if (value == nullptr || *value == '\0') continue;
    const std::string text = value;
    if (entry.valueName.empty() || entry.valueOptional) {
      if (text == "0") continue;
      parsed.values[entry.name] = text == "1" || entry.valueName.empty() ? "" : text;
    } else {
      parsed.values[entry.name] = text;
    }
  }
}

}  // namespace

std::optional<ParsedOptions> ParseOptions(const std::vector<OptionEntry>& entries,
                                          const std::vector<std::string>& args,
                                          const std::function<const char*(const char*)>& getenv,
                                          ParseError& error) {
  ParsedOptions parsed;
  ReadEnvironment(entries, getenv, parsed);
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg.size() < 2 || arg[0] != '-' || arg == "-") {
      parsed.positional.push_back(arg);
      continue;
    }
    const auto equals = arg.find('=');
    const std::string name = arg.substr(0, equals);
    const OptionEntry* entry = FindEntry(entries, name);
    if (entry == nullptr) {
      error.message = "unknown option '" + name + "'";
      return std::nullopt;
    }
    if (equals != std::string::npos) {
      if (entry->valueName.empty()) {
        error.message = "option '" + name + "' takes no value";
        return std::nullopt;
      }
      parsed.values[name] = arg.substr(equals + 1);
    } else if (!entry->valueName.empty() && !entry->valueOptional) {
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

std::string OptionHelp(const std::vector<OptionEntry>& entries) {
  std::string text;
  for (const auto& entry : entries) {
    std::string left = "  " + entry.name;
    if (!entry.valueName.empty()) {
      left += entry.valueOptional ? "[=" + entry.valueName + "]" : "=" + entry.valueName;
    }
    if (left.size() < 26)
      left.resize(26, ' ');
    else
      left += "  ";
    text += left + entry.help;
    if (!entry.envVar.empty()) text += " (also " + entry.envVar + ")";
    text += "\n";
  }
  return text;
}

}  // namespace quorble::app

#include "platform/sim/script.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>
#include <stdexcept>

#include "keys.h"
#include "lower_case.h"

namespace quorble::sim {
namespace {

const std::map<std::string, int>& NamedKeys() {
  static const std::map<std::string, int> keys = {
      {"backspace", keys::kBackspace.code},
      {"tab", keys::kTab.code},
      {"enter", keys::kEnter.code},
      {"shift", keys::kShift.code},
      {"ctrl", keys::kCtrl.code},
      {"alt", keys::kAlt.code},
      {"pause", keys::kPause.code},
      {"capslock", keys::kCapsLock.code},
      {"esc", keys::kEsc.code},
      {"space", keys::kSpace.code},
      {"pageup", keys::kPageUp.code},
      {"pagedown", keys::kPageDown.code},
      {"end", keys::kEnd.code},
      {"home", keys::kHome.code},
      {"left", keys::kLeft.code},
      {"up", keys::kUp.code},
      {"right", keys::kRight.code},
      {"down", keys::kDown.code},
      {"insert", keys::kInsert.code},
      {"delete", keys::kDelete.code},
      {"kpmul", keys::kKeypadMultiply.code},
      {"kpplus", keys::kKeypadPlus.code},
      {"kpminus", keys::kKeypadMinus.code},
      {"kpdot", keys::kKeypadDecimal.code},
      {"kpdiv", keys::kKeypadDivide.code},
      {"semicolon", keys::kSemicolon.code},
      {"equals", keys::kEquals.code},
      {"comma", keys::kComma.code},
      {"minus", keys::kMinus.code},
      {"period", keys::kPeriod.code},
      {"slash", keys::kSlash.code},
      {"grave", keys::kGrave.code},
  };
  return keys;
}

bool ParseWhole(const std::string& text, int low, int high, int& value) {
  if (text.empty() || text.size() > 9) return false;
  if (!std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); })) {
    return false;
  }
  value = std::stoi(text);
  return value >= low && value <= high;
}

// "kp7", "f12": a key of a numbered family, or 0.
int NumberedKey(const std::string& name, const std::string& prefix, int low, int high, int base) {
  int n = 0;
  if (name.rfind(prefix, 0) != 0 || !ParseWhole(name.substr(prefix.size()), low, high, n)) return 0;
  return base + n;
}

class Parser {
 public:
  explicit Parser(Script& script) : script_(script) {}

  void Line(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    if (!(words >> command) || command[0] == '#') return;
    command = Lower(command);
    std::vector<std::string> args;
    for (std::string word; words >> word;) args.push_back(word);
    if (command == "voices") return Voices(args);
    if (command == "date") return SetDate(args);
    if (command == "clock") return SetClock(args);
    if (command == "dice") return Dice(args);
    if (command == "key") return Keys(args);
    if (command == "after") return After(args);
    if (command == "close" && args.empty()) return script_.presses.push_back(Press{true});
    throw std::runtime_error("unknown command '" + command + "'");
  }

 private:
  void BeforeFirstKey(const char* what) const {
    if (!script_.presses.empty())
      throw std::runtime_error(std::string(what) + " only before the first key");
  }

  void Voices(const std::vector<std::string>& args) {
    BeforeFirstKey("voices");
    if (args.size() != 1 || !ParseWhole(args[0], 0, 20, script_.voices)) {
      throw std::runtime_error("voices takes a number from 0 to 20");
    }
  }

  void SetDate(const std::vector<std::string>& args) {
    BeforeFirstKey("date");
    Date d;
    if (args.size() != 1 || args[0].size() != 10 || args[0][4] != '-' || args[0][7] != '-' ||
        !ParseWhole(args[0].substr(0, 4), 1, 9999, d.year) ||
        !ParseWhole(args[0].substr(5, 2), 1, 12, d.month) ||
        !ParseWhole(args[0].substr(8, 2), 1, 31, d.day)) {
      throw std::runtime_error("date takes YYYY-MM-DD");
    }
    script_.date = d;
  }

  void SetClock(const std::vector<std::string>& args) {
    BeforeFirstKey("clock");
    int h = 0, m = 0, s = 0;
    if (args.size() != 1 || args[0].size() != 8 || args[0][2] != ':' || args[0][5] != ':' ||
        !ParseWhole(args[0].substr(0, 2), 0, 23, h) ||
        !ParseWhole(args[0].substr(3, 2), 0, 59, m) ||
        !ParseWhole(args[0].substr(6, 2), 0, 59, s)) {
      throw std::runtime_error("clock takes HH:MM:SS");
    }
    script_.clockSeconds = h * 3600 + m * 60 + s;
  }

  void Dice(const std::vector<std::string>& args) {
    if (args.empty()) throw std::runtime_error("dice takes faces 1 to 6");
    for (const auto& face : args) {
      int value = 0;
      if (!ParseWhole(face, 1, 6, value)) throw std::runtime_error("dice takes faces 1 to 6");
      script_.dice.push_back(value);
    }
  }

  static int Code(const std::string& name) {
    const int code = KeyCode(name);
    if (code == 0) throw std::runtime_error("unknown key '" + name + "'");
    return code;
  }

  void Keys(const std::vector<std::string>& args) {
    if (args.empty()) throw std::runtime_error("key takes one or more keys");
    for (const auto& name : args) script_.presses.push_back(Press{false, false, 0, Code(name)});
  }

  void After(const std::vector<std::string>& args) {
    if (args.size() != 3 || Lower(args[1]) != "key")
      throw std::runtime_error("after takes S key K");
    char* end = nullptr;
    const double seconds = std::strtod(args[0].c_str(), &end);
    if (end != args[0].c_str() + args[0].size() || !(seconds >= 0) || seconds > 1e6) {
      throw std::runtime_error("after takes a number of seconds");
    }
    script_.presses.push_back(Press{false, true, seconds, Code(args[2])});
  }

  Script& script_;
};

}  // namespace

int KeyCode(const std::string& rawName) {
  const std::string name = Lower(rawName);
  if (name.size() == 1 && name[0] >= 'a' && name[0] <= 'z') return 'A' + (name[0] - 'a');
  if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') return name[0];
  if (auto it = NamedKeys().find(name); it != NamedKeys().end()) return it->second;
  if (name.rfind("vk:", 0) == 0) {
    int code = 0;
    return ParseWhole(name.substr(3), 1, 254, code) ? code : 0;
  }
  if (int code = NumberedKey(name, "kp", 0, 9, keys::kKeypad0.code)) return code;
  return NumberedKey(name, "f", 1, 12, keys::kF1.code - 1);
}

Script ParseScript(std::istream& in) {
  Script script;
  Parser parser(script);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    try {
      parser.Line(line);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
    }
  }
  return script;
}

}  // namespace quorble::sim

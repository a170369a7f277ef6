// The simulator's script: what the platform reports and the keys pressed.
#pragma once

#include <deque>
#include <istream>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace quorble::sim {

struct Press {
  bool close = false;  // a close request rather than a key
  bool after = false;  // pressed `delay` seconds after the previous press
  double delay = 0;
  int code = 0;
};

struct Script {
  int voices = 3;
  Date date{2026, 1, 1};
  int clockSeconds = 12 * 3600;
  std::deque<int> dice;
  std::vector<Press> presses;
};

// Throws std::runtime_error with the line and the reason on a bad script.
Script ParseScript(std::istream& in);

// The key code of a key name, or 0 when the name is unknown.
int KeyCode(const std::string& name);

}  // namespace quorble::sim

// The companion mode's option, the same in the game and the simulator.
#pragma once

#include <optional>
#include <string>

#include "app/options.h"
#include "gamestate.h"

namespace quorble::app {

// `envVar` empty for a program that reads no environment.
OptionEntry CompanionOption(const std::string& envVar);

// The mode the parsed options ask for; nothing, with `error` set, for a
// strength the game doesn't have.
std::optional<Companion> CompanionFrom(const ParsedOptions& parsed, std::string& error);

}  // namespace quorble::app

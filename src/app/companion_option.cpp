#include "app/companion_option.h"

namespace quorble::app {

namespace {
constexpr char kName[] = "--companion";
}

OptionEntry CompanionOption(const std::string& envVar) {
  return {.name = kName,
          .envVar = envVar,
          .valueName = "casual",
          .valueOptional = true,
          .help = "play with computer players, hint F5, totals F6"};
}

std::optional<Companion> CompanionFrom(const ParsedOptions& parsed, std::string& error) {
  if (!parsed.Has(kName)) return Companion::Off;
  const std::string strength = parsed.Value(kName, "optimal");
  if (strength == "optimal") return Companion::Optimal;
  if (strength == "casual") return Companion::Casual;
  error = "unknown companion strength '" + strength + "' (optimal or casual)";
  return std::nullopt;
}

}  // namespace quorble::app

// The game in a web browser. The page hands over its address's parameters
// as options ("?companion=casual" as "--companion=casual"), read through
// the same table as the desktop's command line.
#include <string>
#include <vector>

#include "app/companion_option.h"
#include "app/options.h"
#include "gamestate.h"
#include "platform/web/page_bridge.h"
#include "platform/web/web_platform.h"

namespace {

const std::vector<quorble::app::OptionEntry> kOptionTable = {
    {.name = "--speech",
     .valueName = "ENGINE",
     .help = "espeak (built in, the default) or system (the browser's own voices)"},
    quorble::app::CompanionOption(""),
};

// An address may carry parameters a host or a link added: only ours count.
std::vector<std::string> OurOptions(int argc, char** argv) {
  std::vector<std::string> ours;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const std::string name = arg.substr(0, arg.find('='));
    for (const auto& entry : kOptionTable) {
      if (entry.name == name) ours.push_back(arg);
    }
  }
  return ours;
}

const char* NoEnvironment(const char*) { return nullptr; }

// The page shows the reason where the game would have been.
int Refuse(const std::string& reason) {
  quorble_message(("Quorble can't start: " + reason).c_str());
  quorble_ended();
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  quorble::app::ParseError error;
  const auto options =
      quorble::app::ParseOptions(kOptionTable, OurOptions(argc, argv), NoEnvironment, error);
  if (!options) return Refuse(error.message);
  const std::string speech = options->Value("--speech", "espeak");
  if (speech != "espeak" && speech != "system") {
    return Refuse("no speech engine '" + speech + "'; espeak or system");
  }
  quorble::Settings settings;
  const auto companion = quorble::app::CompanionFrom(*options, error.message);
  if (!companion) return Refuse(error.message);
  settings.companion = *companion;
  {
    quorble::web::WebPlatform platform(speech == "system");
    quorble::Form1 form(platform, settings);
    form.Form_Load();
  }
  quorble_ended();
  return 0;
}

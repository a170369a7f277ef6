// The game on a Linux desktop.
#include <SDL.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "app/companion_option.h"
#include "app/options.h"
#include "gamestate.h"
#include "platform/desktop/desktop_platform.h"
#include "platform/desktop/mixer.h"
#include "platform/desktop/signals.h"
#include "platform/desktop/speech_espeak.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

constexpr std::string_view kNoDisplay =
    "no display to open a window on; start the game from a desktop session";
// Long enough for the sentence, short enough that a script waiting on us
// is not kept waiting.
constexpr auto kLongestNotice = std::chrono::milliseconds(4000);
constexpr int kNoticeWordsPerMinute = 200;

const std::vector<quorble::app::OptionEntry> kOptionTable = {
    {.name = "--help", .help = "print this help and exit"},
    {.name = "--version", .help = "print the version and exit"},
    {.name = "--speech",
     .envVar = "QUORBLE_SPEECH",
     .valueName = "ENGINE",
     .help = "espeak (built in, the default) or dispatcher"},
    quorble::app::CompanionOption("QUORBLE_COMPANION"),
};

// Enough to start playing from a terminal; the manual has the rest.
constexpr std::string_view kKeySummary =
    "\n"
    "Keys (every prompt is spoken; keep the game's window focused):\n"
    "  any question   Y or N, or Up/Down and Enter; F1 repeats it;\n"
    "                 Ctrl speech rate, F12 voice\n"
    "  roll prompt    R roll, M score board, S save and leave, Escape leave\n"
    "  dice screen    Up/Down or A to E pick a die, Enter marks it to roll again,\n"
    "                 U unmarks all, R rolls the marked dice, K keeps them all,\n"
    "                 S says them\n"
    "  score board    Up/Down rows, Left/Right sheets, Enter scores, M says the dice\n"
    "  end of game    F1 scores, F2 the whole scoring, M boards, other keys end\n"
    "  companion      F5 hint, F6 running totals\n"
    "\n"
    "The rules, every key and the game's files: man 6 quorble\n";

std::string Usage() {
  return "Usage: quorble [OPTION]...\n"
         "Quorble, a dice game played wholly by ear.\n"
         "\n"
         "Options:\n" +
         quorble::app::OptionHelp(kOptionTable);
}

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// Says `text` through the speech engine when there is a sound device to
// hear it on, and waits for it within kLongestNotice.
void SayAloud(const std::string& text) {
  const auto deadline = std::chrono::steady_clock::now() + kLongestNotice;
  auto mixer = std::make_shared<quorble::desktop::Mixer>([] {});
  if (!mixer->HasDevice()) return;
  quorble::desktop::SpeechEngine speech(mixer, false);
  if (speech.VoiceCount() == 0) return;
  speech.Queue({.text = text, .wordsPerMinute = kNoticeWordsPerMinute});
  while (speech.Speaking() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

int NoDisplay() {
  std::fprintf(stderr, "quorble: %s\n", std::string(kNoDisplay).c_str());
  SayAloud("Quorble: " + std::string(kNoDisplay));
  return kFailed;
}

class SdlSession {
 public:
  SdlSession() {
    // Our own signal thread turns the signals into SDL_QUIT.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "1");
    ok_ = SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) == 0;
  }
  ~SdlSession() {
    if (!abandoned_) SDL_Quit();
  }
  SdlSession(const SdlSession&) = delete;
  SdlSession& operator=(const SdlSession&) = delete;
  bool ok() const { return ok_; }
  // With the X connection lost, SDL's shutdown would wait on it for ever.
  void Abandon() { abandoned_ = true; }

 private:
  bool ok_ = false;
  bool abandoned_ = false;
};

// Without a desktop session SDL falls back to drivers whose window nobody
// can see or type into; a driver the user chose is taken at their word.
bool OnDesktopDriver() {
  const std::string_view driver = SDL_GetCurrentVideoDriver() ? SDL_GetCurrentVideoDriver() : "";
  return driver == "x11" || driver == "wayland";
}

int Play(quorble::desktop::SpeechBackend speech, const quorble::Settings& settings) {
  quorble::desktop::AskSoundServerLatency();  // sets the environment: before any thread
  quorble::desktop::QuitOnSignals signals;    // before any other thread starts
  const bool driverChosen = IsSet("SDL_VIDEODRIVER");
  if (!driverChosen && !IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return NoDisplay();
  {
    SdlSession sdl;
    if (sdl.ok() && (driverChosen || OnDesktopDriver())) {
      try {
        quorble::desktop::DesktopPlatform platform(speech);
        quorble::Form1 form(platform, settings);
        form.Form_Load();
        if (platform.DisplayLost()) sdl.Abandon();
        if (form.alreadyRunning()) {
          std::fprintf(stderr, "%s\n", quorble::kAlreadyRunning);
          return kFailed;
        }
        return platform.HasVoices() ? kSuccess : kFailed;
      } catch (const std::exception& error) {
        std::fprintf(stderr, "quorble: stopped: %s\n", error.what());
        return kFailed;
      }
    }
  }
  return NoDisplay();
}

}  // namespace

int main(int argc, char** argv) {
  quorble::app::ParseError error;
  const auto options = quorble::app::ParseOptions(
      kOptionTable, std::vector<std::string>(argv + 1, argv + argc), std::getenv, error);
  if (options && !options->positional.empty()) {
    error.message = "unexpected argument '" + options->positional.front() + "'";
  }
  if (!options || !options->positional.empty()) {
    std::fprintf(stderr, "quorble: %s\n%s", error.message.c_str(), Usage().c_str());
    return kBadUsage;
  }
  if (options->Has("--help")) {
    std::fputs((Usage() + std::string(kKeySummary)).c_str(), stdout);
    return kSuccess;
  }
  if (options->Has("--version")) {
    std::printf("quorble %s\n", QUORBLE_VERSION);
    return kSuccess;
  }
  const std::string speechName = options->Value("--speech", "espeak");
  const auto speech = quorble::desktop::SpeechBackendNamed(speechName);
  if (!speech) {
    std::fprintf(stderr, "quorble: no speech engine '%s'; espeak or dispatcher\n%s",
                 speechName.c_str(), Usage().c_str());
    return kBadUsage;
  }
  quorble::Settings settings;
  const auto companion = quorble::app::CompanionFrom(*options, error.message);
  if (!companion) {
    std::fprintf(stderr, "quorble: %s\n%s", error.message.c_str(), Usage().c_str());
    return kBadUsage;
  }
  settings.companion = *companion;
  return Play(*speech, settings);
}

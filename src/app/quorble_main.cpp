// The game on a Linux desktop.
#include <SDL.h>

#include <cstdio>
#include <exception>

#include "gamestate.h"
#include "platform/desktop/desktop_platform.h"
#include "platform/desktop/signals.h"

namespace {

class SdlSession {
 public:
  SdlSession() {
    // Our own signal thread turns the signals into SDL_QUIT.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "1");
    ok_ = SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) == 0;
  }
  ~SdlSession() { SDL_Quit(); }
  SdlSession(const SdlSession&) = delete;
  SdlSession& operator=(const SdlSession&) = delete;
  bool ok() const { return ok_; }

 private:
  bool ok_ = false;
};

}  // namespace

int main() {
  quorble::desktop::QuitOnSignals signals;  // before any other thread starts
  SdlSession sdl;
  if (!sdl.ok()) {
    std::fprintf(stderr, "Quorble can't start: %s\n", SDL_GetError());
    return 1;
  }
  try {
    quorble::desktop::DesktopPlatform platform;
    quorble::Form1 form(platform);
    form.Form_Load();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Quorble stopped: %s\n", error.what());
    return 1;
  }
  return 0;
}

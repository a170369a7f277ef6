#include "platform/desktop/signals.h"

#include <SDL.h>
#include <pthread.h>

namespace quorble::desktop {

QuitOnSignals::QuitOnSignals() {
  sigemptyset(&signals_);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals_, signal);
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  watcher_ = std::thread([this] { Watch(); });
}

QuitOnSignals::~QuitOnSignals() {
  stopping_ = true;
  pthread_kill(watcher_.native_handle(), SIGHUP);
  watcher_.join();
}

void QuitOnSignals::Watch() {
  for (;;) {
    int signal = 0;
    if (sigwait(&signals_, &signal) != 0) continue;
    if (stopping_) return;
    SDL_Event quit{};
    quit.type = SDL_QUIT;
    SDL_PushEvent(&quit);
  }
}

}  // namespace quorble::desktop

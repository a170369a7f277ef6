// Turns SIGINT, SIGTERM and SIGHUP into a close request (SDL_QUIT). Nothing
// runs in signal context: the signals are blocked in every thread and one
// thread of ours takes them with sigwait. Construct it before any other
// thread exists, so that each inherits the blocked mask.
#pragma once

#include <atomic>
#include <csignal>
#include <thread>

namespace quorble::desktop {

class QuitOnSignals {
 public:
  QuitOnSignals();
  ~QuitOnSignals();
  QuitOnSignals(const QuitOnSignals&) = delete;
  QuitOnSignals& operator=(const QuitOnSignals&) = delete;

 private:
  void Watch();

  sigset_t signals_;
  std::atomic<bool> stopping_{false};
  std::thread watcher_;
};

}  // namespace quorble::desktop

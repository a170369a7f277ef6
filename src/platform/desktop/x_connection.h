// Learns that the connection to the X server is gone: the server died, or
// the window was killed. Xlib's own answer is to end the process on the
// spot, which would lose the game in hand and the configuration; instead
// the loss is noted here and the platform turns it into a close request.
#pragma once

#include <SDL.h>

namespace quorble::desktop {

class XConnectionWatch {
 public:
  // Watches the connection of `window`; does nothing off X11.
  explicit XConnectionWatch(SDL_Window* window);
  XConnectionWatch(const XConnectionWatch&) = delete;
  XConnectionWatch& operator=(const XConnectionWatch&) = delete;

  bool Lost() const { return lost_; }

 private:
  static void OnLost(void* display, void* self);

  bool lost_ = false;
};

}  // namespace quorble::desktop

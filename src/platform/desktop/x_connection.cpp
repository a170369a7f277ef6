#include "platform/desktop/x_connection.h"

#include <SDL_syswm.h>
#include <X11/Xlib.h>

namespace quorble::desktop {
namespace {
XConnectionWatch* watch = nullptr;
}

XConnectionWatch::XConnectionWatch(SDL_Window* window) {
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return;
  // Xlib's default handler ends the process; this one only returns. Then
  // Xlib calls the exit handler, which notes the loss and returns too, and
  // every later call on the connection returns at once.
  watch = this;
  XSetIOErrorHandler([](Display* display) {
    XSetIOErrorExitHandler(
        display, [](Display* d, void* self) { OnLost(d, self); }, watch);
    return 0;
  });
  XSetIOErrorExitHandler(
      info.info.x11.display, [](Display* display, void* self) { OnLost(display, self); }, this);
}

void XConnectionWatch::OnLost(void* /*display*/, void* self) {
  static_cast<XConnectionWatch*>(self)->lost_ = true;
}

}  // namespace quorble::desktop

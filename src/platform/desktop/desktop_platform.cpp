#include "platform/desktop/desktop_platform.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>

#include "platform/common/disk.h"
#include "platform/common/local_clock.h"
#include "platform/desktop/keymap.h"
#include "platform/desktop/shell.h"
#include "platform/desktop/sound.h"

namespace quorble::desktop {
namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;
// However long the wait, look again this often, in case a wake-up was lost.
constexpr double kLongestWaitMs = 500.0;

// Only keys, the close request and what repaints the window wake the game.
constexpr SDL_EventType kIgnoredEvents[] = {
    SDL_KEYUP,           SDL_TEXTINPUT,     SDL_TEXTEDITING,   SDL_MOUSEMOTION,
    SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP, SDL_MOUSEWHEEL,    SDL_FINGERDOWN,
    SDL_FINGERUP,        SDL_FINGERMOTION,  SDL_KEYMAPCHANGED,
};

Window MakeWindow() {
  // A black window needs no GPU: without this SDL would start a GL context
  // (and on machines without one, a software renderer's threads) for it.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_Window* window = SDL_CreateWindow("Quorble", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                        kWidth, kHeight, SDL_WINDOW_HIDDEN);
  if (window == nullptr) throw std::runtime_error(std::string("no window: ") + SDL_GetError());
  return Window(window);
}

// The game may break its lines with a carriage return alone.
std::string WithNewlines(const std::string& text) {
  std::string lines;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\r') {
      lines += text[at];
      continue;
    }
    lines += '\n';
    if (at + 1 < text.size() && text[at + 1] == '\n') ++at;
  }
  return lines;
}

// Where this build installs its data; asked only when the install tree
// around the executable holds no samples.
#ifndef QUORBLE_INSTALLED_DATADIR
#define QUORBLE_INSTALLED_DATADIR ""
#endif

bool Tracing() {
  const char* trace = std::getenv("QUORBLE_TRACE");
  return trace != nullptr && *trace != '\0' && *trace != '0';
}

// What the sound and speech threads call to end the game's wait.
std::function<void()> Waker(Uint32 wakeEvent) {
  return [wakeEvent] {
    SDL_Event event{};
    event.type = wakeEvent;
    SDL_PushEvent(&event);
  };
}

}  // namespace

DesktopPlatform::DesktopPlatform(SpeechBackend speech)
    : trace_(Tracing()),
      wakeEvent_(SDL_RegisterEvents(1)),
      window_(MakeWindow()),
      xConnection_(window_.get()),
      mixer_(std::make_shared<Mixer>(Waker(wakeEvent_))),
      programFolder_(ProgramFolderFor(disk::ExecutableFolder(), QUORBLE_INSTALLED_DATADIR)) {
  StartSpeech(speech);
  if (trace_) std::fprintf(stderr, "samples: %s\n", programFolder_.c_str());
  if (!mixer_->HasDevice()) {
    std::fprintf(stderr, "quorble: no sound device could be opened; playing on in silence\n");
  }
  for (SDL_EventType type : kIgnoredEvents) SDL_EventState(type, SDL_IGNORE);
  SDL_StopTextInput();
}

DesktopPlatform::~DesktopPlatform() {
  // Destroying a window waits for the server to confirm, which a lost
  // server never does; the process is ending anyway.
  if (xConnection_.Lost()) static_cast<void>(window_.release());
}

void DesktopPlatform::Show(const std::string& caption) {
  SDL_Window* window = window_.get();
  SDL_SetWindowTitle(window, caption.c_str());
  SDL_ShowWindow(window);
  SDL_RaiseWindow(window);
  SDL_SetWindowInputFocus(window);
  PaintBlack();
}

void DesktopPlatform::Pump(WindowEvents& events) {
  if (xConnection_.Lost()) {
    // The window is gone for good: one close request, and no more events.
    if (!lossReported_) {
      lossReported_ = true;
      if (trace_) std::fprintf(stderr, "close request: the X connection is lost\n");
      events.Form_CloseRequest();
    }
    return;
  }
  SDL_Event event;
  while (SDL_PollEvent(&event) == 1) {
    if (event.type == SDL_KEYDOWN) {
      const SDL_Keysym& key = event.key.keysym;
      const int code = VirtualKeyCode(key.sym, key.scancode, (key.mod & KMOD_NUM) != 0);
      if (trace_) std::fprintf(stderr, "key: %d\n", code);
      if (code != 0) events.Form_KeyDown(code);
    } else if (event.type == SDL_QUIT) {
      if (trace_) std::fprintf(stderr, "close request\n");
      events.Form_CloseRequest();
    } else if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED) {
      PaintBlack();
    }
  }
}

// Every kind of wait ends on any event: the mixer and the speech worker
// post a wake-up when a sample or the speech ends, and the game looks
// again at whatever it waits for.
void DesktopPlatform::WaitEvent(WaitFor /*what*/, double deadline) {
  const double remainingMs = (deadline - Monotonic()) * 1000.0;
  if (remainingMs <= 0) return;
  const int timeoutMs = static_cast<int>(std::ceil(std::min(remainingMs, kLongestWaitMs)));
  SDL_WaitEventTimeout(nullptr, timeoutMs);
  // A wake-up has done its work once the wait is over; left in the queue it
  // would end the next wait before anything has changed.
  SDL_FlushEvent(wakeEvent_);
}

// A player at a terminal, or one whose screen reader misses the box, reads
// the same text there.
void DesktopPlatform::MessageBox(const std::string& text) {
  const std::string lines = WithNewlines(text);
  std::fprintf(stderr, "quorble: %s\n", lines.c_str());
  SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_INFORMATION, "Quorble", lines.c_str(), window_.get());
}

void DesktopPlatform::Beep() { mixer_->Beep(); }

double DesktopPlatform::Monotonic() {
  using Seconds = std::chrono::duration<double>;
  return std::chrono::duration_cast<Seconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

double DesktopPlatform::Timer() { return SecondsSinceMidnight(); }

Date DesktopPlatform::Today() { return LocalToday(); }

void DesktopPlatform::Randomize(double seed) { random_.Seed(seed); }

float DesktopPlatform::Rnd() { return random_.Next(); }

std::unique_ptr<SpeechVoice> DesktopPlatform::NewSpVoice() {
  if (dispatcher_) return std::make_unique<DispatcherVoice>(dispatcher_);
  return std::make_unique<EspeakVoice>(speech_);
}

// A player who asked for their own speech and doesn't get it must hear
// why the voice is another: the sentence is queued before the greeting.
void DesktopPlatform::StartSpeech(SpeechBackend backend) {
  if (backend == SpeechBackend::Dispatcher) {
    std::string error;
    dispatcher_ = DispatcherConnection::Open(trace_, Waker(wakeEvent_), error);
    if (dispatcher_) return;
    std::fprintf(stderr,
                 "quorble: speech-dispatcher can't be reached (%s); speaking with espeak-ng\n",
                 error.c_str());
  }
  speech_ = std::make_shared<SpeechEngine>(mixer_, trace_);
  if (backend == SpeechBackend::Dispatcher) {
    speech_->Queue({espeak::kOwnVoicesMissing});
  }
}

std::unique_ptr<DirectX8> DesktopPlatform::NewDirectX8() {
  return std::make_unique<DesktopDirectX8>(mixer_);
}

std::string DesktopPlatform::DocumentsFolder() { return UserDocumentsFolder(); }
std::string DesktopPlatform::CurrentDirectory() { return disk::CurrentDirectory(); }
std::string DesktopPlatform::ProgramFolder() { return programFolder_; }

void DesktopPlatform::Launch(const std::string& path, int /*windowStyle*/) { LaunchDetached(path); }

// The window shows nothing, but its content must not be left undefined.
void DesktopPlatform::PaintBlack() {
  SDL_Surface* surface = SDL_GetWindowSurface(window_.get());
  if (surface == nullptr) return;
  SDL_FillRect(surface, nullptr, SDL_MapRGB(surface->format, 0, 0, 0));
  SDL_UpdateWindowSurface(window_.get());
}

}  // namespace quorble::desktop

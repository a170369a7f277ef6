#include "platform/web/web_platform.h"

#include <emscripten.h>

#include <cmath>

#include "platform/common/disk.h"
#include "platform/common/local_clock.h"
#include "platform/web/page_bridge.h"
#include "platform/web/web_sound.h"

namespace quorble::web {
namespace {

enum LockState { kHeld = 0, kHeldElsewhere = 1, kNoLock = 2 };

}  // namespace

bool Persisted(const std::string& path) {
  const bool journaled = quorble_persist(path.c_str()) != 0;
  const bool synced = quorble_sync() != 0;
  return journaled || synced;
}

WebPlatform::WebPlatform(bool systemSpeech) {
  const bool system = systemSpeech && quorble_speech_system() != 0;
  voices_ = SpeechVoices::Open(system);
  if (systemSpeech && !system) SpeakNotice(espeak::kOwnVoicesMissing);
}

void WebPlatform::Show(const std::string& caption) { quorble_show(caption.c_str()); }

void WebPlatform::Pump(WindowEvents& events) {
  while (const int code = quorble_next_key()) {
    quorble_trace("key", std::to_string(code).c_str());
    events.Form_KeyDown(code);
  }
  if (quorble_take_close()) {
    quorble_trace("close", "");
    events.Form_CloseRequest();
  }
}

void WebPlatform::WaitEvent(WaitFor what, double deadline) {
  if (quorble_closing()) return;
  const double deadlineMs = deadline * 1000.0;
  if (deadlineMs <= emscripten_get_now()) return;
  quorble_wait(deadlineMs, what == WaitFor::Key ? 1 : 0);
}

void WebPlatform::MessageBox(const std::string& text) { quorble_message(text.c_str()); }

void WebPlatform::Beep() { quorble_beep(); }

double WebPlatform::Monotonic() { return emscripten_get_now() / 1000.0; }

double WebPlatform::Timer() { return SecondsSinceMidnight(); }

Date WebPlatform::Today() { return LocalToday(); }

float WebPlatform::Rnd() {
  const int face = quorble_forced_face();
  if (face >= 1 && face <= 6) return (static_cast<float>(face) - 0.5f) / 6.0f;
  return random_.Next();
}

std::unique_ptr<SpeechVoice> WebPlatform::NewSpVoice() {
  return std::make_unique<WebVoice>(voices_);
}

std::unique_ptr<DirectX8> WebPlatform::NewDirectX8() { return std::make_unique<WebDirectX8>(); }

bool WebPlatform::MakeDirectory(const std::string& path) {
  return disk::MakeDirectory(path) && Persisted(path);
}

bool WebPlatform::DeleteFile(const std::string& path) {
  return disk::DeleteFile(path) && Persisted(path);
}

bool WebPlatform::RenameFile(const std::string& from, const std::string& to) {
  if (!disk::RenameFile(from, to)) return false;
  quorble_persist(from.c_str());
  return Persisted(to);
}

bool WebPlatform::WriteFile(const std::string& path, const std::string& bytes) {
  return disk::WriteFile(path, bytes) && Persisted(path);
}

bool WebPlatform::AppendFile(const std::string& path, const std::string& bytes) {
  return disk::AppendFile(path, bytes) && Persisted(path);
}

// The page took the browser's lock before the game started; the folder's
// temporary files are only ours to clear while we hold it.
bool WebPlatform::LockDataFolder(const std::string& folder) {
  const int state = quorble_lock_state();
  if (state == kHeld) disk::RemoveStaleTemporaries(folder);
  return state != kHeldElsewhere;
}

}  // namespace quorble::web

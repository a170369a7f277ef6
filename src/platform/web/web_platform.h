// The platform in a web browser: keys from the page, the game's waits
// returned to the browser through Asyncify, speech and samples through the
// page's worker and AudioWorklet mixer, and the data folder in IndexedDB.
// The page (page/bridge.js) holds the browser's side of every operation.
#pragma once

#include <memory>
#include <string>

#include "platform/common/disk_platform.h"
#include "platform/common/rng.h"
#include "platform/platform.h"
#include "platform/web/web_speech.h"

namespace quorble::web {

// Where the page mounts the data folder's IndexedDB and puts the files it
// fetched with the game.
inline constexpr char kDocumentsFolder[] = "/documents";
inline constexpr char kProgramFolder[] = "/program";

class WebPlatform final : public DiskPlatform {
 public:
  // `systemSpeech`: the player's own voices, when the browser has any.
  explicit WebPlatform(bool systemSpeech);

  void Show(const std::string& caption) override;
  void Pump(WindowEvents& events) override;
  void WaitEvent(WaitFor what, double deadline) override;
  void MessageBox(const std::string& text) override;
  void Beep() override;

  double Monotonic() override;
  double Timer() override;
  Date Today() override;
  void Randomize(double seed) override { random_.Seed(seed); }
  float Rnd() override;

  std::unique_ptr<SpeechVoice> NewSpVoice() override;
  std::unique_ptr<DirectX8> NewDirectX8() override;

  std::string DocumentsFolder() override { return kDocumentsFolder; }
  std::string CurrentDirectory() override { return "/"; }
  std::string ProgramFolder() override { return kProgramFolder; }
  // Nothing to start in a browser: the page says the game has ended.
  void Launch(const std::string&, int) override {}

  bool MakeDirectory(const std::string& path) override;
  bool DeleteFile(const std::string& path) override;
  bool RenameFile(const std::string& from, const std::string& to) override;
  bool WriteFile(const std::string& path, const std::string& bytes) override;
  bool AppendFile(const std::string& path, const std::string& bytes) override;
  bool LockDataFolder(const std::string& folder) override;

 private:
  std::shared_ptr<SpeechVoices> voices_;
  Rng random_;
};

// A change made on the in-memory file system is durable once the page's
// journal or IndexedDB holds it.
bool Persisted(const std::string& path);

}  // namespace quorble::web

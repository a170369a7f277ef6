// A platform that runs the game on a virtual clock, takes its keys from a
// script, and writes down everything the game asks of it instead of making
// sound. Files are real.
#pragma once

#include <cstdint>
#include <deque>
#include <ostream>
#include <stdexcept>
#include <string>

#include "platform/common/disk_platform.h"
#include "platform/common/rng.h"
#include "platform/platform.h"
#include "platform/sim/script.h"

namespace quorble::sim {

// Raised when the game waits for a key and the script has none left.
struct Stuck : std::runtime_error {
  Stuck() : std::runtime_error("stuck") {}
};

struct Folders {
  std::string docs;  // empty: the user has no documents folder
  std::string cwd;
  std::string samples;
};

class SimBuffer;

class SimPlatform : public DiskPlatform {
 public:
  SimPlatform(Script script, Folders folders, std::ostream& transcript);

  // The transcript: one line for each thing the game asks.
  void Record(const std::string& event);
  static std::string Quote(const std::string& text);

  std::int64_t Now() const { return now_; }
  // Speech queued at `rate` for `text`, on the one shared queue.
  void Enqueue(const std::string& text, int rate);
  void SpeakAndWait(const std::string& text, int rate);
  void Purge() { speechEnd_ = now_; }
  bool Speaking() const { return now_ < speechEnd_; }
  int Voices() const { return script_.voices; }
  void Playing(const SimBuffer* buffer) { playing_ = buffer; }
  void Released(const SimBuffer* buffer);

  void Show(const std::string& caption) override;
  void Pump(WindowEvents& events) override;
  void WaitEvent(WaitFor what, double deadline) override;
  void MessageBox(const std::string& text) override;
  void Beep() override;
  double Monotonic() override;
  double Timer() override;
  Date Today() override { return script_.date; }
  void Randomize(double) override {}
  float Rnd() override;
  std::unique_ptr<SpeechVoice> NewSpVoice() override;
  std::unique_ptr<DirectX8> NewDirectX8() override;
  std::string DocumentsFolder() override { return folders_.docs; }
  std::string CurrentDirectory() override { return folders_.cwd; }
  std::string ProgramFolder() override { return folders_.samples; }
  void Launch(const std::string& path, int windowStyle) override;

 private:
  struct Event {
    std::int64_t at;
    Press press;
  };

  void KeyMoment();
  void MoveTo(std::int64_t target);
  bool AfterDueBy(std::int64_t limit, std::int64_t& due) const;
  void PressNext();

  Script script_;
  Folders folders_;
  std::ostream& out_;
  std::int64_t now_ = 0;        // microseconds since the start
  std::int64_t speechEnd_ = 0;  // when all queued speech has been heard
  std::int64_t lastPress_ = 0;
  size_t next_ = 0;           // the next press of the script
  std::deque<Event> window_;  // pressed, not yet delivered by a pump
  const SimBuffer* playing_ = nullptr;
  bool stuck_ = false;
  Rng rng_;
};

}  // namespace quorble::sim

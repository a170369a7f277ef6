// Speech through the player's own speech-dispatcher: their synthesizer,
// language and voice, as their screen reader uses them. One connection
// serves every voice object of the platform, so replacing the object keeps
// the queue, as it does with the embedded engine. The daemon tells us, on
// libspeechd's own thread, when each of our messages ends or is cancelled;
// that is all a synchronous speak and the running state rely on.
#pragma once

#include <condition_variable>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"

namespace quorble::desktop {

enum class SpeechBackend { Espeak, Dispatcher };

// "espeak" or "dispatcher"; nothing for any other name.
std::optional<SpeechBackend> SpeechBackendNamed(const std::string& name);

// The daemon's rate (-100..100) for the game's rate: 0 keeps the player's
// own rate, and each step of the game moves a tenth of the way towards the
// daemon's fastest or slowest, so every step is heard.
int DispatcherRate(int playerRate, int gameRate);

// The daemon's volume (-100..100) for the game's 0..100, 100 being the
// player's own volume.
int DispatcherVolume(int playerVolume, int gameVolume);

struct SynthesisVoice {
  std::string name;
  std::string language;  // "en-US"
  std::string variant;   // "none" for the voice itself
};

// The voices to offer: those of the player's language (all voices when
// none is of it), without those whose data isn't installed, the plain
// voices before their variants, each group by name, so the order is the
// same on every run whatever order the daemon lists them in.
std::vector<std::string> OfferedVoices(const std::vector<SynthesisVoice>& listed,
                                       const std::string& language, bool mbrolaInstalled);

// Which of our messages the daemon has still to finish. An end may come on
// the callback thread before spd_say has even returned the message's id.
class MessageTracker {
 public:
  void Said(int id);      // spd_say returned `id`
  void Finished(int id);  // the daemon reported its end or cancel
  void Forget();          // everything said so far was cancelled
  bool Pending() const { return !pending_.empty(); }

 private:
  std::set<int> pending_;
  std::set<int> finishedEarly_;
  int lastSaid_ = 0;
};

struct DispatcherSettings {
  int voice = 0;
  int rate = 0;
  std::optional<int> volume;  // none: the player's own
};

class DispatcherConnection {
 public:
  // Nothing, with `error` set, when the daemon can't be reached (not
  // installed, not running and not autospawnable).
  // `wake` is called, on libspeechd's thread, whenever a message ends.
  static std::shared_ptr<DispatcherConnection> Open(bool trace, std::function<void()> wake,
                                                    std::string& error);
  ~DispatcherConnection();
  DispatcherConnection(const DispatcherConnection&) = delete;
  DispatcherConnection& operator=(const DispatcherConnection&) = delete;

  // The first call waits for the list, which the daemon takes a second or
  // more to send; the game asks for it while its filler sample sounds.
  int VoiceCount() const { return static_cast<int>(voices_.get().size()); }
  void Say(const std::string& text, const DispatcherSettings& settings);
  // Silences what sounds and drops what we queued; other clients' speech,
  // the screen reader's above all, is left alone.
  void Cancel();
  // Returns once the daemon has finished everything we queued.
  void WaitUntilHeard();
  bool Speaking();

 private:
  DispatcherConnection(void* connection, bool trace, std::function<void()> wake);
  static void OnNotification(size_t message, size_t client, int type);
  void Finished(int message, bool cancelled);
  void Apply(const DispatcherSettings& settings);

  void* const connection_;  // libspeechd's SPDConnection, an unnamed struct
  const bool trace_;
  const std::function<void()> wake_;
  std::shared_future<std::vector<std::string>> voices_;
  int playerRate_ = 0;
  int playerVolume_ = 100;
  // What the daemon holds for this connection now; -1: its own voice.
  int sentVoice_ = -1;
  int sentRate_ = 0;
  int sentVolume_ = 100;

  std::mutex mutex_;
  std::condition_variable finished_;
  MessageTracker messages_;
  double lastNews_ = 0;               // when the daemon last told us anything
  std::map<int, std::string> texts_;  // by message, for the trace
};

class DispatcherVoice final : public SpeechVoice {
 public:
  explicit DispatcherVoice(std::shared_ptr<DispatcherConnection> connection)
      : connection_(std::move(connection)) {}

  int VoiceCount() override { return connection_->VoiceCount(); }
  void SetVoice(int index) override;
  void SetRate(int rate) override { settings_.rate = rate; }
  void SetVolume(int volume) override { settings_.volume = volume; }
  void Speak(const std::string& text, int flags) override;
  int RunningState() override { return connection_->Speaking() ? SRSEIsSpeaking : 1; }

 private:
  const std::shared_ptr<DispatcherConnection> connection_;
  DispatcherSettings settings_;
};

}  // namespace quorble::desktop

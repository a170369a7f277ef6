#include "platform/desktop/speech_dispatcher.h"

#include <libspeechd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <tuple>

namespace quorble::desktop {
namespace {

constexpr int kDaemonSlowest = -100;
constexpr int kDaemonFastest = 100;
constexpr int kGameSteps = 10;
// Wakes a synchronous wait even if a notification were ever lost.
constexpr auto kWaitSafety = std::chrono::milliseconds(250);
// A daemon that has said nothing for this long has gone away or hung: the
// game stops waiting for it rather than stand still for good.
constexpr double kSilentDaemonSeconds = 30.0;

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// "en-US" and "en_GB" are both "en".
std::string PrimaryLanguage(const std::string& language) {
  return Lower(language.substr(0, language.find_first_of("-_")));
}

bool IsMbrola(const SynthesisVoice& voice) {
  const std::string name = Lower(voice.name);
  return name.rfind("mb-", 0) == 0 || name.find("mbrola") != std::string::npos;
}

// libspeechd's callbacks carry no user data, so they find the one open
// connection of the process here.
std::mutex liveMutex;
DispatcherConnection* live = nullptr;

std::vector<SynthesisVoice> ListVoices(SPDConnection* connection) {
  std::vector<SynthesisVoice> voices;
  SPDVoice** listed = spd_list_synthesis_voices(connection);
  for (size_t at = 0; listed != nullptr && listed[at] != nullptr; ++at) {
    const SPDVoice& voice = *listed[at];
    voices.push_back({voice.name ? voice.name : "", voice.language ? voice.language : "",
                      voice.variant ? voice.variant : "none"});
  }
  if (listed != nullptr) free_spd_voices(listed);
  return voices;
}

std::string LanguageOf(SPDConnection* connection) {
  char* language = spd_get_language(connection);
  std::string text = language ? language : "";
  std::free(language);
  return text;
}

SPDConnection* Spd(void* connection) { return static_cast<SPDConnection*>(connection); }

}  // namespace

std::optional<SpeechBackend> SpeechBackendNamed(const std::string& name) {
  if (name == "espeak") return SpeechBackend::Espeak;
  if (name == "dispatcher") return SpeechBackend::Dispatcher;
  return std::nullopt;
}

int DispatcherRate(int playerRate, int gameRate) {
  const int steps = std::clamp(gameRate, -kGameSteps, kGameSteps);
  const int room = steps >= 0 ? kDaemonFastest - playerRate : playerRate - kDaemonSlowest;
  return std::clamp(playerRate + room * steps / kGameSteps, kDaemonSlowest, kDaemonFastest);
}

int DispatcherVolume(int playerVolume, int gameVolume) {
  const int below = 100 - std::clamp(gameVolume, 0, 100);
  return std::clamp(playerVolume - (playerVolume + 100) * below / 100, -100, 100);
}

std::vector<std::string> OfferedVoices(const std::vector<SynthesisVoice>& listed,
                                       const std::string& language, bool mbrolaInstalled) {
  const std::string wanted = PrimaryLanguage(language);
  const bool anyOfLanguage = std::any_of(listed.begin(), listed.end(), [&](const auto& voice) {
    return PrimaryLanguage(voice.language) == wanted;
  });
  std::vector<const SynthesisVoice*> kept;
  for (const auto& voice : listed) {
    if (anyOfLanguage && PrimaryLanguage(voice.language) != wanted) continue;
    if (!mbrolaInstalled && IsMbrola(voice)) continue;
    kept.push_back(&voice);
  }
  std::sort(kept.begin(), kept.end(), [](const SynthesisVoice* a, const SynthesisVoice* b) {
    return std::tuple(a->variant != "none", a->name) < std::tuple(b->variant != "none", b->name);
  });
  std::vector<std::string> names;
  for (const auto* voice : kept) {
    if (names.empty() || names.back() != voice->name) names.push_back(voice->name);
  }
  return names;
}

void MessageTracker::Said(int id) {
  lastSaid_ = std::max(lastSaid_, id);
  if (finishedEarly_.erase(id) == 0) pending_.insert(id);
}

void MessageTracker::Finished(int id) {
  // An id not yet returned by spd_say is one whose end overtook its reply.
  if (pending_.erase(id) == 0 && id > lastSaid_) finishedEarly_.insert(id);
}

void MessageTracker::Forget() { pending_.clear(); }

std::shared_ptr<DispatcherConnection> DispatcherConnection::Open(bool trace,
                                                                 std::function<void()> wake,
                                                                 std::string& error) {
  char* failure = nullptr;
  SPDConnection* connection =
      spd_open2("quorble", "main", nullptr, SPD_MODE_THREADED, nullptr, 1, &failure);
  if (connection == nullptr) {
    error = failure ? failure : "no connection";
    std::free(failure);
    return nullptr;
  }
  // A daemon that offers no voice at all is the game's own "no voices"
  // case, told to the player as it always is.
  return std::shared_ptr<DispatcherConnection>(
      new DispatcherConnection(connection, trace, std::move(wake)));
}

DispatcherConnection::DispatcherConnection(void* connection, bool trace, std::function<void()> wake)
    : connection_(connection), trace_(trace), wake_(std::move(wake)) {
  // libspeechd serialises the calls of several threads on one connection.
  voices_ = std::async(std::launch::async, [spd = Spd(connection_)] {
              return OfferedVoices(ListVoices(spd), LanguageOf(spd),
                                   std::filesystem::exists("/usr/share/mbrola"));
            }).share();
  // The daemon hands out the player's configured rate and volume to a new
  // client; keep them, since reading them back later is unreliable.
  playerRate_ = std::clamp(spd_get_voice_rate(Spd(connection_)), kDaemonSlowest, kDaemonFastest);
  playerVolume_ = std::clamp(spd_get_volume(Spd(connection_)), -100, 100);
  sentRate_ = playerRate_;
  sentVolume_ = playerVolume_;
  {
    std::lock_guard lock(liveMutex);
    live = this;
  }
  Spd(connection_)->callback_end = [](size_t message, size_t client, SPDNotificationType type) {
    OnNotification(message, client, type);
  };
  Spd(connection_)->callback_cancel = Spd(connection_)->callback_end;
  spd_set_notification_on(Spd(connection_), SPD_END);
  spd_set_notification_on(Spd(connection_), SPD_CANCEL);
  lastNews_ = Now();
}

DispatcherConnection::~DispatcherConnection() {
  voices_.wait();
  spd_cancel(Spd(connection_));
  {
    std::lock_guard lock(liveMutex);
    live = nullptr;
  }
  spd_close(Spd(connection_));
}

void DispatcherConnection::OnNotification(size_t message, size_t /*client*/, int type) {
  std::lock_guard lock(liveMutex);
  if (live != nullptr) live->Finished(static_cast<int>(message), type == SPD_EVENT_CANCEL);
}

void DispatcherConnection::Finished(int message, bool cancelled) {
  {
    std::lock_guard lock(mutex_);
    messages_.Finished(message);
    lastNews_ = Now();
    if (trace_) {
      const auto text = texts_.extract(message);
      std::fprintf(stderr, "speech %s: %s\n", cancelled ? "cancelled" : "ended",
                   text.empty() ? "?" : text.mapped().c_str());
    }
  }
  finished_.notify_all();
  if (wake_) wake_();
}

// Each change is traced once the daemon has taken it.
void DispatcherConnection::Apply(const DispatcherSettings& settings) {
  SPDConnection* spd = Spd(connection_);
  const int voice = std::clamp(settings.voice, 0, std::max(VoiceCount() - 1, 0));
  if (voice != sentVoice_ && voice < VoiceCount()) {
    const std::string& name = voices_.get()[static_cast<size_t>(voice)];
    if (spd_set_synthesis_voice(spd, name.c_str()) == 0) {
      sentVoice_ = voice;
      if (trace_) std::fprintf(stderr, "speech voice: %s\n", name.c_str());
    }
  }
  const int rate = DispatcherRate(playerRate_, settings.rate);
  if (rate != sentRate_ && spd_set_voice_rate(spd, rate) == 0) {
    sentRate_ = rate;
    if (trace_) std::fprintf(stderr, "speech rate: %d\n", rate);
  }
  const int volume =
      settings.volume ? DispatcherVolume(playerVolume_, *settings.volume) : playerVolume_;
  if (volume != sentVolume_ && spd_set_volume(spd, volume) == 0) sentVolume_ = volume;
}

// The daemon refuses an empty message, and a refusal would leave nothing
// to wait for; a text of blanks is spoken as a pause and ends like any other.
void DispatcherConnection::Say(const std::string& text, const DispatcherSettings& settings) {
  if (trace_) std::fprintf(stderr, "speech: %s\n", text.c_str());
  if (text.empty()) return;
  Apply(settings);
  // `message` queues behind what we said before; `text` would replace it
  // and `important` could not be cut by a key.
  const int id = spd_say(Spd(connection_), SPD_MESSAGE, text.c_str());
  if (id <= 0) return;
  std::lock_guard lock(mutex_);
  messages_.Said(id);
  if (trace_ && messages_.Pending()) texts_[id] = text;
}

void DispatcherConnection::Cancel() {
  spd_cancel(Spd(connection_));
  std::lock_guard lock(mutex_);
  messages_.Forget();
}

void DispatcherConnection::WaitUntilHeard() {
  std::unique_lock lock(mutex_);
  lastNews_ = std::max(lastNews_, Now());
  while (messages_.Pending() && Now() - lastNews_ < kSilentDaemonSeconds) {
    finished_.wait_for(lock, kWaitSafety);
  }
}

bool DispatcherConnection::Speaking() {
  std::lock_guard lock(mutex_);
  return messages_.Pending();
}

void DispatcherVoice::SetVoice(int index) {
  settings_.voice = (index >= 0 && index < connection_->VoiceCount()) ? index : 0;
}

void DispatcherVoice::Speak(const std::string& text, int flags) {
  if (flags & SVSFPurgeBeforeSpeak) connection_->Cancel();
  if (!text.empty()) connection_->Say(text, settings_);
  if (!(flags & SVSFlagsAsync)) connection_->WaitUntilHeard();
}

}  // namespace quorble::desktop

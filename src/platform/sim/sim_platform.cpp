#include "platform/sim/sim_platform.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "little_endian.h"
#include "platform/common/disk.h"

namespace quorble::sim {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kKeyStep = 100000;  // a plain key comes 0.1 s into its wait

std::int64_t Micros(double seconds) {
  if (!(seconds < 9e12)) return kNever;
  return static_cast<std::int64_t>(std::ceil(seconds * 1e6));
}

std::string BareName(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

struct WavFacts {
  int rate = 22050;
  int blockAlign = 2;
  std::int64_t dataBytes = 0;
};

// Only the facts a playing time needs; anything unreadable is silence.
WavFacts ReadWavFacts(const std::string& path) {
  WavFacts facts;
  const auto bytes = disk::ReadFile(path);
  if (!bytes || bytes->size() < 12 || bytes->compare(0, 4, "RIFF") != 0 ||
      bytes->compare(8, 4, "WAVE") != 0) {
    return facts;
  }
  for (size_t at = 12; at + 8 <= bytes->size();) {
    const std::string id = bytes->substr(at, 4);
    const std::uint32_t size = ReadLittleEndian(*bytes, at + 4, 4);
    if (id == "fmt " && at + 24 <= bytes->size()) {
      facts.rate = static_cast<int>(ReadLittleEndian(*bytes, at + 12, 4));
      facts.blockAlign = std::max(1, static_cast<int>(ReadLittleEndian(*bytes, at + 20, 2)));
    } else if (id == "data") {
      facts.dataBytes =
          static_cast<std::int64_t>(std::min<std::size_t>(size, bytes->size() - at - 8));
      return facts;
    }
    at += 8 + size + (size & 1);
  }
  return facts;
}

class SimVoice : public SpeechVoice {
 public:
  explicit SimVoice(SimPlatform& platform) : p_(platform) { p_.Record("voice new"); }
  int VoiceCount() override { return p_.Voices(); }
  void SetVoice(int index) override { p_.Record("voice use " + std::to_string(index)); }
  void SetRate(int rate) override {
    rate_ = rate;
    p_.Record("voice rate " + std::to_string(rate));
  }
  void SetVolume(int volume) override { p_.Record("voice volume " + std::to_string(volume)); }
  void Speak(const std::string& text, int flags) override {
    if (flags == SVSFPurgeBeforeSpeak) {
      p_.Record("speak purge");
      p_.Purge();
    } else if (flags == SVSFlagsAsync) {
      p_.Record("speak async " + SimPlatform::Quote(text));
      p_.Enqueue(text, rate_);
    } else {
      p_.Record("speak " + SimPlatform::Quote(text));
      p_.SpeakAndWait(text, rate_);
    }
  }
  int RunningState() override { return p_.Speaking() ? SRSEIsSpeaking : 1; }

 private:
  SimPlatform& p_;
  int rate_ = 0;
};

}  // namespace

class SimBuffer : public SoundBuffer {
 public:
  SimBuffer(SimPlatform& platform, const std::string& path)
      : p_(platform), facts_(ReadWavFacts(path)), frequency_(facts_.rate) {
    p_.Record("sound open " + BareName(path));
  }
  ~SimBuffer() override {
    p_.Released(this);
    p_.Record("sound release");
  }
  int GetFrequency() override { return facts_.rate; }
  void SetCurrentPosition(int bytes) override {
    position_ = bytes;
    p_.Record("sound pos " + std::to_string(bytes));
  }
  void SetVolume(int volume) override { p_.Record("sound volume " + std::to_string(volume)); }
  void SetPan(int pan) override { p_.Record("sound pan " + std::to_string(pan)); }
  void SetFrequency(int hz) override {
    frequency_ = hz;
    p_.Record("sound freq " + std::to_string(hz));
  }
  void Play(int flags) override {
    looping_ = flags == DSBPLAY_LOOPING;
    p_.Record(looping_ ? "sound loop" : "sound play");
    const std::int64_t bytes = std::max<std::int64_t>(0, facts_.dataBytes - position_);
    const double seconds =
        frequency_ > 0 ? double(bytes) / (double(frequency_) * facts_.blockAlign) : 0;
    end_ = p_.Now() + std::llround(seconds * 1e6);
    playing_ = true;
    if (!looping_) p_.Playing(this);
  }
  int GetStatus() override {
    return playing_ && (looping_ || p_.Now() < end_) ? DSBSTATUS_PLAYING : 0;
  }
  void Stop() override {
    playing_ = false;
    p_.Released(this);
    p_.Record("sound stop");
  }
  std::int64_t End() const { return end_; }

 private:
  SimPlatform& p_;
  WavFacts facts_;
  int frequency_;
  int position_ = 0;
  bool playing_ = false;
  bool looping_ = false;
  std::int64_t end_ = 0;
};

namespace {

class SimSound : public DirectSound8 {
 public:
  explicit SimSound(SimPlatform& platform) : p_(platform) {}
  void SetCooperativeLevel(int) override {}
  std::unique_ptr<SoundBuffer> CreateSoundBufferFromFile(const std::string& path, int) override {
    return std::make_unique<SimBuffer>(p_, path);
  }

 private:
  SimPlatform& p_;
};

class SimDirectX : public DirectX8 {
 public:
  explicit SimDirectX(SimPlatform& platform) : p_(platform) {}
  std::unique_ptr<DirectSound8> DirectSoundCreate() override {
    return std::make_unique<SimSound>(p_);
  }

 private:
  SimPlatform& p_;
};

}  // namespace

SimPlatform::SimPlatform(Script script, Folders folders, std::ostream& transcript)
    : script_(std::move(script)), folders_(std::move(folders)), out_(transcript) {}

void SimPlatform::Record(const std::string& event) {
  if (stuck_) return;
  char time[32];
  std::snprintf(time, sizeof time, "%lld.%03lld ", static_cast<long long>((now_ + 500) / 1000000),
                static_cast<long long>(((now_ + 500) / 1000) % 1000));
  out_ << time << event << '\n';
}

std::string SimPlatform::Quote(const std::string& text) {
  std::string quoted = "\"";
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += static_cast<char>(c);
    } else if (c < 32 || c == 127) {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02x", c);
      quoted += hex;
    } else {
      quoted += static_cast<char>(c);
    }
  }
  return quoted + "\"";
}

void SimPlatform::Enqueue(const std::string& text, int rate) {
  // A rate far below any a voice can take would make the time endless.
  const double seconds = std::min(0.06 * double(text.size()) * std::pow(3.0, -rate / 10.0), 1e9);
  speechEnd_ = std::max(speechEnd_, now_) + std::llround(seconds * 1e6);
}

void SimPlatform::SpeakAndWait(const std::string& text, int rate) {
  Enqueue(text, rate);
  // Keys pressed meanwhile wait in the window's queue for the next pump.
  MoveTo(speechEnd_);
}

void SimPlatform::Released(const SimBuffer* buffer) {
  if (playing_ == buffer) playing_ = nullptr;
}

void SimPlatform::Show(const std::string& caption) { Record("caption " + Quote(caption)); }

void SimPlatform::Pump(WindowEvents& events) {
  while (!window_.empty() && window_.front().at <= now_) {
    const Press press = window_.front().press;
    window_.pop_front();
    if (press.close) {
      Record("close");
      events.Form_CloseRequest();
    } else {
      Record("key " + std::to_string(press.code));
      events.Form_KeyDown(press.code);
    }
  }
}

bool SimPlatform::AfterDueBy(std::int64_t limit, std::int64_t& due) const {
  if (next_ >= script_.presses.size() || !script_.presses[next_].after) return false;
  due = std::max(now_, lastPress_ + Micros(script_.presses[next_].delay));
  return due <= limit;
}

void SimPlatform::PressNext() {
  window_.push_back(Event{now_, script_.presses[next_]});
  lastPress_ = now_;
  ++next_;
}

// Moves the clock to `target`, pressing the scheduled keys that fall due.
void SimPlatform::MoveTo(std::int64_t target) {
  for (std::int64_t due = 0; AfterDueBy(target, due);) {
    now_ = due;
    PressNext();
  }
  now_ = std::max(now_, target);
}

void SimPlatform::KeyMoment() {
  if (next_ >= script_.presses.size()) {
    Record("stuck");
    stuck_ = true;  // what unwinding releases is no request of the game's
    throw Stuck();
  }
  const Press& press = script_.presses[next_];
  if (press.after) {
    std::int64_t due = 0;
    AfterDueBy(kNever, due);
    now_ = due;
  } else if (!press.close) {
    now_ += kKeyStep;
  }
  PressNext();
}

void SimPlatform::WaitEvent(WaitFor what, double deadline) {
  if (!window_.empty()) return;
  std::int64_t target = kNever;
  switch (what) {
    case WaitFor::Key: break;
    case WaitFor::Time: target = std::max(Micros(deadline), now_ + 1); break;
    case WaitFor::Sound:
      if (playing_ == nullptr || playing_->End() <= now_) return;
      target = playing_->End();
      break;
    case WaitFor::Speech:
      if (speechEnd_ <= now_) return;
      target = speechEnd_;
      break;
  }
  std::int64_t due = 0;
  if (target == kNever) {
    KeyMoment();
  } else if (AfterDueBy(target, due)) {
    now_ = due;
    PressNext();
  } else {
    now_ = target;
  }
}

void SimPlatform::MessageBox(const std::string& text) { Record("msgbox " + Quote(text)); }

void SimPlatform::Beep() { Record("beep"); }

double SimPlatform::Monotonic() { return double(now_) / 1e6; }

double SimPlatform::Timer() {
  return std::fmod(script_.clockSeconds + double(now_) / 1e6, 86400.0);
}

float SimPlatform::Rnd() {
  if (script_.dice.empty()) return rng_.Next();
  const int face = script_.dice.front();
  script_.dice.pop_front();
  return (float(face) - 0.5f) / 6.0f;
}

std::unique_ptr<SpeechVoice> SimPlatform::NewSpVoice() { return std::make_unique<SimVoice>(*this); }

std::unique_ptr<DirectX8> SimPlatform::NewDirectX8() { return std::make_unique<SimDirectX>(*this); }

void SimPlatform::Launch(const std::string& path, int) { Record("launch " + BareName(path)); }

}  // namespace quorble::sim

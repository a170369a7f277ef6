// Prints how the desktop platform sounds where a player would notice, on
// the sound server it finds (bench/sound_bench.sh starts a private
// PulseAudio with a null sink and records its monitor as the default
// source): echo onset and silence after a purge as heard at the sink,
// dropouts under a loop with speech and samples over it, the idle cost of
// game and server, and peak memory. Each time is given as median, min and
// max; the idle cost beside that of a polling wait, as a ratio.
//
//   quorble-bench SAMPLE_DIR INSTRUCTIONS_TEXT [SERVER_PID]
#include <SDL.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/desktop/desktop_platform.h"

namespace {

using quorble::SVSFlagsAsync;
using quorble::SVSFPurgeBeforeSpeak;
using quorble::desktop::DesktopPlatform;

const int kTrials =
    std::getenv("QUORBLE_BENCH_TRIALS") ? std::atoi(std::getenv("QUORBLE_BENCH_TRIALS")) : 15;
constexpr int kCaptureRate = 44100;
constexpr int kDropoutFrames = kCaptureRate / 1000;  // a millisecond of digital zero
constexpr int kSilenceFrames = kCaptureRate / 100;
constexpr const char* kLongText =
    " Press R, to roll the dice. Would you like to read the instructions? ";

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
void Sleep(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

// Listens to the default source (the sink's monitor) and stamps when sound
// starts or stops there; counts runs of digital zero while sound is due.
class Listener {
 public:
  enum class Awaiting { Nothing, Sound, Silence };

  bool Open() {
    SDL_AudioSpec wanted{}, got{};
    wanted.freq = kCaptureRate;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = 2;
    wanted.samples = 128;
    wanted.callback = &Listener::OnCapture;
    wanted.userdata = this;
    device_ = SDL_OpenAudioDevice(nullptr, 1, &wanted, &got, 0);
    if (device_ != 0) SDL_PauseAudioDevice(device_, 0);
    return device_ != 0;
  }
  void Close() {
    if (device_ != 0) SDL_CloseAudioDevice(device_);
    device_ = 0;
  }
  ~Listener() { Close(); }

  void Await(Awaiting what) {
    seenAt_ = -1;
    awaiting_ = what;
  }
  // Seconds from `start` to what was awaited; negative when it never came.
  double SecondsSince(double start, double giveUp = 3.0) {
    while (awaiting_ != Awaiting::Nothing && Now() < start + giveUp) Sleep(0.0005);
    awaiting_ = Awaiting::Nothing;
    return seenAt_ < 0 ? -1 : seenAt_ - start;
  }
  void CountDropouts(bool on) {
    zeroRun_ = 0;
    counting_ = on;
  }
  int Dropouts() const { return dropouts_; }
  double LongestDropoutMs() const { return longest_ * 1000.0 / kCaptureRate; }

 private:
  static void SDLCALL OnCapture(void* self, Uint8* stream, int length) {
    static_cast<Listener*>(self)->Take(reinterpret_cast<const float*>(stream),
                                       length / static_cast<int>(2 * sizeof(float)));
  }

  void Take(const float* frames, int count) {
    const double now = Now();
    for (int i = 0; i < count; ++i) {
      const bool zero = frames[2 * i] == 0.0f && frames[2 * i + 1] == 0.0f;
      const double at = now - static_cast<double>(count - i) / kCaptureRate;
      Watch(zero, at);
      if (!counting_) continue;
      if (zero) {
        ++zeroRun_;
      } else {
        if (zeroRun_ >= kDropoutFrames) {
          ++dropouts_;
          longest_ = std::max(longest_, zeroRun_);
        }
        zeroRun_ = 0;
      }
    }
  }

  void Watch(bool zero, double at) {
    const Awaiting awaiting = awaiting_;
    if (awaiting == Awaiting::Sound && !zero) {
      seenAt_ = at;
      awaiting_ = Awaiting::Nothing;
    } else if (awaiting == Awaiting::Silence) {
      if (!zero) {
        silentRun_ = 0;
      } else if (++silentRun_ == 1) {
        silenceFrom_ = at;
      } else if (silentRun_ >= kSilenceFrames) {
        seenAt_ = silenceFrom_;
        awaiting_ = Awaiting::Nothing;
      }
    }
  }

  SDL_AudioDeviceID device_ = 0;
  std::atomic<Awaiting> awaiting_{Awaiting::Nothing};
  std::atomic<double> seenAt_{-1};
  int silentRun_ = 0;
  double silenceFrom_ = 0;
  std::atomic<bool> counting_{false};
  int zeroRun_ = 0;
  std::atomic<int> dropouts_{0};
  int longest_ = 0;
};

struct KeyCounter : quorble::WindowEvents {
  void Form_KeyDown(int) override {}
  void Form_CloseRequest() override {}
};

double Milliseconds(double seconds) { return seconds * 1000.0; }

void PrintTimes(const char* what, std::vector<double> seconds) {
  const auto failed = std::count_if(seconds.begin(), seconds.end(), [](double s) { return s < 0; });
  std::erase_if(seconds, [](double s) { return s < 0; });
  if (seconds.empty()) {
    std::printf("%s: never seen\n", what);
    return;
  }
  std::sort(seconds.begin(), seconds.end());
  std::printf("%s: median %.1f ms (min %.1f, max %.1f, %zu trials", what,
              Milliseconds(seconds[seconds.size() / 2]), Milliseconds(seconds.front()),
              Milliseconds(seconds.back()), seconds.size());
  if (failed > 0) std::printf(", %ld not seen", static_cast<long>(failed));
  std::printf(")\n");
}

// The key echo as the game makes it: cut all speech, say the key's letter.
std::vector<double> EchoOnsets(quorble::SpeechVoice& voice, Listener& listener, double pause) {
  std::vector<double> onsets;
  for (int trial = 0; trial < kTrials; ++trial) {
    voice.Speak("", SVSFPurgeBeforeSpeak);
    Sleep(pause);
    listener.Await(Listener::Awaiting::Sound);
    const double key = Now();
    voice.Speak("", SVSFPurgeBeforeSpeak);
    voice.Speak("r", SVSFlagsAsync);
    onsets.push_back(listener.SecondsSince(key));
    Sleep(0.3);
  }
  return onsets;
}

std::vector<double> PurgeSilences(quorble::SpeechVoice& voice, Listener& listener) {
  std::vector<double> silences;
  for (int trial = 0; trial < kTrials; ++trial) {
    voice.Speak(kLongText, SVSFlagsAsync);
    Sleep(0.5);
    listener.Await(Listener::Awaiting::Silence);
    const double key = Now();
    voice.Speak("", SVSFPurgeBeforeSpeak);
    silences.push_back(listener.SecondsSince(key));
  }
  return silences;
}

// How late the machine itself wakes a realtime thread, the audio thread's
// peer, while the dropouts are counted: a dropout no longer than such a
// stall is the machine's (a shared virtual machine's host takes its
// processors away at times), not the mixer's.
class StallWatch {
 public:
  StallWatch() : thread_([this] { Watch(); }) {}
  ~StallWatch() { Stop(); }
  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  StallWatch(const StallWatch&) = delete;
  StallWatch& operator=(const StallWatch&) = delete;
  double WorstMs() const { return worst_ * 1000.0; }
  int Over(double ms) const {
    return static_cast<int>(std::count_if(stalls_.begin(), stalls_.end(),
                                          [ms](double stall) { return stall * 1000.0 > ms; }));
  }

 private:
  void Watch() {
    sched_param param{};
    param.sched_priority = 10;  // as the mixer asks for its audio thread
    pthread_setschedparam(pthread_self(), SCHED_RR, &param);
    double due = Now();
    while (!stop_) {
      due += 0.001;
      const auto wait = std::chrono::duration<double>(due - Now());
      if (wait.count() > 0) std::this_thread::sleep_for(wait);
      const double late = Now() - due;
      worst_ = std::max(worst_.load(), late);
      if (late > 0.001) {
        stalls_.push_back(late);
        due = Now();
      }
    }
  }

  std::atomic<bool> stop_{false};
  std::atomic<double> worst_{0};
  std::vector<double> stalls_;
  std::thread thread_;
};

// Gaps between the mixer's periods: the audio thread's own view of a stall.
struct PeriodGaps {
  double last = 0, longest = 0;
  void Seen() {
    const double now = Now();
    if (last > 0) longest = std::max(longest, now - last);
    last = now;
  }
};

// The filler loop under speech, purges and dice, as in a busy stretch of
// play; the loop never falls silent, so any run of zeros is a dropout.
void Dropouts(DesktopPlatform& platform, quorble::SpeechVoice& voice, Listener& listener,
              const std::string& samples, const std::string& instructions, double seconds) {
  auto sound = platform.NewDirectX8()->DirectSoundCreate();
  auto loop = sound->CreateSoundBufferFromFile(samples + "/quorble7.wav", 224);
  loop->SetFrequency(loop->GetFrequency() + 1);
  loop->Play(quorble::DSBPLAY_LOOPING);
  Sleep(0.2);
  PeriodGaps gaps;
  platform.AudioMixer().SetPeriodObserver([&gaps](bool) { gaps.Seen(); });
  StallWatch stalls;
  listener.CountDropouts(true);
  const double end = Now() + seconds;
  for (int round = 0; Now() < end; ++round) {
    voice.Speak(instructions, SVSFlagsAsync);
    auto dice = sound->CreateSoundBufferFromFile(
        samples + "/quorble" + std::to_string(1 + round % 5) + ".wav", 224);
    dice->SetFrequency(loop->GetFrequency() + 1);
    dice->Play(0);
    Sleep(1.5);
    voice.Speak("", SVSFPurgeBeforeSpeak);
  }
  listener.CountDropouts(false);
  platform.AudioMixer().SetPeriodObserver(nullptr);
  stalls.Stop();
  loop->Stop();
  std::printf(
      "dropouts (1 ms or more of digital zero under the loop) in %.0f s: %d, longest %.1f ms\n",
      seconds, listener.Dropouts(), listener.LongestDropoutMs());
  std::printf("  longest gap between the mixer's periods: %.1f ms\n", gaps.longest * 1000.0);
  std::printf("  the machine's own stalls of a realtime thread: worst %.1f ms, %d over 5 ms\n",
              stalls.WorstMs(), stalls.Over(5.0));
}

double CpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// utime + stime of another process, from /proc; negative when unknown.
double ProcessCpuSeconds(long pid) {
  if (pid <= 0) return -1;
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
  const size_t close = text.rfind(')');
  if (close == std::string::npos) return -1;
  std::istringstream fields(text.substr(close + 2));
  std::string field;
  double user = 0, system = 0;
  for (int index = 3; fields >> field; ++index) {
    if (index == 14) user = std::atof(field.c_str());
    if (index == 15) {
      system = std::atof(field.c_str());
      break;
    }
  }
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

struct Idle {
  double game, server;  // percent of a core
};

template <typename Wait>
Idle MeasureIdle(long serverPid, double seconds, Wait wait) {
  const double gameBefore = CpuSeconds(), serverBefore = ProcessCpuSeconds(serverPid);
  const double end = Now() + seconds;
  while (Now() < end) wait(end);
  const double server = ProcessCpuSeconds(serverPid) - serverBefore;
  return {100.0 * (CpuSeconds() - gameBefore) / seconds,
          serverBefore < 0 ? -1 : 100.0 * server / seconds};
}

void IdleFigures(DesktopPlatform& platform, long serverPid) {
  KeyCounter keys;
  Sleep(1.5);  // the device closes after a second of silence
  std::printf("device open while idle: %s\n", platform.AudioMixer().DeviceOpen() ? "yes" : "no");
  const double seconds = 10;
  const Idle waiting = MeasureIdle(serverPid, seconds, [&](double end) {
    platform.WaitEvent(quorble::WaitFor::Key, end);
    platform.Pump(keys);
  });
  const Idle polling = MeasureIdle(serverPid, seconds, [&](double) {
    platform.Pump(keys);
    SDL_Delay(1);
  });
  std::printf("idle wait for a key, %.0f s: game %.3f %%, server %.3f %% of a core\n", seconds,
              waiting.game, waiting.server);
  std::printf("baseline, a wait polling every ms: game %.3f %%, server %.3f %% (ratio %.1f)\n",
              polling.game, polling.server,
              (polling.game + std::max(0.0, polling.server)) /
                  std::max(1e-3, waiting.game + std::max(0.0, waiting.server)));
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void PeakMemory(quorble::SpeechVoice& voice, const std::string& instructions) {
  voice.SetRate(10);
  voice.Speak(instructions, SVSFlagsAsync);
  Sleep(5);
  voice.Speak("", SVSFPurgeBeforeSpeak);
  voice.SetRate(0);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory (ru_maxrss) with the instructions read: %.1f MiB\n",
              static_cast<double>(usage.ru_maxrss) / 1024.0);
}

int Run(const std::string& samples, const std::string& instructions, long serverPid) {
  DesktopPlatform platform;
  std::printf("audio driver: %s, sound device: %s\n",
              SDL_GetCurrentAudioDriver() ? SDL_GetCurrentAudioDriver() : "none",
              platform.AudioMixer().HasDevice() ? "yes" : "none (clock thread)");
  auto voice = platform.NewSpVoice();
  std::printf("voices: %d\n", voice->VoiceCount());
  voice->SetVolume(95);
  voice->Speak(" ", 0);
  Listener listener;
  if (!listener.Open()) {
    std::printf("no capture device: onsets and dropouts are not measured (%s)\n", SDL_GetError());
  } else {
    PrintTimes("key echo onset at the sink, device open", EchoOnsets(*voice, listener, 0.2));
    PrintTimes("key echo onset at the sink, device closed", EchoOnsets(*voice, listener, 1.5));
    PrintTimes("purge to silence at the sink", PurgeSilences(*voice, listener));
    const char* seconds = std::getenv("QUORBLE_BENCH_SECONDS");
    Dropouts(platform, *voice, listener, samples, instructions, seconds ? std::atof(seconds) : 60);
    listener.Close();
  }
  IdleFigures(platform, serverPid);
  PeakMemory(*voice, instructions);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: quorble-bench SAMPLE_DIR INSTRUCTIONS_TEXT [SERVER_PID]\n");
    return 2;
  }
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  quorble::desktop::AskSoundServerLatency();  // before SDL's threads
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
    std::fprintf(stderr, "quorble-bench: %s\n", SDL_GetError());
    return 1;
  }
  int status = 1;
  try {
    status = Run(argv[1], ReadFile(argv[2]), argc > 3 ? std::atol(argv[3]) : 0);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorble-bench: %s\n", error.what());
  }
  SDL_Quit();
  return status;
}

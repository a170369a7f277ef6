// Prints how the desktop platform performs where a player would notice:
// how soon speech starts, how soon a purge silences it, what an idle wait
// for a key costs, and the peak memory. Run it with a display, or with
// SDL_VIDEODRIVER=dummy (whose event wait polls, so its idle figure is not
// the real one) and SDL_AUDIODRIVER=dummy.
#include <SDL.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <thread>
#include <vector>

#include "platform/desktop/desktop_platform.h"

namespace {

using quorble::SVSFlagsAsync;
using quorble::SVSFPurgeBeforeSpeak;
using quorble::desktop::DesktopPlatform;

constexpr int kTrials = 11;
constexpr const char* kText = " Press R, to roll the dice ";
constexpr auto kGiveUp = std::chrono::seconds(2);

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Watches the mixer's periods for the first one with, or without, speech.
class Probe {
 public:
  enum class Awaiting { Nothing, Speech, Silence };

  void OnPeriod(bool speechHeard) {
    const Awaiting awaiting = awaiting_.load();
    if ((awaiting == Awaiting::Speech && speechHeard) ||
        (awaiting == Awaiting::Silence && !speechHeard)) {
      seenAt_ = Now();
      awaiting_ = Awaiting::Nothing;
    }
  }

  void Await(Awaiting what) { awaiting_ = what; }

  // Seconds from `start` to the period awaited; negative when it never came.
  double SecondsSince(double start) {
    const auto giveUp = std::chrono::steady_clock::now() + kGiveUp;
    while (awaiting_ != Awaiting::Nothing) {
      if (std::chrono::steady_clock::now() > giveUp) return -1;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return seenAt_ - start;
  }

 private:
  std::atomic<Awaiting> awaiting_{Awaiting::Nothing};
  std::atomic<double> seenAt_{0};
};

struct KeyCounter : quorble::WindowEvents {
  int keys = 0;
  void Form_KeyDown(int) override { ++keys; }
  void Form_CloseRequest() override {}
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? -1 : values[values.size() / 2];
}

double Milliseconds(double seconds) { return seconds * 1000.0; }

void PrintMedian(const char* what, const std::vector<double>& seconds) {
  std::printf("%s: median %.2f ms (min %.2f, max %.2f)\n", what, Milliseconds(Median(seconds)),
              Milliseconds(*std::min_element(seconds.begin(), seconds.end())),
              Milliseconds(*std::max_element(seconds.begin(), seconds.end())));
}

void MeasureSpeech(DesktopPlatform& platform) {
  auto voice = platform.NewSpVoice();
  std::printf("voices: %d\n", voice->VoiceCount());
  // Without a device the clock thread stops at once on a purge, so there
  // is no silent period to wait for.
  const bool measureSilence = platform.AudioMixer().HasDevice();
  Probe probe;
  platform.AudioMixer().SetPeriodObserver([&probe](bool speech) { probe.OnPeriod(speech); });
  std::vector<double> onsets;
  std::vector<double> silences;
  for (int trial = 0; trial < kTrials; ++trial) {
    voice->Speak("", SVSFPurgeBeforeSpeak);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    probe.Await(Probe::Awaiting::Speech);
    const double spoken = Now();
    voice->Speak(kText, SVSFlagsAsync);
    onsets.push_back(probe.SecondsSince(spoken));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    if (measureSilence) probe.Await(Probe::Awaiting::Silence);
    const double purged = Now();
    voice->Speak("", SVSFPurgeBeforeSpeak);
    if (measureSilence) silences.push_back(probe.SecondsSince(purged));
  }
  platform.AudioMixer().SetPeriodObserver(nullptr);
  PrintMedian("speech onset, Speak to first period with speech", onsets);
  if (measureSilence) {
    PrintMedian("purge, Speak(\"\", 2) to first period without speech", silences);
  } else {
    std::printf("purge: no device, the clock thread stops at once\n");
  }
}

double CpuSeconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void MeasureIdle(DesktopPlatform& platform, double seconds) {
  KeyCounter keys;
  int waits = 0;
  const double processBefore = CpuSeconds(RUSAGE_SELF);
  const double threadBefore = CpuSeconds(RUSAGE_THREAD);
  const double end = Now() + seconds;
  while (Now() < end) {
    platform.WaitEvent(quorble::WaitFor::Key, std::numeric_limits<double>::infinity());
    platform.Pump(keys);
    ++waits;
  }
  const double process = CpuSeconds(RUSAGE_SELF) - processBefore;
  const double thread = CpuSeconds(RUSAGE_THREAD) - threadBefore;
  std::printf(
      "idle wait for a key, %.0f s: process %.1f ms cpu (%.3f %%), waiting thread %.1f ms, "
      "%d returns, %d keys\n",
      seconds, Milliseconds(process), 100.0 * process / seconds, Milliseconds(thread), waits,
      keys.keys);
}

void PrintPeakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory (ru_maxrss): %.1f MB\n", usage.ru_maxrss / 1024.0);
}

}  // namespace

int main(int argc, char** argv) {
  const double idleSeconds = argc > 1 ? std::atof(argv[1]) : 10.0;
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
    std::fprintf(stderr, "quorble-bench: %s\n", SDL_GetError());
    return 1;
  }
  int status = 0;
  try {
    DesktopPlatform platform;
    std::printf("video driver: %s, audio driver: %s, device: %s\n", SDL_GetCurrentVideoDriver(),
                SDL_GetCurrentAudioDriver() ? SDL_GetCurrentAudioDriver() : "none",
                platform.AudioMixer().HasDevice() ? "open" : "none (clock thread)");
    MeasureSpeech(platform);
    MeasureIdle(platform, idleSeconds);
    PrintPeakMemory();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorble-bench: %s\n", error.what());
    status = 1;
  }
  SDL_Quit();
  return status;
}

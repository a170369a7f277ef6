// Prints, side by side, how soon each speech backend is heard after a
// Speak and how soon a purge silences it, as a listener at the sound server
// would hear it: both are timed from the same recording of the server's
// null sink, so what the recording itself adds falls on both alike. Run it
// through bench/speech_backends.sh, which starts a private sound server and
// speech-dispatcher.
#include <SDL.h>
#include <pulse/simple.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/desktop/desktop_platform.h"

namespace {

using quorble::SVSFlagsAsync;
using quorble::SVSFPurgeBeforeSpeak;
using quorble::desktop::DesktopPlatform;
using quorble::desktop::SpeechBackend;

constexpr int kTrials = 15;
constexpr int kRate = 44100;
constexpr int kChunkFrames = 220;  // 5 ms
constexpr int kLoud = 200;         // a sample above this is speech, not noise
// Speech has pauses between words; only this much quiet in a row is silence.
constexpr double kSilenceSeconds = 0.15;
constexpr double kGiveUpSeconds = 3.0;
// No comma: a purge that fell in its pause would be timed as at once.
constexpr const char* kText = " Would you like to read the special key instructions? ";

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Records the sink's monitor and stamps each 5 ms chunk loud or quiet.
class Listener {
 public:
  explicit Listener(const char* device) {
    const pa_sample_spec format{PA_SAMPLE_S16LE, kRate, 2};
    pa_buffer_attr attr{};
    attr.maxlength = static_cast<uint32_t>(-1);
    attr.fragsize = kChunkFrames * 4;
    int error = 0;
    stream_ = pa_simple_new(nullptr, "quorble-bench", PA_STREAM_RECORD, device, "listener", &format,
                            nullptr, &attr, &error);
    if (stream_ != nullptr) thread_ = std::thread([this] { Run(); });
  }
  ~Listener() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    if (stream_ != nullptr) pa_simple_free(stream_);
  }
  bool Ok() const { return stream_ != nullptr; }

  // Seconds from `start` to the first loud chunk; negative when none came.
  double FirstLoudAfter(double start) {
    return Await(start, [](const std::vector<std::pair<double, bool>>& chunks, double from) {
      for (const auto& [at, loud] : chunks)
        if (at > from && loud) return at;
      return -1.0;
    });
  }

  // Seconds from `start` to the beginning of the first quiet stretch of
  // kSilenceSeconds; negative when none came.
  double SilentAfter(double start) {
    return Await(start, [](const std::vector<std::pair<double, bool>>& chunks, double from) {
      double quietSince = -1;
      for (const auto& [at, loud] : chunks) {
        if (at <= from) continue;
        if (loud) {
          quietSince = -1;
        } else if (quietSince < 0) {
          quietSince = at;
        } else if (at - quietSince >= kSilenceSeconds) {
          return quietSince;
        }
      }
      return -1.0;
    });
  }

 private:
  template <typename Find>
  double Await(double start, Find find) {
    while (Now() - start < kGiveUpSeconds) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      std::lock_guard lock(mutex_);
      const double at = find(chunks_, start);
      if (at >= 0) return at - start;
    }
    return -1;
  }

  void Run() {
    std::vector<int16_t> pcm(kChunkFrames * 2);
    int error = 0;
    while (!stop_) {
      if (pa_simple_read(stream_, pcm.data(), pcm.size() * 2, &error) < 0) return;
      const double at = Now();
      const bool loud =
          std::any_of(pcm.begin(), pcm.end(), [](int16_t s) { return std::abs(s) > kLoud; });
      std::lock_guard lock(mutex_);
      chunks_.emplace_back(at, loud);
      if (chunks_.size() > 4000) chunks_.erase(chunks_.begin(), chunks_.begin() + 2000);
    }
  }

  pa_simple* stream_ = nullptr;
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::vector<std::pair<double, bool>> chunks_;
  std::thread thread_;
};

double Median(std::vector<double> values) {
  values.erase(std::remove_if(values.begin(), values.end(), [](double v) { return v < 0; }),
               values.end());
  if (values.empty()) return -1;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Figures {
  double onset = -1;
  double silence = -1;
};

Figures Measure(SpeechBackend backend, Listener& listener) {
  DesktopPlatform platform(backend);
  auto voice = platform.NewSpVoice();
  voice->Speak(" ", 0);  // a first text loads the voice; not part of the figures
  std::vector<double> onsets, silences;
  for (int trial = 0; trial < kTrials; ++trial) {
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    const double spoken = Now();
    voice->Speak(kText, SVSFlagsAsync);
    const double onset = listener.FirstLoudAfter(spoken);
    onsets.push_back(onset);
    // Well inside the text, whichever backend started it sooner.
    std::this_thread::sleep_until(std::chrono::steady_clock::time_point(
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(spoken + std::max(onset, 0.0) + 0.6))));
    const double purged = Now();
    voice->Speak("", SVSFPurgeBeforeSpeak);
    silences.push_back(listener.SilentAfter(purged));
  }
  return {Median(onsets), Median(silences)};
}

}  // namespace

int main() {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
    std::fprintf(stderr, "quorble-speech-bench: %s\n", SDL_GetError());
    return 1;
  }
  const char* monitor = std::getenv("QUORBLE_BENCH_MONITOR");
  Listener listener(monitor ? monitor : "qnull.monitor");
  if (!listener.Ok()) {
    std::fprintf(stderr, "quorble-speech-bench: can't record the sound server's monitor\n");
    SDL_Quit();
    return 1;
  }
  const Figures espeak = Measure(SpeechBackend::Espeak, listener);
  const Figures dispatcher = Measure(SpeechBackend::Dispatcher, listener);
  std::printf("medians of %d, heard at the sound server   espeak-ng   speech-dispatcher   ratio\n",
              kTrials);
  std::printf("Speak to first sound                  %8.1f ms %12.1f ms %9.2f\n",
              espeak.onset * 1000, dispatcher.onset * 1000, dispatcher.onset / espeak.onset);
  std::printf("purge to silence                      %8.1f ms %12.1f ms %9.2f\n",
              espeak.silence * 1000, dispatcher.silence * 1000,
              dispatcher.silence / espeak.silence);
  SDL_Quit();
  return 0;
}

// Synthesises the game's eight sound samples at build time, so every build ships the same
// bytes and no recorded audio has to live in the repository.
//
// Usage: gensamples OUTDIR   (writes OUTDIR/quorble0.wav ... OUTDIR/quorble7.wav)

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <numbers>
#include <string>
#include <vector>

#include "file_names.h"
#include "little_endian.h"
#include "loudness.h"

namespace {

constexpr int kSampleRate = 22050;
constexpr double kTwoPi = 2.0 * std::numbers::pi;

// The game plays quorble5.wav from this byte of its sound data on (a buffer's offset, not the
// file's) as its own start-up sound, so the five-dice layout is anchored here: the last die is
// still rolling and its knock is to come.
constexpr int kTailStartSample = quorble::file_names::kSettlingTailOffset / 2;

// Positions in a signal are counted in int, as SamplesFor gives them; the one
// conversion to the vector's index is here, at its edge.
struct Signal : std::vector<double> {
  Signal(int length, double value) : std::vector<double>(static_cast<size_t>(length), value) {}
  double& operator[](int i) { return std::vector<double>::operator[](static_cast<size_t>(i)); }
  const double& operator[](int i) const {
    return std::vector<double>::operator[](static_cast<size_t>(i));
  }
};

int SamplesFor(double seconds) { return static_cast<int>(std::lround(seconds * kSampleRate)); }

double DbToGain(double db) { return std::pow(10.0, db / 20.0); }

// xorshift64*: the standard distributions are implementation-defined, so they could change
// the samples from one standard library to the next; this cannot.
class Rng {
 public:
  explicit Rng(uint64_t seed) : state_(seed != 0 ? seed : 1) {}

  double Uniform() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return static_cast<double>((state_ * 0x2545F4914F6CDD1DULL) >> 11) * 0x1.0p-53;
  }
  double Range(double low, double high) { return low + (high - low) * Uniform(); }

 private:
  uint64_t state_;
};

// Constant-peak band-pass biquad: shapes white noise into the short "tk" of a hard knock.
class BandPass {
 public:
  BandPass(double centreHz, double q) {
    const double w = kTwoPi * centreHz / kSampleRate;
    const double alpha = std::sin(w) / (2.0 * q);
    const double a0 = 1.0 + alpha;
    b0_ = alpha / a0;
    a1_ = -2.0 * std::cos(w) / a0;
    a2_ = (1.0 - alpha) / a0;
  }

  double Process(double in) {
    const double out = b0_ * (in - in2_) - a1_ * out1_ - a2_ * out2_;
    in2_ = in1_;
    in1_ = in;
    out2_ = out1_;
    out1_ = out;
    return out;
  }

 private:
  double b0_, a1_, a2_;
  double in1_ = 0, in2_ = 0, out1_ = 0, out2_ = 0;
};

// Raised-cosine gain from 0 to 1 as `progress` goes from 0 to 1: no corner, so no click.
double SmoothStep(double progress) {
  return 0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(progress, 0.0, 1.0));
}

// Starts at sine phase zero and runs until it is far below one LSB, so it neither begins nor
// ends with a jump of its own.
void AddDampedSine(Signal& out, int start, double freqHz, double amplitude, double decaySeconds) {
  const int length = SamplesFor(decaySeconds * 9.0);
  for (int i = 0; i < length && start + i < static_cast<int>(out.size()); ++i) {
    const double t = static_cast<double>(i) / kSampleRate;
    out[start + i] += amplitude * std::sin(kTwoPi * freqHz * t) * std::exp(-t / decaySeconds);
  }
}

void ApplyFades(Signal& signal, double fadeInSeconds, double fadeOutSeconds) {
  const int size = static_cast<int>(signal.size());
  const int fadeIn = std::max(1, SamplesFor(fadeInSeconds));
  const int fadeOut = std::max(1, SamplesFor(fadeOutSeconds));
  for (int i = 0; i < size; ++i) {
    const double inGain = SmoothStep(static_cast<double>(i) / fadeIn);
    const double outGain = SmoothStep(static_cast<double>(size - 1 - i) / fadeOut);
    signal[i] *= inGain * outGain;
  }
}

// The integrated loudness every sound of the game is brought to: each sample here, the dice
// throws to within half a unit, and each voice by its own gain, so no cue is buried under
// speech or jumps out of it, and no player is heard louder than another.
constexpr double kSpeechLufs = -21.0;
// Headroom kept above any peak, so that a sample mixed with speech doesn't clip.
constexpr double kHighestPeakDbfs = -1.0;

double PeakOf(const Signal& signal) {
  double peak = 0.0;
  for (double value : signal) peak = std::max(peak, std::abs(value));
  return peak;
}

// Brings the signal to `lufs`, or as near as the headroom allows: nothing is ever rounded off
// to get there, since that is heard as a crackle on every knock.
void NormalizeLoudness(Signal& signal, double lufs = kSpeechLufs) {
  const double peak = PeakOf(signal);
  if (peak == 0.0) return;
  const double before = quorble::loudness::IntegratedLoudness(signal, kSampleRate);
  const double gainDb = std::min(lufs - before, kHighestPeakDbfs - 20.0 * std::log10(peak));
  for (double& value : signal) value *= DbToGain(gainDb);
}

// ---------------------------------------------------------------------------------------------
// Dice

// Each die keeps its own resonances, in its landing, its roll and its knock, which is what lets
// the ear follow several dice at once.
struct DieVoice {
  std::array<double, 3> modeHz;
  double knockHz;
};

DieVoice MakeDieVoice(Rng& rng) {
  // A braced initialiser, unlike function arguments, evaluates its draws left to right.
  return {{rng.Range(1500, 2000), rng.Range(2400, 3000), rng.Range(3300, 4000)},
          rng.Range(3000, 5000)};
}

// The table, not the die, gives the low wooden body, so its modes are shared by every die.
constexpr std::array<double, 2> kTableModesHz = {170.0, 265.0};

// A damped sine that always starts upwards leaves a net offset behind; random polarity per
// mode cancels it out across the hits and avoids stacking every mode's first peak. Separate
// statements, because two draws in one expression would come in an unspecified order.
double SignedRange(Rng& rng, double low, double high) {
  const double sign = rng.Uniform() < 0.5 ? -1.0 : 1.0;
  return sign * rng.Range(low, high);
}

// One hit: a noise "tk", the die's own ringing, and `thump` of the table's body.
void AddClack(Signal& out, int start, const DieVoice& voice, double strength, double thump,
              Rng& rng) {
  BandPass knock(voice.knockHz, 0.9);
  const int burst = SamplesFor(0.005);
  for (int i = 0; i < burst && start + i < static_cast<int>(out.size()); ++i) {
    const double envelope = std::exp(-static_cast<double>(i) / SamplesFor(0.0008));
    out[start + i] += 0.6 * strength * envelope * knock.Process(rng.Range(-1, 1));
  }
  for (double mode : voice.modeHz) {
    // Each mode rings for about 18 of its own cycles, so the higher ones die away first.
    AddDampedSine(out, start, mode, strength * SignedRange(rng, 0.15, 0.35), 18.0 / mode);
  }
  for (double mode : kTableModesHz) {
    AddDampedSine(out, start, mode, thump * strength * SignedRange(rng, 0.25, 0.4), 0.05);
  }
}

// A die's final knock, as it tips flat: a full clack whose peak is `peak` whichever way its
// modes happen to meet, so that every die is heard as clearly as the others.
void AddKnock(Signal& out, int start, const DieVoice& voice, double peak, Rng& rng) {
  Signal knock(SamplesFor(0.4), 0.0);
  AddClack(knock, 0, voice, 1.0, 1.0, rng);
  const double scale = peak / PeakOf(knock);
  for (int i = 0; i < static_cast<int>(knock.size()) && start + i < static_cast<int>(out.size());
       ++i) {
    out[start + i] += scale * knock[i];
  }
}

// A die rolling over the table: its faces meet the wood quicker than the ear can count, so it
// is heard as one rough rustle in its own colour, never as knocks of its own that would spoil
// the count. It swells in, softens as the die slows, and hands over to the die's final knock.
void AddRoll(Signal& out, int from, int to, const DieVoice& voice, double level, Rng& rng) {
  BandPass body(voice.modeHz[0], 2.0);
  BandPass faces(voice.knockHz, 0.8);
  const double flutterHz = rng.Range(30.0, 36.0);
  double phase = rng.Range(0.0, kTwoPi);
  const int length = to - from;
  const int handOver = SamplesFor(0.01);
  for (int i = 0; i < length; ++i) {
    const double progress = static_cast<double>(i) / length;
    const double envelope =
        SmoothStep(progress / 0.2) * (1.0 - 0.5 * progress) *
        (1.0 - SmoothStep(static_cast<double>(i - (length - handOver)) / handOver));
    phase += kTwoPi * flutterHz / kSampleRate;
    const double flutter = 0.7 + 0.3 * std::sin(phase);
    const double noise = rng.Range(-1.0, 1.0);
    out[from + i] +=
        level * envelope * flutter * (body.Process(noise) + 0.6 * faces.Process(noise));
  }
}

// The first die comes to rest this long after the throw lands.
constexpr double kFirstRestSeconds = 0.22;
// The last knock of five dice comes this long after the start-up sound's offset, so that
// sound begins in the last die's roll and holds its knock alone.
constexpr double kLastKnockAfterTailSeconds = 0.025;
// After the last knock, time for its ring to die away and no more.
constexpr double kRingSeconds = 0.14;

// The dice come to rest one after another, each with a knock of its own, far enough apart to
// be counted: about eight a second, slow enough that five are not heard as a blur. More dice
// roll a little longer before the first rests.
std::vector<int> KnockTimes(int dice, Rng& rng) {
  const double lastOfFive =
      static_cast<double>(kTailStartSample) / kSampleRate + kLastKnockAfterTailSeconds;
  double at = kFirstRestSeconds + (lastOfFive - kFirstRestSeconds) * (dice - 1) / 4.0;
  std::vector<int> knocks(static_cast<size_t>(dice));
  for (int die = dice - 1; die >= 0; --die) {
    knocks[static_cast<size_t>(die)] = SamplesFor(at);
    at -= rng.Range(0.115, 0.135);
  }
  return knocks;
}

// A dip of a few milliseconds, too short to hear as a pause, lets a player started at `at`
// begin in silence.
void DipAt(Signal& signal, int at) {
  const int dip = SamplesFor(0.004);
  for (int i = std::max(0, at - dip); i < std::min(static_cast<int>(signal.size()), at + dip);
       ++i) {
    signal[i] *= SmoothStep(std::abs(i - at) / static_cast<double>(dip));
  }
}

// The dice strike the table together in a burst too quick to count, roll, and come to rest
// one by one, each with a clear knock: the number of dice is heard in the knocks.
Signal MakeDice(int dice) {
  Rng rng(0x51CE0000ULL + static_cast<uint64_t>(dice));
  std::vector<DieVoice> voices;
  for (int die = 0; die < dice; ++die) voices.push_back(MakeDieVoice(rng));
  const std::vector<int> knocks = KnockTimes(dice, rng);
  Signal out(knocks.back() + SamplesFor(kRingSeconds), 0.0);
  const int landing = SamplesFor(0.005);
  for (size_t die = 0; die < voices.size(); ++die) {
    const int at = landing + SamplesFor(rng.Range(0.0, 0.025));
    AddClack(out, at, voices[die], rng.Range(0.1, 0.14), 0.6, rng);
    // However many dice roll, together they rustle as loud, well below the knocks.
    AddRoll(out, at, knocks[die], voices[die], 0.16 / std::sqrt(static_cast<double>(dice)), rng);
    AddKnock(out, knocks[die], voices[die], rng.Range(0.9, 1.0), rng);
  }
  if (dice == 5) DipAt(out, kTailStartSample);
  ApplyFades(out, 0.002, 0.03);
  // Each die more makes the throw a shade louder, so more dice are never heard as quieter;
  // one or two dice, held back by their single knocks' peaks, fall a little short of it.
  NormalizeLoudness(out, kSpeechLufs + 0.25 * (dice - 3));
  return out;
}

// ---------------------------------------------------------------------------------------------
// Fanfare

// Brass-like note: upper harmonics bloom later than the fundamental and fade sooner, and a
// slow-starting vibrato keeps the held chord alive.
void AddBrassNote(Signal& out, double startSeconds, double freqHz, double holdSeconds,
                  double releaseSeconds, double loudness) {
  const int start = SamplesFor(startSeconds);
  const int length = SamplesFor(holdSeconds + releaseSeconds);
  for (int harmonic = 1; harmonic * freqHz < 9000.0; ++harmonic) {
    const double weight = loudness / std::pow(harmonic, 1.15);
    const double attack = 0.012 + 0.005 * harmonic;
    double phase = 0.0;
    for (int i = 0; i < length && start + i < static_cast<int>(out.size()); ++i) {
      const double t = static_cast<double>(i) / kSampleRate;
      const double swell = SmoothStep(t / attack) * (0.8 + 0.2 * std::exp(-t / 0.12));
      const double release =
          1.0 - SmoothStep((t - holdSeconds) / (releaseSeconds * (0.4 + 0.6 / harmonic)));
      const double vibrato = 0.004 * SmoothStep((t - 0.25) / 0.3) * std::sin(kTwoPi * 5.5 * t);
      phase += kTwoPi * harmonic * freqHz * (1.0 + vibrato) / kSampleRate;
      out[start + i] += weight * swell * release * std::sin(phase);
    }
  }
}

Signal MakeFanfare() {
  constexpr double kC5 = 523.25, kE5 = 659.26, kG5 = 783.99, kC6 = 1046.50;
  Signal out(SamplesFor(1.35), 0.0);
  // Short releases keep the arpeggio notes apart, so the rise is heard note by note.
  constexpr double kStep = 0.085;
  const std::array<double, 3> arpeggio = {kC5, kE5, kG5};
  for (size_t note = 0; note < arpeggio.size(); ++note) {
    AddBrassNote(out, 0.01 + kStep * static_cast<double>(note), arpeggio[note], 0.06, 0.04, 1.0);
  }
  for (double freq : {kC5, kE5, kG5, kC6}) {
    AddBrassNote(out, 0.01 + kStep * 3, freq, 0.8, 0.2, 0.45);
  }
  // A low section under the chord gives it body: root and fifth an octave down, and the
  // root two octaves down, entering with the chord.
  constexpr double kC3 = 130.81, kC4 = 261.63, kG4 = 392.0;
  for (double freq : {kC4, kG4}) AddBrassNote(out, 0.01 + kStep * 3, freq, 0.8, 0.2, 0.4);
  AddBrassNote(out, 0.01 + kStep * 3, kC3, 0.8, 0.25, 0.5);
  ApplyFades(out, 0.003, 0.05);
  NormalizeLoudness(out);
  return out;
}

// ---------------------------------------------------------------------------------------------
// Selection tick and loading loop

// Heard on every die selection, so it is rounder and lower than a dice clack.
Signal MakeTick() {
  Rng rng(0x71C4ULL);
  Signal out(SamplesFor(0.08), 0.0);
  AddDampedSine(out, 0, 1700.0, 1.0, 0.004);
  AddDampedSine(out, 0, 760.0, 0.6, 0.009);
  BandPass knock(2600.0, 1.2);
  for (int i = 0; i < SamplesFor(0.003); ++i) {
    out[i] += 0.5 * std::exp(-static_cast<double>(i) / SamplesFor(0.0007)) *
              knock.Process(rng.Range(-1, 1));
  }
  ApplyFades(out, 0.0015, 0.02);
  NormalizeLoudness(out);
  return out;
}

// Every partial and the tremolo complete a whole number of cycles over the loop, so the
// sample after the last one would be the first one again: the loop has no seam.
Signal MakeLoadingLoop() {
  constexpr int kLoopSamples = 2 * kSampleRate;
  struct Partial {
    int cycles;  // per loop, i.e. twice the frequency in Hz
    double amplitude;
    double phase;
  };
  // A soft G major triad; the twin one cycle above each note beats gently against it.
  constexpr std::array<Partial, 7> kPartials = {{{392, 1.0, 0.0},
                                                 {393, 0.35, 1.1},
                                                 {494, 0.6, 0.4},
                                                 {495, 0.2, 2.3},
                                                 {587, 0.55, 0.9},
                                                 {588, 0.2, 1.7},
                                                 {784, 0.12, 0.3}}};
  constexpr int kTremoloCycles = 2;
  Signal out(kLoopSamples, 0.0);
  for (int i = 0; i < kLoopSamples; ++i) {
    const double position = static_cast<double>(i) / kLoopSamples;
    double value = 0.0;
    for (const Partial& partial : kPartials) {
      value += partial.amplitude * std::sin(kTwoPi * partial.cycles * position + partial.phase);
    }
    out[i] = value * (1.0 + 0.25 * std::sin(kTwoPi * kTremoloCycles * position));
  }
  NormalizeLoudness(out);
  return out;
}

// ---------------------------------------------------------------------------------------------
// Output

void PutTag(std::vector<char>& bytes, const char* tag) { bytes.insert(bytes.end(), tag, tag + 4); }

bool WriteWav(const std::filesystem::path& path, const Signal& signal) {
  const auto dataBytes = static_cast<uint32_t>(signal.size() * 2);
  std::vector<char> bytes;
  PutTag(bytes, "RIFF");
  quorble::AppendLittleEndian(bytes, 36 + dataBytes, 4);
  PutTag(bytes, "WAVE");
  PutTag(bytes, "fmt ");
  quorble::AppendLittleEndian(bytes, 16, 4);               // fmt chunk size
  quorble::AppendLittleEndian(bytes, 1, 2);                // PCM
  quorble::AppendLittleEndian(bytes, 1, 2);                // mono
  quorble::AppendLittleEndian(bytes, kSampleRate, 4);      // frames per second
  quorble::AppendLittleEndian(bytes, kSampleRate * 2, 4);  // bytes per second
  quorble::AppendLittleEndian(bytes, 2, 2);                // block align
  quorble::AppendLittleEndian(bytes, 16, 2);               // bits per sample
  PutTag(bytes, "data");
  quorble::AppendLittleEndian(bytes, dataBytes, 4);
  for (double value : signal) {
    const long sample = std::lround(std::clamp(value, -1.0, 1.0) * 32767.0);
    quorble::AppendLittleEndian(bytes, static_cast<uint32_t>(static_cast<int16_t>(sample)), 2);
  }
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " OUTDIR\n";
    return 2;
  }
  const std::filesystem::path outDir = argv[1];
  // Not checked here: an unusable directory is reported below, naming the file that failed.
  std::error_code ignored;
  std::filesystem::create_directories(outDir, ignored);

  const std::array<std::function<Signal()>, 8> makers = {
      MakeFanfare,
      [] { return MakeDice(1); },
      [] { return MakeDice(2); },
      [] { return MakeDice(3); },
      [] { return MakeDice(4); },
      [] { return MakeDice(5); },
      MakeTick,
      MakeLoadingLoop,
  };
  for (size_t index = 0; index < makers.size(); ++index) {
    const auto path = outDir / quorble::file_names::Sample(static_cast<int>(index));
    if (!WriteWav(path, makers[index]())) {
      std::cerr << "gensamples: cannot write " << path << "\n";
      return 1;
    }
  }
  return 0;
}

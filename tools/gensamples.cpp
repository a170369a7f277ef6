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
#include <tuple>
#include <utility>
#include <vector>

#include "file_names.h"
#include "little_endian.h"
#include "loudness.h"

namespace {

constexpr int kSampleRate = 22050;
constexpr double kTwoPi = 2.0 * std::numbers::pi;

// The game plays quorble5.wav from this byte offset on as its own start-up sound, so the
// five-dice layout is anchored here: the impacts are over and the gentle settling begins.
constexpr int kTailOffsetBytes = quorble::file_names::kSettlingTailOffset;
constexpr int kTailStartSample = kTailOffsetBytes / 2;

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

// The integrated loudness of the engine's default voice as the game plays it: every sample
// is brought to it, the dice throws to within half a unit of it, so no cue is buried under
// speech or jumps out of it.
constexpr double kSpeechLufs = -21.0;
// Headroom kept above any peak, so that a sample mixed with speech doesn't clip.
constexpr double kHighestPeakDbfs = -1.0;

double PeakOf(const Signal& signal) {
  double peak = 0.0;
  for (double value : signal) peak = std::max(peak, std::abs(value));
  return peak;
}

// Rounds off what rises above `knee`: below it nothing changes, above it values approach
// twice the knee.
void SoftenAbove(Signal& signal, double knee) {
  for (double& value : signal) {
    const double size = std::abs(value);
    if (size <= knee) continue;
    value = std::copysign(knee + knee * std::tanh((size - knee) / knee), value);
  }
}

// Brings the signal to `lufs`, or as near as the headroom allows; returns the loudness reached.
double NormalizeLoudness(Signal& signal, double lufs = kSpeechLufs) {
  const double peak = PeakOf(signal);
  if (peak == 0.0) return -70.0;
  const double before = quorble::loudness::IntegratedLoudness(signal, kSampleRate);
  const double gainDb = std::min(lufs - before, kHighestPeakDbfs - 20.0 * std::log10(peak));
  for (double& value : signal) value *= DbToGain(gainDb);
  return before + gainDb;
}

// A throw's few sharpest knocks alone would hold it below `lufs` for want of headroom, so they
// are rounded off: as little as gets it there, the knee found by halving the range it lies in.
void BringThrowTo(Signal& signal, double lufs) {
  constexpr double kCloseEnough = 0.01;
  Signal best = signal;
  if (NormalizeLoudness(best, lufs) >= lufs - kCloseEnough) {
    signal = std::move(best);
    return;
  }
  const double peak = PeakOf(signal);
  double lowKnee = 0.05, highKnee = 1.0;  // fractions of the peak; the high one falls short
  for (int step = 0; step < 12; ++step) {
    const double knee = 0.5 * (lowKnee + highKnee);
    Signal trial = signal;
    SoftenAbove(trial, knee * peak);
    if (NormalizeLoudness(trial, lufs) >= lufs - kCloseEnough) {
      lowKnee = knee;
      best = std::move(trial);
    } else {
      highKnee = knee;
    }
  }
  signal = std::move(best);
}

// ---------------------------------------------------------------------------------------------
// Dice

// Each die keeps its own resonances through all its bounces, which is what lets the ear follow
// several dice at once.
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

// One hit: a noise "tk", the die's own ringing, and `thump` of the table's body (soft
// touches barely move the table).
void AddClack(Signal& out, int start, const DieVoice& voice, double strength, double thump,
              Rng& rng) {
  BandPass knock(voice.knockHz, 0.9);
  const int burst = SamplesFor(0.005);
  for (int i = 0; i < burst && start + i < static_cast<int>(out.size()); ++i) {
    const double envelope = std::exp(-static_cast<double>(i) / SamplesFor(0.0008));
    out[start + i] += 0.9 * strength * envelope * knock.Process(rng.Range(-1, 1));
  }
  for (double mode : voice.modeHz) {
    // Which face or edge lands changes the balance of modes from one bounce to the next; each
    // mode rings for about 18 of its own cycles, so the higher ones die away first.
    AddDampedSine(out, start, mode, strength * SignedRange(rng, 0.15, 0.35), 18.0 / mode);
  }
  for (double mode : kTableModesHz) {
    AddDampedSine(out, start, mode, thump * strength * SignedRange(rng, 0.25, 0.4), 0.022);
  }
}

// The bounces of a dropped die, in samples after it first lands: each bounce loses height, so
// both the gap before the next one and the loudness shrink geometrically. The last entry is
// where it comes to lie, with no knock of its own.
struct Bounce {
  int offset;
  double amplitude;
};

std::vector<Bounce> BouncesOfADrop(double strength, Rng& rng) {
  std::vector<Bounce> bounces;
  double gapSeconds = rng.Range(0.10, 0.13);
  double amplitude = strength;
  int offset = 0;
  while (gapSeconds > 0.014) {
    bounces.push_back({offset, amplitude});
    offset += SamplesFor(gapSeconds);
    gapSeconds *= rng.Range(0.48, 0.58);
    amplitude *= rng.Range(0.5, 0.6);
  }
  bounces.push_back({offset, 0.0});
  return bounces;
}

// A die rocking on an edge: ever quicker, ever softer ticks, paced so that the series fills
// the time up to `end`, neither cut off mid-rock nor leaving a pause before it.
void AddRockingDie(Signal& out, int start, int end, const DieVoice& voice, double strength,
                   Rng& rng) {
  constexpr double kLastGapSeconds = 0.01;
  const double availableSeconds = static_cast<double>(end - start) / kSampleRate;
  const double firstGap = std::min(rng.Range(0.09, 0.12), 0.26 * availableSeconds);
  // The gaps above the last one add up to (first - last) / (1 - shrink).
  const double shrink = std::max(0.74, 1.0 - (firstGap - kLastGapSeconds) / availableSeconds);
  // The ticks fade by about 12 dB over the series, however many there are.
  const double ticks = std::log(kLastGapSeconds / firstGap) / std::log(shrink);
  const double fade = std::pow(0.25, 1.0 / std::max(1.0, ticks));
  double gapSeconds = firstGap;
  double amplitude = strength;
  for (int at = start; at < end && gapSeconds > kLastGapSeconds; at += SamplesFor(gapSeconds)) {
    AddClack(out, at, voice, amplitude, 0.3, rng);
    gapSeconds *= shrink;
    amplitude *= fade * rng.Range(0.97, 1.03);
  }
}

// Only bounces this loud, against the die's first landing, stand out of a throw; the softer
// ones blur into its rattle wherever they fall.
constexpr double kProminentBounce = 0.4;
// Two knocks closer than this fuse into one to the ear.
constexpr int kEarResolution = kSampleRate / 20;

// A die thrown a little higher or lower bounces with longer or shorter gaps. The throw as
// drawn is tried first, the highest last.
constexpr std::array<double, 5> kHeights = {1.0, 0.9, 1.1, 0.8, 1.2};

std::vector<Bounce> Thrown(std::vector<Bounce> bounces, double height) {
  for (Bounce& bounce : bounces) {
    bounce.offset = static_cast<int>(std::lround(bounce.offset * height));
  }
  return bounces;
}

// The gap between the nearest prominent bounce of a die dropped at `at` and any knock heard so
// far, capped at what the ear resolves.
int NearestKnock(const std::vector<int>& heard, const std::vector<Bounce>& bounces, int at) {
  int nearest = kEarResolution;
  for (const Bounce& bounce : bounces) {
    if (bounce.amplitude < kProminentBounce * bounces.front().amplitude) continue;
    for (int knock : heard) nearest = std::min(nearest, std::abs(at + bounce.offset - knock));
  }
  return nearest;
}

// The earliest moment within [from, to], and the height, at which a die lands clear of the
// knocks already heard, or failing one, the clearest.
std::pair<int, std::vector<Bounce>> ClearestDrop(const std::vector<int>& heard,
                                                 const std::vector<Bounce>& bounces, int from,
                                                 int to) {
  std::pair<int, std::vector<Bounce>> best = {from, bounces};
  int bestGap = -1;
  for (int at = from; at <= to && bestGap < kEarResolution; at += SamplesFor(0.002)) {
    for (double height : kHeights) {
      std::vector<Bounce> thrown = Thrown(bounces, height);
      const int gap = NearestKnock(heard, thrown, at);
      if (gap > bestGap) best = {at, std::move(thrown)}, bestGap = gap;
      if (gap >= kEarResolution) break;
    }
  }
  return best;
}

// Every die dropped in turn, each where its landing and first bounce are heard apart from the
// knocks of the dice before it, all down by `lastRest`. Returns where each one comes to lie.
std::vector<int> DropDice(Signal& impacts, const std::vector<DieVoice>& voices, int lastRest,
                          Rng& rng) {
  std::vector<std::vector<Bounce>> drops;
  for (size_t die = 0; die < voices.size(); ++die) {
    drops.push_back(BouncesOfADrop(die == 0 ? 1.0 : rng.Range(0.75, 0.95), rng));
  }
  const int first = SamplesFor(0.01);
  const int span = lastRest - drops.back().back().offset - first;
  const int slot = voices.size() > 1 ? span / static_cast<int>(voices.size() - 1) : 0;
  std::vector<int> heard, rests;
  int dropAt = first;
  for (size_t die = 0; die < voices.size(); ++die) {
    if (die > 0) {
      const int centre = first + slot * static_cast<int>(die);
      const int from = std::max(dropAt + kEarResolution, centre - slot / 2);
      const int longest = Thrown(drops[die], kHeights.back()).back().offset;  // highest throw
      const int to = std::min(centre + slot / 2, lastRest - longest);
      std::tie(dropAt, drops[die]) = ClearestDrop(heard, drops[die], from, std::max(from, to));
    }
    for (auto bounce = drops[die].begin(); bounce + 1 != drops[die].end(); ++bounce) {
      AddClack(impacts, dropAt + bounce->offset, voices[die], bounce->amplitude, 1.0, rng);
      if (bounce->amplitude >= kProminentBounce * drops[die].front().amplitude)
        heard.push_back(dropAt + bounce->offset);
    }
    rests.push_back(dropAt + drops[die].back().offset);
    // Dice landing among dice already down knock against them: small, bright, no body.
    if (die > 0) AddClack(impacts, rests.back(), voices[die - 1], 0.25, 0.0, rng);
  }
  return rests;
}

// Each die rocks from where it lands, while the others still fall: the throw is heard as one
// continuous sound, with no pause between the falling and the settling. Then the dice tip
// flat one after the other, each with a knock of its own, the last one a little before the
// end: a throw of more dice is heard settling for longer.
Signal SettleDice(const std::vector<DieVoice>& voices, const std::vector<int>& landings,
                  int settleAt, int length, Rng& rng) {
  Signal settling(length, 0.0);
  std::vector<int> flat(voices.size(), length - SamplesFor(0.06));
  for (size_t die = voices.size() - 1; die > 0; --die) {
    flat[die - 1] = flat[die] - SamplesFor(rng.Range(0.06, 0.09));
  }
  // The rattles of all dice together stay half as loud as one tip, so they never drown a
  // bounce or a tip.
  const double rattle = 0.5 / std::sqrt(static_cast<double>(voices.size()));
  for (size_t die = 0; die < voices.size(); ++die) {
    const double strength = rng.Range(0.2, 0.26);
    const int start = std::min(landings[die] + SamplesFor(0.02), settleAt);
    AddRockingDie(settling, start, flat[die], voices[die], rattle * strength, rng);
    AddClack(settling, flat[die], voices[die], strength, 0.5, rng);
  }
  // A dip of a few milliseconds at the settle point, too short to hear as a pause, lets a
  // player started there begin in silence.
  const int dip = SamplesFor(0.004);
  for (int i = std::max(0, settleAt - dip); i < std::min(length, settleAt + dip); ++i) {
    settling[i] *= SmoothStep(std::abs(i - settleAt) / static_cast<double>(dip));
  }
  return settling;
}

// Impacts up to a settle point, then a separate, quiet settling layer. The impacts are faded
// to exact silence at the settle point, so a player started there begins cleanly: on five
// dice what is heard from there on is the start-up sound of its own.
Signal MakeDice(int dice) {
  Rng rng(0x51CE0000ULL + static_cast<uint64_t>(dice));
  const int settleAt = kTailStartSample - (5 - dice) * SamplesFor(0.14);
  const int settleLength = SamplesFor(0.25 + 0.11 * (dice - 1));
  const int length = settleAt + settleLength;

  std::vector<DieVoice> voices;
  for (int die = 0; die < dice; ++die) voices.push_back(MakeDieVoice(rng));

  Signal impacts(length, 0.0);
  const std::vector<int> landings = DropDice(impacts, voices, settleAt - SamplesFor(0.06), rng);
  const int fade = SamplesFor(0.04);
  for (int i = settleAt - fade; i < length; ++i) {
    impacts[i] *= 1.0 - SmoothStep(static_cast<double>(i - (settleAt - fade)) / fade);
  }
  const Signal settling = SettleDice(voices, landings, settleAt, length, rng);
  for (int i = 0; i < length; ++i) impacts[i] += settling[i];
  ApplyFades(impacts, 0.002, 0.03);
  // Each die more makes the throw a shade louder, so more dice are never heard as quieter;
  // all stay within half a loudness unit of speech.
  BringThrowTo(impacts, kSpeechLufs + 0.25 * (dice - 3));
  return impacts;
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

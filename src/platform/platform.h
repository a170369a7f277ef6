// The one seam between the game and the machine it runs on. The game calls
// nothing else: no library, no clock, no file system. Two implementations
// stand behind it, the desktop (SDL2 and espeak-ng) and the simulator that
// the tests drive. The operations keep the shapes the game was designed
// around, so the game code reads like its design.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace quorble {

// The most ReadFile takes of a file the game itself writes: none comes near
// it, a 5,000-character name included.
inline constexpr std::size_t kGameFileLimit = std::size_t{1} << 20;

// Flags for SpeechVoice::Speak.
inline constexpr int SVSFDefault = 0;           // wait until all queued speech is heard
inline constexpr int SVSFlagsAsync = 1;         // queue and return at once
inline constexpr int SVSFPurgeBeforeSpeak = 2;  // with no text: silence and empty the queue
inline constexpr int SRSEIsSpeaking = 2;        // RunningState while anything sounds

// Flags and states of a sound buffer.
inline constexpr int DSBPLAY_LOOPING = 1;
inline constexpr int DSBSTATUS_PLAYING = 1;
inline constexpr int DSSCL_PRIORITY = 2;
inline constexpr int DSBCAPS_CTRLFREQUENCY = 32;
inline constexpr int DSBCAPS_CTRLPAN = 64;
inline constexpr int DSBCAPS_CTRLVOLUME = 128;

// A speech object. Every object of one platform speaks into one shared
// queue: an object that replaces another lets what the old one queued run
// on in its own voice, and a purge from any object empties the whole queue.
class SpeechVoice {
 public:
  virtual ~SpeechVoice() = default;
  virtual int VoiceCount() = 0;          // the list of voices: its Count
  virtual void SetVoice(int index) = 0;  // later speech in voice Item(index)
  virtual void SetRate(int rate) = 0;    // -10 a third, +10 three times normal
  virtual void SetVolume(int volume) = 0;
  virtual void Speak(const std::string& text, int flags) = 0;
  virtual int RunningState() = 0;
};

// One sample, loaded whole from a file. Destroying it releases it.
class SoundBuffer {
 public:
  virtual ~SoundBuffer() = default;
  virtual int GetFrequency() = 0;
  virtual void SetCurrentPosition(int bytes) = 0;
  virtual void SetVolume(int volume) = 0;
  virtual void SetPan(int pan) = 0;
  virtual void SetFrequency(int hz) = 0;
  virtual void Play(int flags) = 0;
  virtual int GetStatus() = 0;
  virtual void Stop() = 0;
};

class DirectSound8 {
 public:
  virtual ~DirectSound8() = default;
  virtual void SetCooperativeLevel(int level) = 0;
  // A file that is missing or can't be read gives a buffer of silence
  // with no length, so the game never stops on a sample.
  virtual std::unique_ptr<SoundBuffer> CreateSoundBufferFromFile(const std::string& path,
                                                                 int flags) = 0;
};

class DirectX8 {
 public:
  virtual ~DirectX8() = default;
  virtual std::unique_ptr<DirectSound8> DirectSoundCreate() = 0;
};

// Where the window delivers what happens to it.
class WindowEvents {
 public:
  virtual ~WindowEvents() = default;
  virtual void Form_KeyDown(int keyCode) = 0;
  virtual void Form_CloseRequest() = 0;
};

// What a wait may be ended by, besides a window event. The simulator moves
// its clock by this; the desktop wakes on any of them.
enum class WaitFor {
  Key,     // only a key can end it: no deadline
  Time,    // the deadline
  Sound,   // the end of the sample playing once
  Speech,  // the end of all queued speech
};

struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
};

class Platform {
 public:
  virtual ~Platform() = default;

  // The window.
  virtual void Show(const std::string& caption) = 0;
  // Delivers every event waiting for the window, then returns.
  virtual void Pump(WindowEvents& events) = 0;
  // Blocks until an event may be waiting, the thing awaited has happened,
  // or `deadline` (on Monotonic's scale) has passed. Never spins.
  virtual void WaitEvent(WaitFor what, double deadline) = 0;
  virtual void MessageBox(const std::string& text) = 0;
  virtual void Beep() = 0;

  // Clock and random numbers.
  virtual double Monotonic() = 0;  // seconds; never goes back, not even at midnight
  virtual double Timer() = 0;      // seconds since local midnight
  virtual Date Today() = 0;
  virtual void Randomize(double seed) = 0;
  virtual float Rnd() = 0;  // 0 <= r < 1

  // Speech and sound.
  virtual std::unique_ptr<SpeechVoice> NewSpVoice() = 0;
  virtual std::unique_ptr<DirectX8> NewDirectX8() = 0;

  // Shell and operating system. Paths are joined with "/".
  virtual std::string DocumentsFolder() = 0;  // empty when the user has none
  virtual std::string CurrentDirectory() = 0;
  virtual std::string ProgramFolder() = 0;
  // The real name of the entry at `path`, matched blind to case as the
  // game's files always were; empty when there is none. Directories count
  // only when asked for.
  virtual std::string FindName(const std::string& path, bool directories) = 0;
  virtual bool MakeDirectory(const std::string& path) = 0;
  // Every change below is durable once it has returned true: a power cut
  // afterwards can't undo it.
  virtual bool DeleteFile(const std::string& path) = 0;
  // Never replaces what is already at `to`: false then, and nothing moves.
  virtual bool RenameFile(const std::string& from, const std::string& to) = 0;
  // Nothing for a file that can't be read, that is no regular file, or
  // that is over `limit` bytes: a planted giant is refused unread.
  virtual std::optional<std::string> ReadFile(const std::string& path, std::size_t limit) = 0;
  // Writes through a temporary file renamed over the old one, so that a
  // crash or a full disk never leaves a torn file. False changes nothing.
  virtual bool WriteFile(const std::string& path, const std::string& bytes) = 0;
  virtual bool AppendFile(const std::string& path, const std::string& bytes) = 0;
  // Claims `folder` for this run, so that two copies of the game never
  // write the same files. False only when another running copy holds it;
  // a folder where no claim can be made at all is no reason to refuse. The
  // claim lasts until the platform ends, and dies with the process.
  virtual bool LockDataFolder(const std::string& folder) = 0;
  virtual void Launch(const std::string& path, int windowStyle) = 0;
};

}  // namespace quorble

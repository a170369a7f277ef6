// The game's one record and the one object whose methods make up the game.
// Arrays are declared from index 0 and used from index 1, so that indices
// read as the players, rows, sheets and dice they stand for.
#pragma once

#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "keys.h"
#include "platform/platform.h"

namespace quorble {

inline constexpr int kMaxPlayers = 10;  // declared bound; nine can be entered
inline constexpr int kRows = 14;
inline constexpr int kSheets = 3;
inline constexpr int kDice = 5;

struct GameState {
  // Key and text fields.
  std::string g;   // last key code as decimal text; empty while none
  std::string g2;  // the character of that code, lower case
  std::string r;   // text typed in getter
  std::string dp;  // the data folder

  // Number fields.
  int fq = 0;
  int yorn = 0;
  int vr = 0;
  int nv = 0;
  int nov = 0;
  int g2p = 0;
  int p1 = 0;
  int p2 = 0;
  int nop = 0;
  int pup = 0;
  int kd = 0;
  int fnf = 0;
  int ck = 0;

  // Arrays.
  std::array<std::array<std::array<int, kSheets + 1>, kRows + 1>, kMaxPlayers + 1> sheet{};
  std::array<std::string, kRows + 1> titles;
  std::array<std::string, kMaxPlayers + 1> names;
  std::array<int, kDice + 1> dye{};
  std::array<int, kDice + 1> dyecopy{};
  std::array<int, kMaxPlayers + 1> pv{};
  std::array<int, kMaxPlayers + 1> pr{};

  // Platform objects.
  std::unique_ptr<SpeechVoice> Voice;
  std::unique_ptr<DirectX8> dx8;
  std::unique_ptr<DirectSound8> ds8;
  std::unique_ptr<SoundBuffer> sbuf;
  int sbdesc = 0;

  // Driver fields.
  std::array<int, kMaxPlayers + 1> fin{};
  int nfin = 0;
  std::array<int, kMaxPlayers + 1> tot{};
  std::array<int, 8> cnt{};
  int pts = 0;
  int nroll = 0;
  std::string fpath;
  std::string msg;
  int winner = 0;
  int logged = 0;
};

// A number as the game speaks and writes it: a blank before a number that
// is not negative, a minus sign before one that is, nothing behind.
std::string nt(int n);

// The value of five dice on a row of the board, 0 when they don't fit.
int RowValue(const std::array<int, kDice + 1>& dice, int row);

// How a game run ends, and so which way through the tail it takes.
enum class Exit { Leave, Save, GameOver, NoVoices };

// Answer of a yes/no prompt: yes, no, or a key that the prompt doesn't know.
enum class Answer { Yes, No, Other };

struct YesNoPlace;
// How the roll prompt is left, and how a look at the dice ends.
enum class AtPrompt { Roll, Leave, Save };
enum class Review { Keep, Roll, Leave };
// Where the score board speaks again from: " score " and on, the sheet and
// on, or the row alone.
enum class SpeakFrom { Title, Sheet, Row };
// How Enter on the score board ends: the dice scored there, the row already
// holding a score, or the score refused (the board starts over).
enum class RowChoice { Scored, Filled, Refused };

class Form1 : public GameState, private WindowEvents {
 public:
  explicit Form1(Platform& platform) : plat(platform) {}
  Form1(const Form1&) = delete;
  Form1& operator=(const Form1&) = delete;

  // The whole run of the program; its return is the end of the process.
  void Form_Load();

  // Key capture and waits.
  void Form_KeyDown(int keyCode) override;
  void Form_CloseRequest() override;
  void clk();
  void getkey();
  void dy(double seconds);
  void dy3(double seconds);

  // Speech and samples.
  void say(const std::string& text);
  void say2(const std::string& text);
  void stopspeech();
  void saykey();
  void setvoice();
  void play(int a);
  void play2(int a);
  void playspec();
  void adjrate();
  void changevoice(int a);

  // Prompts and set-up.
  void getter(const std::string& prompt);
  void checkname(int a);
  void GetGame();
  void GetNop();
  void askins();
  void readins();
  void askspekey();
  void spekey();

  // Rules.
  void PickDye();
  void SetSheet();
  void GetTits();

  // Turn screens.
  void SayAllDye();
  void seldice();
  void rebord();
  void scoring();

  // Files.
  void getdp();
  void cotext();
  std::string SpecialFolder(int pFolder);

 private:
  // Raised out of any wait once the window has been asked to close.
  struct WindowClosed {};
  enum class Phase { StartUp, Turns, EndOfGame, Leaving };

  void pump();
  // The game's one wait: pumps, and until `done` holds blocks on the
  // platform for `what` or the deadline, so no wait ever spins.
  void pumpUntil(const std::function<bool()>& done, WaitFor what,
                 double deadline = std::numeric_limits<double>::infinity());
  bool present(const std::string& path);
  std::string locate(const std::string& path);
  std::string join(const std::string& name) const;
  Answer yesno(const YesNoPlace& place, int& answer);
  void askUntilNo(const std::string& question, void (Form1::*read)());
  void playFile(const std::string& name, int position, bool keyEnds);
  void openFiller();

  // Blocks of Form_Load.
  Exit run();
  bool startUp();
  void newGame();
  void nameLoop();
  Exit turnLoop();
  std::optional<Exit> turn();
  AtPrompt rollPrompt();
  Review reviewDice();
  bool chooseAndConfirm();
  bool saveGame();
  bool leavingPrompt();
  void valueRow();
  void announce();
  bool recordScore();
  void nextPlayer();
  void sheetPhrase();
  void rowPhrase();
  RowChoice chooseRow();
  void tail(Exit way);
  void closeTail();
  void deleteSave();
  std::string launcherPath();
  std::string savePath();
  void releaseSound();
  Exit gameOver();
  bool finalReading();
  bool winnerPart();
  void boardReview();
  bool keyTest();
  void speechWait();

  // Files.
  void readConfig(const std::string& path);
  void writeConfig();
  bool writeSave();
  bool readSave();
  void writeLog();
  void appendWinner();

  Platform& plat;
  Phase phase = Phase::StartUp;
  bool closing = false;
  bool closeSeen = false;
  int dialogDepth = 0;
  bool logWritten = false;
};

}  // namespace quorble

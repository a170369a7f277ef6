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
#include <vector>

#include "companion/strategy.h"
#include "indexed.h"
#include "keys.h"
#include "platform/platform.h"

namespace quorble {

inline constexpr int kMaxPlayers = 10;  // declared bound; nine can be entered
inline constexpr int kRows = 14;
inline constexpr int kSheets = 3;
inline constexpr int kDice = 5;

// One player's score sheets: [row][sheet], a row's score, -1 while empty.
using PlayerSheets = Indexed<Indexed<int, kSheets + 1>, kRows + 1>;

struct GameState {
  // Key and text fields.
  std::string g;   // last key code as decimal text; empty while none
  std::string g2;  // the character of that code, lower case
  std::string r;   // the text typed at the name prompt
  std::string dp;  // the data folder, where saves, the configuration and the log go

  // Number fields.
  int fq = 0;    // the filler sample's playback rate in Hz
  int yorn = 0;  // the answer of the last yes/no prompt: 1 yes, 2 no
  int vr = 0;    // the speech rate of the voice in use
  int nv = 0;    // the voice in use, 0 to nov - 1
  int nov = 0;   // how many voices the platform has
  int g2p = 0;   // sheets per player in this game, 1 to kSheets
  int p1 = 0;    // the score board's row, 1 to kRows
  int p2 = 0;    // the score board's sheet, 1 to g2p
  int nop = 0;   // players in this game, 1 to 9
  int pup = 0;   // the player whose turn it is, 1 to nop
  int kd = 0;    // 1 once the dice screen kept the dice (K), else 0
  int fnf = 0;   // 1 once this turn's five-alike fanfare played, else 0
  int ck = 0;    // the player being named at set-up, 1 to nop; F12 changes their voice

  // Arrays.
  Indexed<PlayerSheets, kMaxPlayers + 1> sheet{};  // [player][row][sheet]; index 0 unused
  Indexed<std::string, kRows + 1> titles;          // each row's spoken name, 1 to kRows
  Indexed<std::string, kMaxPlayers + 1> names;     // each player's name, 1 to nop
  Indexed<int, kDice + 1> dye{};                   // the dice 1 to 5: faces 1 to 6, below 1 to roll
  Indexed<int, kDice + 1> dyecopy{};               // the dice as last rolled, for undoing a choice
  Indexed<int, kMaxPlayers + 1> pv{};              // each player's voice, as nv
  Indexed<int, kMaxPlayers + 1> pr{};              // each player's speech rate, as vr

  // Platform objects.
  std::unique_ptr<SpeechVoice> Voice;  // the voice speaking now
  std::unique_ptr<DirectX8> dx8;       // the sound system
  std::unique_ptr<DirectSound8> ds8;   // the sound device, maker of buffers
  std::unique_ptr<SoundBuffer> sbuf;   // the sample loaded or playing; empty when none
  int sbdesc = 0;                      // the sound buffers' capability flags

  // Driver fields.
  Indexed<int, kMaxPlayers + 1> fin{};  // 1 once a player has filled every sheet, else 0
  int nfin = 0;                         // how many players have finished, 0 to nop
  Indexed<int, kMaxPlayers + 1> tot{};  // each player's final score, every sheet summed
  Indexed<int, 8> cnt{};                // dice per face 1 to 6 (the rules count in locals)
  int pts = 0;                          // the value of the dice on the chosen row
  int nroll = 0;                        // dice to roll this time, 0 to 5
  std::string fpath;                    // the saved game's path
  std::string msg;                      // the prompt being spoken
  int winner = 0;                       // the player with the highest total, 1 to nop
  int logged = 0;                       // 1 once this game's winner is in the log

  // Companion mode: 1 for a player the computer plays.
  Indexed<int, kMaxPlayers + 1> cpu{};
};

// The companion mode, off unless the player asks for it; the strength is
// that of the computer players.
enum class Companion { Off, Optimal, Casual };

// What the program was started with.
struct Settings {
  Companion companion = Companion::Off;
};

// A number as the game speaks and writes it: a blank before a number that
// is not negative, a minus sign before one that is, nothing behind.
std::string nt(int n);

// Whether all five dice show one face.
bool FiveAlike(const std::array<int, kDice + 1>& dice);

// The value of five dice on a row of the board, 0 when they don't fit.
int RowValue(const std::array<int, kDice + 1>& dice, int row);

// How a game run ends, and so which way through the tail it takes.
enum class Exit { Leave, Save, GameOver, NoVoices, AlreadyRunning };

// Spoken, and written to standard error, when a second copy of the game is
// started on a data folder the first one holds.
inline constexpr char kAlreadyRunning[] = " Quorble is already running. ";

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
  explicit Form1(Platform& platform, Settings settings = {})
      : plat(platform), companionMode(settings.companion) {}
  Form1(const Form1&) = delete;
  Form1& operator=(const Form1&) = delete;

  // The whole run of the program; its return is the end of the process.
  void Form_Load();
  // Whether the run ended at once because the data folder was taken.
  bool alreadyRunning() const { return refused; }

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
  int askDigit(const std::string& prompt);
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
  // The screen a key wait belongs to, for the companion's keys.
  enum class Spot { None, RollPrompt, Dice, Board, Scoring };

  void pump();
  // The game's one wait: pumps, and until `done` holds blocks on the
  // platform for `what` or the deadline, so no wait ever spins.
  void pumpUntil(const std::function<bool()>& done, WaitFor what,
                 double deadline = std::numeric_limits<double>::infinity());
  void getkey(Spot at);
  bool present(const std::string& path);
  std::string locate(const std::string& path);
  std::string join(const std::string& name) const;
  Answer yesno(const YesNoPlace& place, int& answer);
  void askUntilNo(const std::string& question, void (Form1::*read)());
  void playFile(const std::string& name, int position, bool keyEnds);
  void openFiller();

  // The dice screen's pieces.
  bool pickDice();
  void sayDie(int die);
  bool pickOrMove(int& cursor);
  bool keepDice();
  void diceHelp();

  // Blocks of Form_Load.
  Exit run();
  std::optional<Exit> startUp();
  bool openSoundAndVoice();
  void greet();
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
  bool readSheet(int p, int s);
  bool winnerPart();
  void boardReview();
  bool keyTest();
  void speechWait();

  // Files.
  void readConfig(const std::string& path);
  std::string writePath(const std::string& name);
  void writeConfig();
  bool writeSave();
  bool readSave();
  bool setAside(const std::string& path);
  void writeLog();
  void appendWinner();

  // Companion mode.
  void loadCompanion();
  void askComputers();
  void nameComputers();
  void companionKey();
  void sayHint();
  void sayTotals();
  std::vector<companion::Sheet> sheetsOf(int player) const;
  std::optional<Exit> computerTurn();
  companion::Move computerRolls();
  void noteKey();
  void computerSays(const std::string& text);
  void computerPause(double seconds);
  void computerSample(int a);
  void hearOut();

  Platform& plat;
  Phase phase = Phase::StartUp;
  bool closing = false;
  bool closeSeen = false;
  int dialogDepth = 0;
  bool logWritten = false;

  Companion companionMode;
  int computers = 0;  // of the players being set up, the last ones
  int rolled = 0;     // rolls made in this turn
  Spot spot = Spot::None;
  bool skipping = false;                          // a key has asked for the computer's decision now
  std::unique_ptr<companion::Strategy> adviser;   // the hint's advice
  std::unique_ptr<companion::Strategy> opponent;  // the computer players' play
  bool keepSave = false;                          // an unreadable saved game stayed where it was
  bool refused = false;                           // another copy of the game holds the data folder
};

}  // namespace quorble

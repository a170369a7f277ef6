// The driver: start-up, the turn loop, and every way out of the program.
#include <optional>

#include "file_names.h"
#include "gamestate.h"
#include "prompts.h"

namespace quorble {
namespace {

const YesNoPlace kScorePlace{.byDefault = 1, .echoFirst = true};
const YesNoPlace kLeavingPlace{.byDefault = 2, .yes = " Yes ", .no = " No ", .echoFirst = true};
const char* const kThanks = " thank you for playing Kwor-bul, By Tavi Orlund ";

}  // namespace

void Form1::Form_Load() {
  try {
    tail(run());
  } catch (const WindowClosed&) {
    closeTail();
  }
}

Exit Form1::run() {
  if (auto way = startUp()) return *way;
  Exit way = turnLoop();
  return way == Exit::GameOver ? gameOver() : way;
}

// Nothing when the game goes on to its turns; else the way out.
std::optional<Exit> Form1::startUp() {
  if (!openSoundAndVoice()) return Exit::NoVoices;
  getdp();
  // Before any file is touched: a second copy must leave the first's alone.
  if (!plat.LockDataFolder(dp)) return Exit::AlreadyRunning;
  cotext();
  nv = 0;
  vr = 0;
  readConfig(plat.CurrentDirectory() + "/" + file_names::kConfig);
  readConfig(join(file_names::kConfig));
  Voice->SetVoice(nv);
  Voice->SetRate(vr);
  Voice->SetVolume(95);
  GetTits();
  greet();
  fpath = join(file_names::kSave);
  if (!present(fpath)) {
    newGame();
  } else {
    say(" getting saved game ");
    if (!readSave()) newGame();
  }
  if (companionMode != Companion::Off) loadCompanion();
  return std::nullopt;
}

// The filler plays while the voices load; false when there are none.
bool Form1::openSoundAndVoice() {
  plat.Show(" Quorble  By Tavi Orlund ");
  fq = 11026;
  dx8 = plat.NewDirectX8();
  ds8 = dx8->DirectSoundCreate();
  ds8->SetCooperativeLevel(DSSCL_PRIORITY);
  sbdesc = DSBCAPS_CTRLFREQUENCY | DSBCAPS_CTRLPAN | DSBCAPS_CTRLVOLUME;
  openFiller();
  sbuf->SetFrequency(fq);
  sbuf->Play(DSBPLAY_LOOPING);
  Voice = plat.NewSpVoice();
  nov = Voice->VoiceCount();
  if (nov == 0) {
    plat.MessageBox("Sorry but I couldn't find any voices to use\rPlease contact Tavi Orlund");
    return false;
  }
  nov = nov - 1;
  return true;
}

// The sounds and words of the greeting, and the two offers of instructions.
void Form1::greet() {
  Voice->Speak("", SVSFDefault);
  dy(0.5);
  sbuf->Stop();
  sbuf.reset();
  dy(0.2);
  playspec();
  dy(0.1);
  play(0);
  dy(0.1);
  say(" Version 2. By Tavi Orlund ");
  dy(0.3);
  askins();
  dy(0.2);
  askspekey();
}

Exit Form1::turnLoop() {
  phase = Phase::Turns;
  for (;;) {
    setvoice();
    for (int i = 1; i <= kDice; ++i) {
      dye[i] = -1;
      dyecopy[i] = -1;
    }
    p1 = 1;
    p2 = 1;
    fnf = 0;
    rolled = 0;
    if (auto way = cpu[pup] == 1 ? computerTurn() : turn()) return *way;
  }
}

// One turn of the player up; nothing when it ends in the hand-over.
std::optional<Exit> Form1::turn() {
  switch (rollPrompt()) {
    case AtPrompt::Leave: return Exit::Leave;
    case AtPrompt::Save: return Exit::Save;
    case AtPrompt::Roll: break;
  }
  play(5);
  PickDye();
  rolled = 1;
  for (int roll = 2; roll <= 3; ++roll) {
    const Review review = reviewDice();
    if (review == Review::Leave) return Exit::Leave;
    if (review == Review::Keep) break;
    dy(0.2);
    nroll = 0;
    for (int i = 1; i <= kDice; ++i) nroll += dye[i] < 1 ? 1 : 0;
    if (nroll > 0) play(nroll);
    PickDye();
    rolled = roll;
  }
  if (!chooseAndConfirm()) return Exit::Leave;
  if (recordScore()) return Exit::GameOver;
  nextPlayer();
  return std::nullopt;
}

AtPrompt Form1::rollPrompt() {
  for (;;) {
    say2(" " + names[pup] + " player number " + nt(pup));
    for (;;) {
      say2(" Press R, to roll the dice ");
      getkey(Spot::RollPrompt);
      if (g == keys::kEsc) {
        if (leavingPrompt()) return AtPrompt::Leave;
        break;
      }
      saykey();
      if (g2 == "r") return AtPrompt::Roll;
      if (g2 == "s") {
        if (saveGame()) return AtPrompt::Save;
        break;
      }
      if (g2 == "m") {
        rebord();
        continue;
      }
      say2(" Press M to switch mode from dice to score board and back. ");
      say2(" S to save game. ");
      say2(" escape key to exit the game. ");
    }
  }
}

Review Form1::reviewDice() {
  for (;;) {
    dy(0.2);
    SayAllDye();
    dy(0.2);
    seldice();
    if (kd == 1) return Review::Keep;
    if (g != keys::kEsc) return Review::Roll;
    if (leavingPrompt()) return Review::Leave;
  }
}

// The row choice with its announcement; false when the player leaves.
bool Form1::chooseAndConfirm() {
  for (;;) {
    dy(0.2);
    SayAllDye();
    scoring();
    if (g == keys::kEsc) {
      if (leavingPrompt()) return false;
      continue;
    }
    valueRow();
    Answer answer;
    do {
      announce();
      answer = yesno(kScorePlace, yorn);
    } while (answer == Answer::Other);
    if (answer == Answer::Yes) return true;
  }
}

void Form1::announce() {
  dy(0.2);
  say2(" Score " + nt(pts) + " point" + (pts == 1 ? " " : "s "));
  say2(" for " + titles[p1]);
  if (g2p != 1) say2(" on sheet " + nt(p2));
  dy(0.2);
  say2(" Is this Correct? ");
}

bool Form1::leavingPrompt() {
  for (;;) {
    msg = " Do you wish to exit the game without saving it? ";
    say2(msg);
    const Answer answer = yesno(kLeavingPlace, yorn);
    if (answer != Answer::Other) return answer == Answer::Yes;
  }
}

// Writes the saved game for S; a save that fails is said and play goes on.
bool Form1::saveGame() {
  fpath = savePath();
  if (writeSave()) return true;
  say2(" The game could not be saved. ");
  return false;
}

void Form1::tail(Exit way) {
  phase = Phase::Leaving;
  if (way == Exit::AlreadyRunning) {
    refused = true;
    say(kAlreadyRunning);
    releaseSound();
    Voice.reset();
    return;
  }
  if (way == Exit::Save) say2(" Game Saved ");
  if (way != Exit::NoVoices) say(kThanks);
  if (way != Exit::Save && way != Exit::NoVoices) deleteSave();
  if (way != Exit::NoVoices) writeConfig();
  releaseSound();
  const std::string launcher = launcherPath();
  if (!launcher.empty()) {
    Voice.reset();
    plat.Launch(launcher, 3);
    return;
  }
  plat.Beep();
  dy(0.1);
  plat.Beep();
  dy(0.1);
  say("Sorry, but I could not find the Brindlesoft game menu program.");
  dy(0.2);
  Voice.reset();
}

// A closed window loses no game: a turn in hand is saved as S saves it, an
// ended game leaves as from the end menu, and all of it without a word. On
// the way out the files are already settled.
void Form1::closeTail() {
  if (phase == Phase::Turns) {
    fpath = savePath();
    writeSave();
    writeConfig();
  } else if (phase == Phase::EndOfGame) {
    deleteSave();
    writeConfig();
  }
  releaseSound();
  const std::string launcher = phase == Phase::EndOfGame ? launcherPath() : std::string();
  if (!launcher.empty()) plat.Launch(launcher, 3);
  Voice.reset();
}

void Form1::deleteSave() {
  fpath = join(file_names::kSave);
  if (keepSave) return;
  const std::string found = locate(fpath);
  if (!found.empty()) plat.DeleteFile(found);
}

// The launcher is looked for in the current folder, by its name alone.
std::string Form1::launcherPath() { return locate(plat.CurrentDirectory() + "/lobbyhub.exe"); }

// A saved game already on disk under another case is written over, so that
// no stale copy can be taken up once this one is deleted.
std::string Form1::savePath() { return writePath(file_names::kSave); }

void Form1::releaseSound() {
  sbuf.reset();
  dx8.reset();
  ds8.reset();
}

}  // namespace quorble

// The key latch, the waits, and the prompts that set up a new game.
#include <cctype>
#include <utility>

#include "gamestate.h"
#include "prompts.h"

namespace quorble {
namespace {

// Deeper than this, Ctrl and F12 are plain keys: a stuck key must not
// nest dialogues without end.
constexpr int kMaxDialogDepth = 16;

const YesNoPlace kNamePlace{.byDefault = 1, .echoYesNo = true, .echoOther = true};
const YesNoPlace kPlayersPlace{.byDefault = 1, .echoOther = true};

// The number a key code's text stands for; the latch only ever holds codes
// and the "1" that the dialogues leave.
int CodeValue(const std::string& code) {
  int value = 0;
  for (char c : code) {
    if (!std::isdigit(static_cast<unsigned char>(c))) break;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

void Form1::Form_KeyDown(int keyCode) {
  g = std::to_string(keyCode);
  g2 = std::string(1, static_cast<char>(std::tolower(keyCode & 0xff)));
}

void Form1::Form_CloseRequest() { closing = true; }

void Form1::pump() {
  plat.Pump(*this);
  if (closing && !closeSeen) {
    closeSeen = true;
    throw WindowClosed{};
  }
}

void Form1::pumpUntil(const std::function<bool()>& done, WaitFor what, double deadline) {
  for (;;) {
    pump();
    if (done()) return;
    plat.WaitEvent(what, deadline);
  }
}

void Form1::clk() {
  g.clear();
  pump();
  g2.clear();
  pump();
}

void Form1::getkey() {
  for (;;) {
    // As clk(), whose last pump is the wait's first.
    g.clear();
    pump();
    g2.clear();
    pumpUntil([&] { return !g.empty(); }, WaitFor::Key);
    stopspeech();
    if (dialogDepth < kMaxDialogDepth && (g == keys::kCtrl || g == keys::kF12)) {
      ++dialogDepth;
      const Spot outer = std::exchange(spot, Spot::None);
      if (g == keys::kCtrl) adjrate();
      if (g == keys::kF12) changevoice(ck);
      spot = outer;
      --dialogDepth;
    }
    if (CodeValue(g) <= keys::kF2.code) return;
    companionKey();
  }
}

void Form1::getkey(Spot at) {
  spot = at;
  getkey();
  spot = Spot::None;
}

void Form1::dy(double seconds) {
  const double deadline = plat.Monotonic() + seconds;
  pumpUntil([&] { return plat.Monotonic() >= deadline; }, WaitFor::Time, deadline);
}

void Form1::dy3(double seconds) {
  const double deadline = plat.Monotonic() + seconds;
  pumpUntil([&] { return !g.empty() || plat.Monotonic() >= deadline; }, WaitFor::Time, deadline);
}

Answer Form1::yesno(const YesNoPlace& place, int& answer) {
  answer = place.byDefault;
  for (;;) {
    say2(answer == 1 ? place.yes : place.no);
    getkey();
    if (g == keys::kEnter) return answer == 1 ? Answer::Yes : Answer::No;
    if (g == keys::kUp || g == keys::kDown) {
      answer = 3 - answer;
      continue;
    }
    const bool yesOrNo = g2 == "y" || g2 == "n";
    if (place.echoFirst || (yesOrNo ? place.echoYesNo : place.echoOther)) saykey();
    if (g2 == "y") {
      answer = 1;
      return Answer::Yes;
    }
    if (g2 == "n") {
      answer = 2;
      return Answer::No;
    }
    return Answer::Other;
  }
}

void Form1::getter(const std::string& prompt) {
  bool shift = false;  // survives F1: only the next typed key clears it
  for (;;) {
    clk();
    say2(prompt);
    r.clear();
    for (;;) {
      getkey();
      if (g == keys::kF1) break;
      if (g == keys::kShift) {
        shift = true;
        continue;
      }
      if (shift) {
        shift = false;
        for (char& c : g2) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      }
      if (g == keys::kBackspace) {
        if (r.empty()) continue;
        g2 = r.substr(r.size() - 1);
        saykey();
        r.pop_back();
        continue;
      }
      if (g == keys::kEnter) return;
      saykey();
      r += g2;
    }
  }
}

void Form1::checkname(int a) {
  for (;;) {
    clk();
    say2(" player number " + nt(a) + " is ");
    say2(names[a]);
    dy(0.2);
    say2(" is this correct? ");
    if (yesno(kNamePlace, yorn) != Answer::Other) return;
  }
}

void Form1::GetGame() {
  static const char* const kGames[] = {"", " kwor-bul ", " double kwor-bul ", " triple kwor-bul "};
  for (;;) {
    clk();
    int selection = 1;
    say2(" Select which game you wish to play ");
    for (;;) {
      say2(kGames[selection]);
      getkey();
      if (g == keys::kEnter) {
        g2p = selection;
        return;
      }
      if (g2 == "y" || g2 == "d" || g2 == "t") {
        selection = g2 == "y" ? 1 : g2 == "d" ? 2 : 3;
        saykey();
        continue;
      }
      if (g == keys::kUp) {
        selection = selection == 1 ? 3 : selection - 1;
        continue;
      }
      if (g == keys::kDown) {
        selection = selection == 3 ? 1 : selection + 1;
        continue;
      }
      saykey();
      break;
    }
  }
}

// Asks until a key other than F1 comes, and says it; -1 when it is no digit.
int Form1::askDigit(const std::string& prompt) {
  for (;;) {
    clk();
    say2(prompt);
    getkey();
    if (g == keys::kF1) continue;
    saykey();
    return KeyDigit(g2);
  }
}

void Form1::GetNop() {
  for (;;) {
    nop = askDigit(" Press a number for the number of players ");
    if (nop < 1 || nop > 9) {
      say2(" Lets try that again please. ");
      continue;
    }
    Answer answer;
    do {
      say2(" is " + nt(nop) + " correct for the number of players? ");
      answer = yesno(kPlayersPlace, yorn);
    } while (answer == Answer::Other);
    if (answer == Answer::Yes) return;
  }
}

void Form1::newGame() {
  dy(0.2);
  GetGame();
  dy(0.2);
  GetNop();
  askComputers();
  SetSheet();
  dy(0.2);
  nameLoop();
  nameComputers();
  for (int i = 1; i <= kMaxPlayers; ++i) {
    fin[i] = 0;
    tot[i] = 0;
  }
  nfin = 0;
  pup = 1;
}

void Form1::nameLoop() {
  for (ck = 1; ck <= nop - computers; ++ck) {
    msg = " Enter the name of player number " + nt(ck);
    do {
      getter(msg);
      names[ck] = r;
      checkname(ck);
    } while (yorn == 2);
    changevoice(ck);
    pv[ck] = nv;
    pr[ck] = vr;
  }
}

int KeyDigit(const std::string& g2) {
  if (g2.size() == 1 && std::isdigit(static_cast<unsigned char>(g2[0]))) return g2[0] - '0';
  return -1;
}

}  // namespace quorble

// The end of the game: every sheet read out, the winner, the end menu.
#include "gamestate.h"
#include "prompts.h"
#include "scoresheet.h"

namespace quorble {
namespace {

enum class At { Reading, Winner, Pause, Menu, Review };

}  // namespace

Exit Form1::gameOver() {
  phase = Phase::EndOfGame;
  writeLog();
  At at = At::Reading;
  for (;;) {
    switch (at) {
      case At::Reading: at = !finalReading() ? At::Menu : nop == 1 ? At::Pause : At::Winner; break;
      case At::Winner: at = winnerPart() ? At::Pause : At::Menu; break;
      case At::Pause:
        dy3(3);
        at = At::Menu;
        break;
      case At::Menu:
        say2(
            " press f1 to repeat score.  "
            " f2 to repeat entire scoring.  "
            " Or, M key to review score board. ");
        getkey();
        if (g != keys::kF1 && g != keys::kF2 && g2 != "m") return Exit::GameOver;
        at = g == keys::kF1 ? At::Winner : g == keys::kF2 ? At::Reading : At::Review;
        clk();
        break;
      case At::Review:
        boardReview();
        at = At::Winner;
        break;
    }
  }
}

// A key that has come ends the reading: no line is queued after it.
bool Form1::keyTest() {
  if (g.empty()) return false;
  stopspeech();
  return true;
}

void Form1::speechWait() {
  pumpUntil([&] { return Voice->RunningState() != SRSEIsSpeaking || !g.empty(); }, WaitFor::Speech);
}

// Reads out every sheet of every player; false when a key cut it short.
bool Form1::finalReading() {
  dy(0.3);
  play(0);
  dy(0.2);
  clk();
  say2(" game scores ");
  for (int p = 1; p <= nop; ++p) {
    tot[p] = 0;
    for (int s = 1; s <= g2p; ++s) tot[p] += SumSheet(sheet[p], s).total;
  }
  for (int p = 1; p <= nop; ++p) {
    pup = p;
    setvoice();
    for (int s = 1; s <= g2p; ++s) {
      if (!readSheet(p, s)) return false;
    }
    for (const std::string& line : {std::string(" final score "), nt(tot[p]) + " points "}) {
      if (keyTest()) return false;
      say2(line);
    }
    dy(0.3);
    speechWait();
  }
  return true;
}

// One sheet of player p's; false when a key cut it short.
bool Form1::readSheet(int p, int s) {
  const SheetSums sums = SumSheet(sheet[p], s);
  msg = " " + names[p] + " player number " + nt(p);
  if (keyTest()) return false;
  say2(msg);
  dy(0.2);
  msg = " top score ";
  if (g2p >= 2) msg += " sheet " + nt(s);
  for (const std::string& line :
       {msg, " " + nt(sums.top) + " points ", " bonus " + nt(sums.bonus) + " points ",
        std::string(" bottom score "), nt(sums.bottom)}) {
    if (keyTest()) return false;
    say2(line);
  }
  dy(0.3);
  if (g2p == 1) return true;
  for (const std::string& line : {" total score sheet " + nt(s), nt(sums.total) + " points "}) {
    if (keyTest()) return false;
    say2(line);
  }
  dy(0.2);
  return true;
}

// The scores once more and the winner; false when a key cut it short.
bool Form1::winnerPart() {
  winner = 1;
  for (int i = 2; i <= nop; ++i) {
    if (tot[i] > tot[winner]) winner = i;
  }
  if (keyTest()) return false;
  say2(" scores ");
  for (int p = 1; p <= nop; ++p) {
    pup = p;
    setvoice();
    for (const std::string& line :
         {" " + names[p] + " player number " + nt(p), nt(tot[p]) + " points "}) {
      if (keyTest()) return false;
      say2(line);
    }
    dy(0.3);
    speechWait();
  }
  dy(0.2);
  pup = winner;
  setvoice();
  msg = " The winner! is!  Player number " + nt(winner);
  if (keyTest()) return false;
  say2(msg);
  msg = " " + names[winner] + "! with " + nt(tot[winner]) + " points";
  if (keyTest()) return false;
  say2(msg);
  if (logged == 0) {
    logged = 1;
    appendWinner();
  }
  return true;
}

void Form1::boardReview() {
  if (nop != 1) {
    for (;;) {
      say2(" press the number of the player's score board to review. ");
      getkey();
      const int chosen = KeyDigit(g2);
      if (chosen >= 1 && chosen <= nop) {
        pup = chosen;
        break;
      }
    }
  }
  say2(names[pup] + " player number " + nt(pup));
  rebord();
}

}  // namespace quorble

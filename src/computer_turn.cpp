// A computer player's turn, played out loud in its own voice at a pace a
// listener can follow. Any key hurries it: the rest of the turn is played
// in silence and only its decision is spoken.
#include "companion_text.h"
#include "gamestate.h"

namespace quorble {
namespace {

constexpr double kAfterIntro = 0.3;
constexpr double kAfterDice = 0.4;
constexpr double kAfterKeep = 0.3;
constexpr double kAfterDecision = 0.5;

}  // namespace

std::optional<Exit> Form1::computerTurn() {
  clk();  // the last person's key must not hurry this turn
  skipping = false;
  computerSays(" " + names[pup] + " player number " + nt(pup));
  hearOut();
  computerPause(kAfterIntro);
  const companion::Move move = computerRolls();
  p1 = move.row;
  p2 = move.sheet;
  valueRow();
  clk();
  say2(" scores " + std::to_string(pts) + (pts == 1 ? " point" : " points") + " for " +
       Bare(titles[p1]) + SheetWords(g2p, p2) + " ");
  speechWait();
  if (g.empty()) {
    dy3(kAfterDecision);
  } else {
    stopspeech();
  }
  if (recordScore()) return Exit::GameOver;
  nextPlayer();
  return std::nullopt;
}

companion::Move Form1::computerRolls() {
  for (rolled = 1;; ++rolled) {
    nroll = 0;
    for (int i = 1; i <= kDice; ++i) nroll += dye[i] < 1 ? 1 : 0;
    if (nroll > 0) computerSample(rolled == 1 ? 5 : nroll);
    PickDye();
    computerSays(" dice ");
    companion::Dice dice{};
    for (int i = 1; i <= kDice; ++i) {
      computerSays(std::string(" ") + static_cast<char>('A' + i - 1) + ". equals " + nt(dye[i]));
      dice[i - 1] = dye[i];
    }
    hearOut();
    if (fnf == 0 && FiveAlike(dye)) {
      computerSample(0);
      fnf = 1;
    }
    computerPause(kAfterDice);
    const companion::Move move = opponent->Choose(sheetsOf(pup), dice, 3 - rolled);
    if (!move.reroll) return move;
    const std::string kept = KeptLetters(move);
    computerSays(" keeps" + (kept.empty() ? std::string(" none") : kept) + " ");
    hearOut();
    computerPause(kAfterKeep);
    for (int i = 1; i <= kDice; ++i) {
      if (!move.keep[i - 1]) dye[i] = -1;
    }
  }
}

void Form1::computerSays(const std::string& text) {
  if (!skipping) say2(text);
}

// Waits until what the computer said has been heard, or a key has come.
void Form1::hearOut() {
  if (skipping) return;
  speechWait();
  noteKey();
}

void Form1::computerPause(double seconds) {
  if (skipping) return;
  dy3(seconds);
  noteKey();
}

void Form1::computerSample(int a) {
  if (skipping) return;
  play2(a);
  noteKey();
}

void Form1::noteKey() {
  if (g.empty()) return;
  stopspeech();
  skipping = true;
}

}  // namespace quorble

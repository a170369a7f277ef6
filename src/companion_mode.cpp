// The companion mode's side of the game: its table, the computer players'
// set-up, and the two keys that speak advice and totals.
#include <algorithm>

#include "companion_text.h"
#include "gamestate.h"
#include "scoresheet.h"

namespace quorble {

// Reads the solver's table once. Without it the companion still plays and
// advises, the simple way, and says so, rather than refusing the mode.
void Form1::loadCompanion() {
  if (adviser) return;
  const auto bytes = plat.ReadFile(plat.ProgramFolder() + "/" + companion::kValueTableFile,
                                   companion::kValueTableLimit);
  const auto table = bytes ? companion::ParseValueTable(*bytes) : nullptr;
  if (!table) {
    adviser = companion::MakeCasualStrategy();
    opponent = companion::MakeCasualStrategy();
    say2(" The companion's strategy table is missing, so it plays the simple way. ");
    return;
  }
  adviser = companion::MakeOptimalStrategy(table);
  opponent = companionMode == Companion::Casual ? companion::MakeCasualStrategy()
                                                : companion::MakeOptimalStrategy(table);
}

void Form1::askComputers() {
  computers = 0;
  // One player alone is a person; there is nothing to ask.
  if (companionMode == Companion::Off || nop < 2) return;
  for (;;) {
    const int digit = askDigit(" How many of them are computer players? ");
    if (digit >= 0 && digit < nop) {
      computers = digit;
      return;
    }
    say2(" Lets try that again please. ");
  }
}

// Computer players come after the people, each in a voice no person took,
// so a change of speaker is always heard; only when the voices run out do
// they share. They speak at player 1's rate.
void Form1::nameComputers() {
  const int people = nop - computers;
  std::vector<int> unused;
  for (int voice = 0; voice <= nov; ++voice) {
    if (std::find(pv.begin() + 1, pv.begin() + 1 + people, voice) == pv.begin() + 1 + people) {
      unused.push_back(voice);
    }
  }
  for (int k = 1; k <= computers; ++k) {
    const int player = people + k;
    names[player] = "computer " + std::to_string(k);
    cpu[player] = 1;
    pv[player] =
        unused.empty() ? (k - 1) % (nov + 1) : unused[static_cast<size_t>(k - 1) % unused.size()];
    pr[player] = pr[1];
  }
}

std::vector<companion::Sheet> Form1::sheetsOf(int player) const {
  std::vector<companion::Sheet> sheets;
  for (int s = 1; s <= g2p; ++s) {
    companion::Sheet& one = sheets.emplace_back();
    for (int row = 1; row <= kRows; ++row) one[row] = sheet[player][row][s];
  }
  return sheets;
}

// F5 and F6, which the plain game lets pass; they act on the player's own
// screens in a turn, and speak over nothing else.
void Form1::companionKey() {
  if (companionMode == Companion::Off || phase != Phase::Turns || spot == Spot::None) return;
  if (g == keys::kF5) sayHint();
  if (g == keys::kF6) sayTotals();
}

void Form1::sayHint() {
  // Before the first roll there are no dice to advise on.
  if (!adviser || rolled == 0 || spot == Spot::RollPrompt) return;
  companion::Dice dice{};
  for (int i = 1; i <= kDice; ++i) dice[i - 1] = dyecopy[i];
  const int rollsLeft = spot == Spot::Scoring ? 0 : 3 - rolled;
  const companion::Move move = adviser->Choose(sheetsOf(pup), dice, rollsLeft);
  if (move.reroll) {
    const std::string kept = KeptLetters(move);
    say2(kept.empty() ? " roll all the dice " : " keep" + kept + " ");
  } else {
    say2(" score on " + Bare(titles[move.row]) + SheetWords(g2p, move.sheet) + " ");
  }
}

void Form1::sayTotals() {
  int grand = 0;
  for (int s = 1; s <= g2p; ++s) {
    PlayerSheets cells = sheet[pup];
    for (auto& row : cells) row[s] = std::max(row[s], 0);
    const SheetSums sums = SumSheet(cells, s);
    grand += sums.total;
    std::string text = g2p == 1 ? " " : " sheet " + std::to_string(s) + ", ";
    text += "upper " + std::to_string(sums.top);
    bool upperFull = true;
    for (int row = 1; row <= 6; ++row) upperFull = upperFull && sheet[pup][row][s] >= 0;
    text += sums.bonus > 0 ? " with the bonus"
            : upperFull    ? ", no bonus"
                           : ", " + std::to_string(63 - sums.top) + " short of the bonus";
    text +=
        ", lower " + std::to_string(sums.bottom) + ", total " + std::to_string(sums.total) + " ";
    say2(text);
  }
  if (g2p != 1) say2(" grand total " + std::to_string(grand) + " ");
}

}  // namespace quorble

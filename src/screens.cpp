// The dice screen and the score board: all a player knows of them is spoken.
#include <optional>

#include "gamestate.h"

namespace quorble {
namespace {

std::string LetterPhrase(int die) {
  return std::string(" ") + static_cast<char>('A' + die - 1) + ". equals ";
}

}  // namespace

void Form1::SayAllDye() {
  clk();
  say2(" dice ");
  dy(0.2);
  for (int i = 1; i <= kDice; ++i) sayDie(i);
  if (fnf == 1 || dye[1] < 1 || !FiveAlike(dye)) return;
  // The fanfare waits for the last value to be heard.
  say(" ");
  play(0);
  fnf = 1;
}

void Form1::seldice() {
  do {  // the head
    kd = 0;
    clk();
    say2(" Select Dice ");
  } while (pickDice());
}

// The dice screen from its head; true when it starts over there.
bool Form1::pickDice() {
  int cursor = 1;
  bool speakDie = true;
  for (;;) {
    if (speakDie) sayDie(cursor);
    speakDie = true;
    getkey(Spot::Dice);
    if (g == keys::kEsc) return false;
    if (pickOrMove(cursor)) continue;
    saykey();
    if (g2.size() == 1 && g2[0] >= 'a' && g2[0] <= 'e') {
      cursor = g2[0] - 'a' + 1;
      continue;
    }
    if (g2 == "m") {
      rebord();
      return g != keys::kEsc;
    }
    if (g2 == "k") {
      if (keepDice()) return false;
      continue;
    }
    if (g2 == "r") return false;
    if (g2 == "s") {
      SayAllDye();
      speakDie = false;
      continue;
    }
    if (g2 == "u") {
      dye = dyecopy;
      return true;
    }
    diceHelp();
  }
}

// A die's letter, and its face once it has one.
void Form1::sayDie(int die) {
  say2(LetterPhrase(die));
  if (dye[die] > 0) say2(nt(dye[die]));
}

// Enter or Space picks the die under the cursor and the arrows move it:
// true for these keys, which are not echoed.
bool Form1::pickOrMove(int& cursor) {
  if (g == keys::kEnter || g == keys::kSpace) {
    dye[cursor] = -1;
    dy3(0.2);
    play2(6);
    dy3(0.2);
    return true;
  }
  if (g != keys::kUp && g != keys::kDown) return false;
  cursor = g == keys::kUp ? (cursor == 1 ? 5 : cursor - 1) : (cursor == 5 ? 1 : cursor + 1);
  return true;
}

// K keeps the dice only once all of them have been rolled.
bool Form1::keepDice() {
  bool marked = false;
  for (int i = 1; i <= kDice; ++i) marked = marked || dye[i] < 1;
  if (!marked) {
    kd = 1;
    return true;
  }
  say(" you can not keep your dice until you roll them. ");
  clk();
  return false;
}

void Form1::diceHelp() {
  say2(
      " Use the arrow keys or press the letter of the die "
      " you wish to reroll. "
      " Then press enter or space bar to select that die. ");
  say2(" Press the R key to roll the die after selecting all of them that you wish to reroll. ");
  say2(" press the s key to respeak all dice. ");
  say2(" press the K key to keep die as they are ");
  say2(" Press the M key to switch mode to review the score board. ");
  say2(" press the U key to unselect all of the die. ");
}

void Form1::sheetPhrase() {
  if (g2p == 1) {
    say2(" sheet ");
  } else {
    say2(" sheet " + nt(p2) + " ");
  }
}

void Form1::rowPhrase() {
  say2(titles[p1]);
  const int score = sheet[pup][p1][p2];
  if (score >= 0) say2(nt(score) + "point" + (score == 1 ? " " : "s "));
}

namespace {

// Moves the board's cursor for an arrow key; nothing when the key isn't one
// that moves it.
std::optional<SpeakFrom> MoveOnBoard(const std::string& g, int g2p, int& p1, int& p2) {
  if (g == keys::kUp) {
    p1 = p1 == 1 ? kRows : p1 - 1;
    return SpeakFrom::Row;
  }
  if (g == keys::kDown) {
    p1 = p1 == kRows ? 1 : p1 + 1;
    return SpeakFrom::Row;
  }
  if (g2p == 1 || (g != keys::kLeft && g != keys::kRight)) return std::nullopt;
  if (g == keys::kLeft) {
    p2 = p2 - 1;
    if (p2 <= 0) p2 = g2p;
  } else {
    p2 = p2 + 1;
    if (p2 > g2p) p2 = 1;
  }
  return SpeakFrom::Sheet;
}

}  // namespace

void Form1::rebord() {
  clk();
  say2(" score ");
  auto from = SpeakFrom::Sheet;
  for (;;) {
    if (from == SpeakFrom::Sheet) sheetPhrase();
    rowPhrase();
    getkey(Spot::Board);
    if (g == keys::kEsc || g2 == "m") return;
    if (const auto moved = MoveOnBoard(g, g2p, p1, p2)) {
      from = *moved;
      continue;
    }
    say2(" Use the arrow keys to move through and review the score board. ");
    say2(" press the M key to switch modes back to the dice. ");
    from = SpeakFrom::Row;
  }
}

void Form1::scoring() {
  auto from = SpeakFrom::Title;
  for (;;) {
    if (from == SpeakFrom::Title) {
      clk();
      say2(" score ");
    }
    if (from != SpeakFrom::Row) sheetPhrase();
    rowPhrase();
    getkey(Spot::Scoring);
    if (g == keys::kEnter || g == keys::kSpace) {
      const RowChoice choice = chooseRow();
      if (choice == RowChoice::Scored) return;
      from = choice == RowChoice::Filled ? SpeakFrom::Row : SpeakFrom::Title;
      continue;
    }
    if (g == keys::kEsc) return;
    if (g2 == "m") {
      SayAllDye();
      from = SpeakFrom::Sheet;
      continue;
    }
    if (const auto moved = MoveOnBoard(g, g2p, p1, p2)) {
      from = *moved;
      continue;
    }
    say2(
        " Use the arrow keys to move through the score board. "
        " Then press the enter key or space bar. ");
    say2(" Press the M key to review your dice. ");
    from = SpeakFrom::Row;
  }
}

RowChoice Form1::chooseRow() {
  if (p1 != kRows) {
    if (sheet[pup][p1][p2] < 0) return RowChoice::Scored;
    dy(0.2);
    plat.Beep();
    dy(0.3);
    say(" You already have a score for " + titles[p1]);
    dy(0.3);
    return RowChoice::Filled;
  }
  if (!FiveAlike(dye)) {
    dy(0.2);
    plat.Beep();
    say(" Sorry but you do not have a kwor-bul."
        " so it can not be scored as an extra kwor-bull.");
    return RowChoice::Refused;
  }
  if (sheet[pup][13][p2] == 50) return RowChoice::Scored;
  dy(0.2);
  plat.Beep();
  dy(0.3);
  say(" Sorry but you can not have an extra quorble without first having a quorble. ");
  dy(0.6);
  p1 = 1;
  p2 = 1;
  return RowChoice::Refused;
}

}  // namespace quorble

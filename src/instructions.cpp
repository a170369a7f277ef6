// The two spoken texts offered at every start.
#include <array>

#include "gamestate.h"
#include "prompts.h"

namespace quorble {
namespace {

const YesNoPlace kInstructionsPlace{.byDefault = 1, .echoYesNo = true};

constexpr std::array kRules = {
    " kwor-bul game instructions.",
    "The object of the game is to fill all of the scoring areas with as high of a",
    "score as you can.",
    " ",
    "The top part of the score board is the ones, twos, threes, fours, fives and",
    "sixes. You get the total of all of the dice for that number.",
    "Such as 6 points on the twos if you have 3 twos.",
    "You get a 35 point bonus if your top score is 63 or above.",
    " ",
    "The following are on the bottom of the score board.",
    "3 and 4 of a kind.  You have to have 3 or 4 of the same die.  You get the total",
    "points of all dice showing.",
    "Full house is 3 of one die and 2 of another.  You get 25 points.",
    "Small and large straights. A small straight is 4 numbers in sequence.",
    "such as 3 4 5 6. A large straight is all 5 numbers in sequence such as 1 2 3 4 5.",
    " you get 30 points for a small straight and 40 for a large straight. ",
    "Chance is where you get to put one turn that doesn't work for you anywhere",
    "else.  You get the total of all dice showing.",
    "A kwor-bul is when you have all 5 dice the same.  You get 50 points.  If you get",
    "another kwor-bul you put it in extra kwor-bul.  You get 100 points each time.",
    " ",
    "The game continues until all players have filled all of their scoring areas",
    "except for the extra kwor-bul.",
};

}  // namespace

// Asks until the answer is no; each yes queues the text and asks again.
void Form1::askUntilNo(const std::string& question, void (Form1::*read)()) {
  for (;;) {
    clk();
    say2(question);
    const Answer answer = yesno(kInstructionsPlace, yorn);
    if (answer == Answer::No) return;
    if (answer == Answer::Yes) (this->*read)();
  }
}

void Form1::askins() { askUntilNo(" Would you like to read the instructions? ", &Form1::readins); }

void Form1::askspekey() {
  askUntilNo(" Would you like to read the special key instructions? ", &Form1::spekey);
}

void Form1::readins() {
  clk();
  std::string text = kRules[0];
  for (size_t i = 1; i < kRules.size(); ++i) text += std::string(" ") + kRules[i];
  say2(text);
}

void Form1::spekey() {
  say2(
      " Special Key Instructions. "
      " f1, repeat current prompt. "
      " f2, repeat more information. "
      " f12, change voice. "
      " escape key, exit game. "
      " control key, change rate of speech. ");
  if (companionMode != Companion::Off) {
    say2(" f5, a hint for your dice. f6, your running totals. ");
  }
}

}  // namespace quorble

// Dice, the value of a row, and the recording of a score.
#include <cmath>

#include "gamestate.h"

namespace quorble {
namespace {

using Dice = Indexed<int, kDice + 1>;
using Faces = std::array<int, kDice + 1>;

int Sum(const Dice& dice) { return dice[1] + dice[2] + dice[3] + dice[4] + dice[5]; }

int CountLike(const Dice& dice, int pivot) {
  int count = 0;
  for (int i = 1; i <= kDice; ++i) count += dice[i] == dice[pivot] ? 1 : 0;
  return count;
}

// Some die of the first `lastPivot` has more than `above` dice like it.
bool SomeKind(const Dice& dice, int lastPivot, int above) {
  for (int k = 1; k <= lastPivot; ++k) {
    if (CountLike(dice, k) > above) return true;
  }
  return false;
}

// Every die has a partner: three and two alike, or five alike.
bool FullHouse(const Dice& dice) {
  for (int k = 1; k <= kDice; ++k) {
    if (CountLike(dice, k) < 2) return false;
  }
  return true;
}

Indexed<int, 8> FaceCounts(const Dice& dice) {
  Indexed<int, 8> cnt{};
  for (int i = 1; i <= kDice; ++i) ++cnt[dice[i]];
  return cnt;
}

bool SmallStraight(const Dice& dice) {
  const auto cnt = FaceCounts(dice);
  int run = 0;
  for (int face = 1; face <= 6; ++face) {
    run = cnt[face] > 0 ? run + 1 : 0;
    if (face >= 4 && run == 4) return true;
  }
  return false;
}

// Five different faces make a straight unless both ends are among them,
// which leaves a hole in the middle.
bool LargeStraight(const Dice& dice) {
  const auto cnt = FaceCounts(dice);
  for (int face = 1; face <= 6; ++face) {
    if (cnt[face] > 1) return false;
  }
  return !(cnt[1] == 1 && cnt[6] == 1);
}

}  // namespace

std::string nt(int n) { return n < 0 ? std::to_string(n) : " " + std::to_string(n); }

// Callers outside the record hold plain arrays; the copy is six ints.
bool FiveAlike(const Faces& faces) { return CountLike(Dice{faces}, 1) == kDice; }

int RowValue(const Faces& faces, int row) {
  const Dice dice{faces};
  if (row >= 1 && row <= 6) {
    int points = 0;
    for (int i = 1; i <= kDice; ++i) points += dice[i] == row ? row : 0;
    return points;
  }
  switch (row) {
    case 7: return SomeKind(dice, 3, 2) ? Sum(dice) : 0;
    case 8: return SomeKind(dice, 2, 3) ? Sum(dice) : 0;
    case 9: return FullHouse(dice) ? 25 : 0;
    case 10: return SmallStraight(dice) ? 30 : 0;
    case 11: return LargeStraight(dice) ? 40 : 0;
    case 12: return Sum(dice);
    case 13: return FiveAlike(dice) ? 50 : 0;
    case 14: return 100;
    default: return 0;
  }
}

void Form1::PickDye() {
  plat.Randomize(plat.Timer());
  for (int i = 1; i <= kDice; ++i) {
    if (dye[i] > 0) continue;
    const float draw = plat.Rnd();
    // The product in double precision can't round up to 6, so no die shows 7.
    dye[i] = static_cast<int>(std::floor(static_cast<double>(draw) * 6.0)) + 1;
    dyecopy[i] = dye[i];
  }
}

void Form1::SetSheet() {
  for (int player = 1; player <= nop; ++player) {
    for (int row = 1; row <= kRows; ++row) {
      for (int s = 1; s <= kSheets; ++s) sheet[player][row][s] = -1;
    }
  }
}

void Form1::GetTits() {
  static const char* const kTitles[] = {
      "",
      " ones ",
      " twos ",
      " threes ",
      " fours ",
      " fives ",
      " sixes ",
      " three of a kind ",
      " four of a kind ",
      " full house ",
      " small straight ",
      " large straight ",
      " chance ",
      "kwor-bul ",
      " extra kwor-bul ",
  };
  for (int row = 1; row <= kRows; ++row) titles[row] = kTitles[row];
}

void Form1::valueRow() { pts = RowValue(dye, p1); }

// Stores the confirmed score; true when it has ended the whole game.
bool Form1::recordScore() {
  pv[pup] = nv;
  int& cell = sheet[pup][p1][p2];
  if (p1 < kRows) {
    cell = pts;
  } else {
    if (cell < 0) cell = 0;
    cell += pts;
  }
  for (int s = 1; s <= g2p; ++s) {
    for (int row = 1; row <= 13; ++row) {
      if (sheet[pup][row][s] < 0) return false;
    }
  }
  fin[pup] = 1;
  ++nfin;
  return nop == nfin;
}

void Form1::nextPlayer() {
  pv[pup] = nv;
  pr[pup] = vr;
  do {
    pup = pup + 1;
    if (pup > nop) pup = 1;
  } while (fin[pup] == 1);
}

}  // namespace quorble

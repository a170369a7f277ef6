// The shape shared by every yes/no question, and what tells the places apart.
#pragma once

#include <string>

namespace quorble {

struct YesNoPlace {
  int byDefault = 1;          // 1 yes, 2 no
  const char* yes = " yes ";  // the word spoken for each answer
  const char* no = " no ";
  bool echoFirst = false;  // every key but Enter and the arrows is echoed before its test
  bool echoYesNo = false;  // otherwise: Y and N are echoed
  bool echoOther = false;  // otherwise: an unknown key is echoed
};

// The value of a digit key's character; -1 for anything else.
int KeyDigit(const std::string& g2);

}  // namespace quorble

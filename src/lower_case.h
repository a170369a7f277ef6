#pragma once

#include <algorithm>
#include <cctype>
#include <string>

namespace quorble {

// A copy in lower case, for names that compare without regard to case.
inline std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

}  // namespace quorble

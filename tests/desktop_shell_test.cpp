// The pure parts of the desktop platform's shell and speech settings.
#include <gtest/gtest.h>

#include <string>

#include "platform/desktop/shell.h"
#include "platform/desktop/speech_espeak.h"

namespace quorble::desktop {
namespace {

TEST(DocumentsFolderTest, FindsTheFolderNamedInUserDirs) {
  const std::pair<const char*, const char*> kCases[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", "/home/ana/Documents"},
      {"# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
       "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\nXDG_MUSIC_DIR=\"$HOME/Music\"\n",
       "/home/ana/Dokumente"},
      {"XDG_DOCUMENTS_DIR=\"/srv/papers\"\n", "/srv/papers"},
      {"  XDG_DOCUMENTS_DIR=\"$HOME/Docs/\"  \r\n", "/home/ana/Docs"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", ""},  // home itself means none
      {"XDG_DOCUMENTS_DIR=\"Documents\"\n", ""},
      {"# XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", ""},
      {"XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n", ""},
      {"", ""},
  };
  for (const auto& [file, documents] : kCases) {
    EXPECT_EQ(DocumentsFolderIn(file, "/home/ana"), documents) << file;
  }
}

// A third of normal at -10, three times at +10, held within 80 to 450.
TEST(WordsPerMinuteTest, FollowsThePowerOfThreeWithinTheEnginesRange) {
  const std::pair<int, int> kRateToWords[] = {
      {0, 175}, {5, 303}, {-5, 101}, {3, 243}, {10, 450}, {-10, 80}, {100, 450}, {-100, 80},
  };
  for (const auto& [rate, words] : kRateToWords) EXPECT_EQ(WordsPerMinute(rate), words) << rate;
}

}  // namespace
}  // namespace quorble::desktop

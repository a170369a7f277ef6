// The pure parts of the desktop platform's shell and speech settings.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/desktop/shell.h"
#include "platform/desktop/speech_espeak.h"

namespace quorble::desktop {
namespace {

struct UserDirsCase {
  const char* name;
  const char* file;
  const char* documents;
};

class DocumentsFolderTest : public testing::TestWithParam<UserDirsCase> {};

TEST_P(DocumentsFolderTest, FindsTheFolderNamed) {
  EXPECT_EQ(DocumentsFolderIn(GetParam().file, "/home/ana"), GetParam().documents);
}

const std::vector<UserDirsCase> kUserDirs{
    {"UnderHome", "XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", "/home/ana/Documents"},
    {"AmongOthers",
     "# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
     "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\nXDG_MUSIC_DIR=\"$HOME/Music\"\n",
     "/home/ana/Dokumente"},
    {"Absolute", "XDG_DOCUMENTS_DIR=\"/srv/papers\"\n", "/srv/papers"},
    {"TrailingSlashAndSpaces", "  XDG_DOCUMENTS_DIR=\"$HOME/Docs/\"  \r\n", "/home/ana/Docs"},
    {"HomeItselfMeansNone", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n", ""},
    {"RelativeIsIgnored", "XDG_DOCUMENTS_DIR=\"Documents\"\n", ""},
    {"CommentedOut", "# XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", ""},
    {"OtherKeysOnly", "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n", ""},
    {"Empty", "", ""},
};
INSTANTIATE_TEST_SUITE_P(UserDirs, DocumentsFolderTest, testing::ValuesIn(kUserDirs),
                         [](const auto& info) { return std::string(info.param.name); });

// A third of normal at -10, three times at +10, held within 80 to 450.
TEST(WordsPerMinuteTest, FollowsThePowerOfThreeWithinTheEnginesRange) {
  const std::vector<std::pair<int, int>> rateToWords{
      {0, 175}, {5, 303}, {-5, 101}, {3, 243}, {10, 450}, {-10, 80}, {100, 450}, {-100, 80},
  };
  for (const auto& [rate, words] : rateToWords) {
    EXPECT_EQ(WordsPerMinute(rate), words) << "rate " << rate;
  }
}

}  // namespace
}  // namespace quorble::desktop

#include "platform/desktop/speech_dispatcher.h"

#include <gtest/gtest.h>

namespace quorble::desktop {
namespace {

TEST(DispatcherRate, ZeroIsThePlayersOwnAndTenIsTheDaemonsEnd) {
  struct Case {
    int player, game, daemon;
  };
  const Case cases[] = {
      {0, 0, 0},    {30, 0, 30}, {0, 1, 10},    {0, -10, -100},
      {0, 25, 100}, {50, 5, 75}, {50, -5, -25}, {-60, 5, 20},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DispatcherRate(c.player, c.game), c.daemon)
        << "player " << c.player << ", game " << c.game;
  }
}

TEST(DispatcherRate, EveryStepOfTheGameIsAStepOfTheDaemon) {
  for (int player : {-90, -30, 0, 40, 90}) {
    for (int game = -10; game < 10; ++game) {
      EXPECT_LT(DispatcherRate(player, game), DispatcherRate(player, game + 1))
          << "player " << player << ", game " << game;
    }
  }
}

TEST(DispatcherVolume, FullIsThePlayersOwn) {
  EXPECT_EQ(DispatcherVolume(100, 100), 100);
  EXPECT_EQ(DispatcherVolume(100, 95), 90);
  EXPECT_EQ(DispatcherVolume(40, 100), 40);
  EXPECT_EQ(DispatcherVolume(100, 0), -100);
  EXPECT_EQ(DispatcherVolume(100, 250), 100);
}

TEST(OfferedVoices, ThePlayersLanguagePlainVoicesFirstInAStableOrder) {
  const std::vector<SynthesisVoice> listed = {
      {"German", "de", "none"},
      {"English (America)+Annie", "en-US", "Annie"},
      {"English (Great Britain)", "en-GB", "none"},
      {"mb-us1", "en-US", "none"},
      {"English (America)", "en-US", "none"},
      {"English (America)", "en-US", "none"},
      {"English (Caribbean)+f2", "en-029", "f2"},
  };
  EXPECT_EQ(OfferedVoices(listed, "en_US", false),
            (std::vector<std::string>{"English (America)", "English (Great Britain)",
                                      "English (America)+Annie", "English (Caribbean)+f2"}));
  EXPECT_EQ(OfferedVoices(listed, "EN", true).size(), 5u);
  EXPECT_EQ(OfferedVoices(listed, "de-DE", false), (std::vector<std::string>{"German"}));
  // A language nobody speaks: every voice rather than none.
  EXPECT_EQ(OfferedVoices(listed, "fi", false).size(), 5u);
  EXPECT_TRUE(OfferedVoices({}, "en", false).empty());
}

// Scripts of what spd_say returned and what the callback thread reported,
// in the order the two threads saw them.
TEST(MessageTracker, PendingUntilEveryMessageEndsWhateverTheOrder) {
  struct Step {
    char what;  // 's' said, 'f' finished, 'x' forgotten after a cancel
    int id;
    bool pendingAfter;
  };
  const std::vector<std::vector<Step>> scripts = {
      {{'s', 1, true}, {'s', 2, true}, {'f', 1, true}, {'f', 2, false}},
      // The end overtook spd_say's reply.
      {{'f', 3, false}, {'s', 3, false}, {'s', 4, true}, {'f', 4, false}},
      // Cancel: the late notices of the forgotten messages change nothing.
      {{'s', 5, true},
       {'s', 6, true},
       {'x', 0, false},
       {'f', 5, false},
       {'s', 7, true},
       {'f', 6, true},
       {'f', 7, false}},
      // Ends arriving out of order.
      {{'s', 8, true}, {'s', 9, true}, {'f', 9, true}, {'f', 8, false}},
  };
  for (size_t n = 0; n < scripts.size(); ++n) {
    MessageTracker tracker;
    for (size_t at = 0; at < scripts[n].size(); ++at) {
      const Step& step = scripts[n][at];
      if (step.what == 's') tracker.Said(step.id);
      if (step.what == 'f') tracker.Finished(step.id);
      if (step.what == 'x') tracker.Forget();
      EXPECT_EQ(tracker.Pending(), step.pendingAfter) << "script " << n << ", step " << at;
    }
  }
}

}  // namespace
}  // namespace quorble::desktop

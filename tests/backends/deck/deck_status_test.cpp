// The transport attribute and its notifications: when they come, in which order, and what the deck's slowness and
// faults make of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/deck_rig.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::AVCTransportControls;
using platform::Duration;
using test::DeckNotice;
using test::DeckRig;
using test::DeckTest;
using test::kDeckPause;
using test::kDeckPlay;
using test::kDeckReverse;
using test::kDeckStop;
using test::kDeckWind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DVSystem kPal = DVSystem::pal625_50;

class DeckStatus : public DeckTest {};

TEST_F(DeckStatus, ACommandFromTheMainThreadIsAnnouncedBeforeItReturns) {
  DeckRig rig(tapeOf(20));
  rig.command(kDeckPlay);
  EXPECT_THAT(rig.notices, ElementsAre(DeckNotice{false, kDeckStop, 0s}, DeckNotice{true, kDeckPlay, 0s}));
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckPlay);
}

TEST_F(DeckStatus, NotificationsNameTheAttributeAndTheDevice) {
  DeckRig rig(tapeOf(20));
  rig.command(kDeckPlay);
  rig.runFor(2s);
  ASSERT_EQ(rig.rawNotices.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(rig.rawNotices[i].name, i % 2 == 0 ? platform::QTCaptureDeviceAttributeWillChangeNotification
                                                 : platform::QTCaptureDeviceAttributeDidChangeNotification);
    EXPECT_EQ(rig.rawNotices[i].object, rig.deck.get());
    EXPECT_EQ(rig.rawNotices[i].changedAttribute, platform::QTCaptureDeviceAVCTransportControlsAttribute);
  }
  EXPECT_TRUE(rig.allOnMainThread);
}

TEST_F(DeckStatus, ACommandFromTheDeliveryThreadIsAnnouncedOnTheMainThread) {
  DeckRig rig(tapeOf(20));
  rig.sink.onFrame = [&](std::int64_t number) {
    if (number == 3 && rig.sink.deliveries.size() == 4) rig.command(kDeckPause);
  };
  rig.command(kDeckPlay);
  rig.runFor(1s - 1ms);
  EXPECT_TRUE(rig.allOnMainThread);
  EXPECT_EQ(rig.notices.back(), (DeckNotice{true, kDeckPause, 120ms}));
  EXPECT_EQ(rig.sink.numbers().back(), 3);
  EXPECT_EQ(rig.sink.deliveries.size(), 25U);
}

// The end of the tape waits on the busy main thread, which meanwhile rewinds.
TEST_F(DeckStatus, AnEarlierChangeIsAnnouncedBeforeALaterOne) {
  DeckRig rig(tapeOf(10));
  rig.command(kDeckPlay);
  rig.runtime.clock().sleepFor(1s);
  rig.command(kDeckReverse);
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckPlay, kDeckStop, kDeckReverse));
  rig.runFor(100ms);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckReverse);
  EXPECT_EQ(rig.notices.size(), 6U);
}

TEST_F(DeckStatus, ACommandGivenOnANotificationIsAnnouncedAfterIt) {
  DeckRig rig(tapeOf(20));
  rig.onWillChange = [&] {
    if (rig.deck->avcTransportControls() == kDeckStop) rig.command(kDeckPause);
  };
  rig.command(kDeckPlay);
  EXPECT_THAT(rig.notices, ElementsAre(DeckNotice{false, kDeckStop, 0s}, DeckNotice{true, kDeckPlay, 0s},
                                       DeckNotice{false, kDeckPlay, 0s}, DeckNotice{true, kDeckPause, 0s}));
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckPause);
}

TEST_F(DeckStatus, TwoDecksSpeakForThemselves) {
  DeckRig rig(tapeOf(20));
  SimulatedDeck second(rig.runtime, rig.center, rig.image, {}, rig.log);
  second.setAVCTransportControls(kDeckPause);
  ASSERT_EQ(rig.rawNotices.size(), 2U);
  EXPECT_EQ(rig.rawNotices[0].object, &second);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
}

struct Reaction {
  const char* name;
  AVCTransportControls before;
  AVCTransportControls after;
  Duration expected;
};

class DeckReactionTime : public DeckStatus, public testing::WithParamInterface<Reaction> {};

TEST_P(DeckReactionTime, PassesBeforeTheDeckObeys) {
  DeckOptions options;
  options.reactions = {100ms, 2s, 700ms};
  DeckRig rig(tapeOf(2000), options);
  rig.command(GetParam().before);
  rig.runFor(3s);
  rig.notices.clear();
  const Duration start = rig.now();
  rig.command(GetParam().after);
  EXPECT_THAT(rig.notices, IsEmpty());
  EXPECT_EQ(rig.deck->avcTransportControls(), GetParam().before);
  rig.runFor(3s);
  EXPECT_THAT(rig.notices, ElementsAre(DeckNotice{false, GetParam().before, start + GetParam().expected},
                                       DeckNotice{true, GetParam().after, start + GetParam().expected}));
  EXPECT_TRUE(rig.allOnMainThread);
}

INSTANTIATE_TEST_SUITE_P(Table, DeckReactionTime,
                         testing::Values(Reaction{"PlayFromStop", kDeckStop, kDeckPlay, 2100ms},
                                         Reaction{"PauseFromStop", kDeckStop, kDeckPause, 2100ms},
                                         Reaction{"WindFromStop", kDeckStop, kDeckWind, 2100ms},
                                         Reaction{"PauseFromPlay", kDeckPlay, kDeckPause, 100ms},
                                         Reaction{"StopFromPlay", kDeckPlay, kDeckStop, 100ms},
                                         Reaction{"PlayFromPause", kDeckPause, kDeckPlay, 100ms},
                                         Reaction{"StopFromWind", kDeckWind, kDeckStop, 800ms},
                                         Reaction{"PlayFromWind", kDeckWind, kDeckPlay, 800ms}),
                         [](const auto& each) { return each.param.name; });

TEST_F(DeckStatus, TheTapeMovesWhenTheDeckHasObeyed) {
  DeckOptions options;
  options.reactions.threadUp = 2s;
  DeckRig rig(tapeOf(20), options);
  rig.command(kDeckPlay);
  rig.runFor(2s + 100ms);
  EXPECT_THAT(rig.sink.deliveries,
              ElementsAre(test::DeckDelivery{0, 2s}, test::DeckDelivery{1, 2040ms}, test::DeckDelivery{2, 2080ms}));
}

TEST_F(DeckStatus, TheLastOfSeveralSlowCommandsIsTheOneThatStays) {
  DeckOptions options;
  options.reactions = {100ms, 2s, 0s};
  DeckRig rig(tapeOf(200), options);
  rig.command(kDeckPlay);
  rig.runFor(50ms);
  rig.command(kDeckStop);
  rig.runFor(5s);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
  EXPECT_LE(rig.sink.deliveries.size(), 1U);
}

TEST_F(DeckStatus, ALateStatusLagsBehindTheTape) {
  DeckOptions options;
  options.faults.lateStatus = 500ms;
  DeckRig rig(tapeOf(20), options);
  rig.command(kDeckPlay);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
  rig.runFor(3s);
  ASSERT_FALSE(rig.sink.deliveries.empty());
  EXPECT_EQ(rig.sink.deliveries.front(), (test::DeckDelivery{0, 0s}));
  EXPECT_THAT(rig.notices, ElementsAre(DeckNotice{false, kDeckStop, 500ms}, DeckNotice{true, kDeckPlay, 500ms},
                                       DeckNotice{false, kDeckPlay, 1300ms}, DeckNotice{true, kDeckStop, 1300ms}));
}

TEST_F(DeckStatus, LateStatusesComeInTheOrderOfTheirChanges) {
  DeckOptions options;
  options.faults.lateStatus = 500ms;
  DeckRig rig(tapeOf(2000), options);
  const AVCTransportControls commands[] = {kDeckPlay, kDeckPause, kDeckReverse, kDeckWind};
  for (const AVCTransportControls& command : commands) {
    rig.command(command);
    rig.runFor(100ms);
  }
  EXPECT_THAT(rig.announced(), IsEmpty());
  rig.runFor(1s);
  EXPECT_THAT(rig.announced(), testing::ElementsAreArray(commands));
}

TEST_F(DeckStatus, ARefusedCommandChangesNothingAndIsLogged) {
  DeckOptions options;
  options.faults.refusedCommands = 1;
  DeckRig rig(tapeOf(20), options);
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_THAT(rig.notices, IsEmpty());
  EXPECT_THAT(rig.sink.deliveries, IsEmpty());
  EXPECT_THAT(rig.log.messages(), ElementsAre(HasSubstr("refused the command mode 1 speed 10000")));
}

TEST_F(DeckStatus, TheSameSeedRefusesTheSameCommands) {
  const auto refusals = [&](std::uint64_t seed) {
    DeckOptions options;
    options.faults.refusedCommands = 0.3;
    options.seed = seed;
    DeckRig rig(tapeOf(20), options);
    std::vector<bool> refused;
    for (int i = 0; i < 400; ++i) {
      const std::size_t before = rig.log.lines.size();
      rig.command(i % 2 == 0 ? kDeckPause : kDeckStop);
      refused.push_back(rig.log.lines.size() > before);
    }
    return refused;
  };
  const std::vector<bool> first = refusals(7);
  EXPECT_EQ(first, refusals(7));
  EXPECT_NE(first, refusals(8));
  EXPECT_NEAR(static_cast<double>(std::count(first.begin(), first.end(), true)), 120, 40);
}

TEST_F(DeckStatus, ALostCableTakesTheAttributeAwayAndTellsTheSink) {
  DeckOptions options;
  options.faults.cableLostAfterFrames = 5;
  DeckRig rig(tapeOf(20), options);
  ASSERT_TRUE(rig.deck->open().ok());
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3, 4));
  ASSERT_EQ(rig.sink.errors.size(), 1U);
  EXPECT_THAT(rig.sink.errors[0].text(), HasSubstr("Its cable was pulled"));
  EXPECT_EQ(rig.deck->avcTransportControls(), std::nullopt);
  ASSERT_EQ(rig.notices.size(), 4U);
  EXPECT_EQ(rig.notices.back(), (DeckNotice{true, std::nullopt, 160ms}));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_EQ(rig.notices.size(), 4U);
  EXPECT_EQ(rig.sink.deliveries.size(), 5U);
  rig.deck->close();
  const Status again = rig.deck->open();
  ASSERT_FALSE(again.ok());
  EXPECT_THAT(again.error().text(), HasSubstr("does not answer"));
}

TEST_F(DeckStatus, ADeckIsOpenedOnceAtATime) {
  DeckRig rig(tapeOf(20));
  EXPECT_FALSE(rig.deck->isOpen());
  ASSERT_TRUE(rig.deck->open().ok());
  EXPECT_TRUE(rig.deck->isOpen());
  const Status second = rig.deck->open();
  ASSERT_FALSE(second.ok());
  EXPECT_THAT(second.error().text(), HasSubstr("is in use"));
  EXPECT_TRUE(rig.deck->isOpen());
  rig.deck->close();
  EXPECT_FALSE(rig.deck->isOpen());
  EXPECT_TRUE(rig.deck->open().ok());
}

TEST_F(DeckStatus, TheDeckSaysWhatItIs) {
  const std::string path = tapeOf(2);
  DeckRig rig(path);
  EXPECT_EQ(rig.deck->uniqueID(), "tape:" + path);
  EXPECT_THAT(rig.deck->localizedDisplayName(), HasSubstr(path));
  EXPECT_FALSE(rig.deck->avcTransportControlsReadOnly());
  EXPECT_TRUE(rig.deck->canWait());
  DeckOptions live;
  live.live = true;
  EXPECT_FALSE(DeckRig(path, live).deck->canWait());
}

}  // namespace
}  // namespace zq::backend

// Which frames the deck delivers, and when, for each mode and speed of the transport.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/deck_rig.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::AVCTransportControls;
using platform::Duration;
using test::DeckDelivery;
using test::DeckRig;
using test::DeckTape;
using test::DeckTest;
using test::deckTick;
using test::kDeckPause;
using test::kDeckPlay;
using test::kDeckReverse;
using test::kDeckRewind;
using test::kDeckStop;
using test::kDeckWind;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Numbers = std::vector<std::int64_t>;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

/// The tape stands before frame 20, which it reached by playing.
struct TransportRow {
  const char* name;
  AVCTransportControls controls;
  Numbers expected;  // what the first ticks show
};

const Numbers kNothing;

const TransportRow kRows[] = {
    {"Stopped", {0, 0}, kNothing},
    {"Winding", {0, 13000}, kNothing},
    {"Rewinding", {0, -13000}, kNothing},
    {"Paused", {1, 0}, {19, 19, 19, 19, 19}},
    {"Playing", {1, 10000}, {20, 21, 22, 23, 24}},
    {"PlayingBackwards", {1, -10000}, {19, 18, 17, 16, 15}},
    {"ATenth", {1, 1000}, {20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 21, 21, 21}},
    {"ATenthBackwards", {1, -1000}, {19, 19, 19, 19, 19, 19, 19, 19, 19, 19, 18, 18, 18}},
    {"AQuarter", {1, 4000}, {20, 20, 20, 20, 21, 21, 21, 21, 22, 22}},
    {"AQuarterBackwards", {1, -4000}, {19, 19, 19, 19, 18, 18, 18, 18, 17, 17}},
    {"Half", {1, 7000}, {20, 20, 21, 21, 22, 22, 23}},
    {"HalfBackwards", {1, -7000}, {19, 19, 18, 18, 17, 17, 16}},
    {"SearchAtTwice", {1, 13000}, {20, 22, 24, 26, 28}},
    {"SearchAtTwiceBackwards", {1, -13000}, {19, 17, 15, 13, 11}},
    {"SearchAtFiveTimes", {1, 16000}, {20, 25, 30, 35, 40}},
    {"SearchAtFiveTimesBackwards", {1, -16000}, {19, 14, 9, 4}},
    {"SearchAtNineTimes", {1, 19000}, {20, 29, 38, 47, 56}},
    {"SearchAtNineTimesBackwards", {1, -19000}, {19, 10, 1}},
};

class DeckTransport : public DeckTest {
 protected:
  /// Plays `frames` frames from here on and stops behind the last one.
  static void playAndStop(DeckRig& rig, std::int64_t frames, DVSystem system = kPal) {
    rig.command(kDeckPlay);
    rig.runFor(deckTick(system, frames) - 1ms);
    rig.command(kDeckStop);
    rig.runFor(1s);
  }
  /// What the deck shows in `ticks` ticks from here on.
  static Numbers shownIn(DeckRig& rig, std::int64_t ticks) {
    rig.sink.deliveries.clear();
    rig.runFor(deckTick(kPal, ticks) - 1ms);
    return rig.sink.numbers();
  }
};

class DeckTransportRow : public DeckTransport,
                         public testing::WithParamInterface<std::tuple<TransportRow, DVSystem>> {};

TEST_P(DeckTransportRow, ShowsTheFramesUnderTheHeadAtTheFrameRate) {
  const auto& [row, system] = GetParam();
  DeckRig rig(tapeOf(200, system));
  playAndStop(rig, 20, system);
  rig.sink.deliveries.clear();
  const Duration start = rig.now();
  rig.command(row.controls);
  EXPECT_EQ(rig.deck->avcTransportControls(), row.controls);
  const auto ticks = static_cast<std::int64_t>(row.expected.empty() ? 4 : row.expected.size());
  rig.runFor(deckTick(system, ticks) - 1ms);
  std::vector<DeckDelivery> expected;
  for (const std::int64_t number : row.expected) {
    expected.push_back({number, start + deckTick(system, static_cast<std::int64_t>(expected.size()))});
  }
  EXPECT_THAT(rig.sink.deliveries, ElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(Table, DeckTransportRow,
                         testing::Combine(testing::ValuesIn(kRows), testing::Values(kPal, kNtsc)),
                         [](const auto& each) {
                           return std::string(std::get<0>(each.param).name) +
                                  (std::get<1>(each.param) == kPal ? "Pal" : "Ntsc");
                         });

TEST_F(DeckTransport, TheTapeStandsAtItsBeginningAndShowsNothing) {
  DeckRig rig(tapeOf(20));
  rig.runFor(10s);
  EXPECT_THAT(rig.sink.deliveries, IsEmpty());
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
  EXPECT_THAT(rig.notices, IsEmpty());
}

TEST_F(DeckTransport, WindingPassesTwentyFiveFramesATick) {
  DeckRig rig(tapeOf(200));
  playAndStop(rig, 20);
  rig.command(kDeckWind);
  EXPECT_THAT(shownIn(rig, 4), IsEmpty());
  rig.command(kDeckStop);
  rig.runFor(1s);
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(120, 121));
}

TEST_F(DeckTransport, RewindingPassesTwentyFiveFramesATick) {
  DeckRig rig(tapeOf(200));
  playAndStop(rig, 120);
  rig.command(kDeckRewind);
  EXPECT_THAT(shownIn(rig, 4), IsEmpty());
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(20, 21));
}

TEST_F(DeckTransport, TheSpeedsAreOptions) {
  DeckOptions options;
  options.speeds.wind = 40000;
  options.speeds.slow[1] = 500;
  options.speeds.search[0] = 3000;
  DeckRig rig(tapeOf(200), options);
  rig.command(kDeckWind);
  EXPECT_THAT(shownIn(rig, 1), IsEmpty());
  rig.command({1, 13000});
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(40, 43, 46));
  rig.command({1, 4000});
  EXPECT_THAT(shownIn(rig, 4), ElementsAre(49, 49, 50, 50));
}

TEST_F(DeckTransport, PauseAtTheBeginningShowsTheFirstFrame) {
  DeckRig rig(tapeOf(20));
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(0, 0, 0));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(0, 1, 2));
}

TEST_F(DeckTransport, PlayAfterPauseLosesAndRepeatsNothing) {
  DeckRig rig(tapeOf(50));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(0, 1, 2));
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 4), ElementsAre(2, 2, 2, 2));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(3, 4, 5));
}

TEST_F(DeckTransport, PauseBetweenReverseAndPlayKeepsTheFrame) {
  DeckRig rig(tapeOf(50));
  playAndStop(rig, 10);
  rig.command(kDeckReverse);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(9, 8, 7));
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(7, 7));
  rig.command(kDeckReverse);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(6, 5));
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(5, 5));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(5, 6, 7));
}

TEST_F(DeckTransport, PlayAfterReverseLosesNothing) {
  DeckRig rig(tapeOf(50));
  playAndStop(rig, 10);
  rig.command(kDeckReverse);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(9, 8, 7));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(7, 8, 9));
}

TEST_F(DeckTransport, PauseAfterStopShowsTheFrameThatWasShownLast) {
  DeckRig rig(tapeOf(50));
  playAndStop(rig, 10);
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(9, 9));
}

TEST_F(DeckTransport, PauseAfterWindingShowsTheFrameThatTheTapeCameTo) {
  DeckRig rig(tapeOf(200));
  rig.command(kDeckWind);
  shownIn(rig, 2);
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(50, 50));
  rig.command(kDeckPlay);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(50, 51));
}

TEST_F(DeckTransport, PauseAfterRewindingToTheBeginningShowsTheFirstFrame) {
  DeckRig rig(tapeOf(50));
  playAndStop(rig, 10);
  rig.command(kDeckRewind);
  rig.runFor(1s);
  rig.command(kDeckPause);
  EXPECT_THAT(shownIn(rig, 2), ElementsAre(0, 0));
}

TEST_F(DeckTransport, ACommandThatIsRepeatedDoesNotHurryTheTape) {
  DeckRig rig(tapeOf(50));
  for (int i = 0; i < 39; ++i) {
    rig.command(kDeckPlay);
    rig.runFor(10ms);
  }
  ASSERT_EQ(rig.sink.deliveries.size(), 10U);
  for (std::int64_t i = 0; i < 10; ++i) {
    EXPECT_EQ(rig.sink.deliveries[static_cast<std::size_t>(i)], (DeckDelivery{i, deckTick(kPal, i)}));
  }
}

TEST_F(DeckTransport, CommandsThatFollowEachOtherQuicklyKeepTheFrameRate) {
  DeckRig rig(tapeOf(50));
  for (int i = 0; i < 39; ++i) {
    rig.command(i % 2 == 0 ? kDeckPlay : kDeckPause);
    rig.runFor(10ms);
  }
  for (std::size_t i = 0; i < rig.sink.deliveries.size(); ++i) {
    EXPECT_EQ(rig.sink.deliveries[i].at, deckTick(kPal, static_cast<std::int64_t>(i)));
  }
  EXPECT_EQ(rig.sink.deliveries.size(), 10U);
}

TEST_F(DeckTransport, AnUnknownSpeedIsNormalSpeed) {
  DeckRig rig(tapeOf(50));
  rig.command({1, 5000});
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(0, 1, 2));
  rig.command({1, -12345});
  EXPECT_THAT(shownIn(rig, 3), ElementsAre(2, 1, 0));
}

// 30000 frames of 30000/1001 a second are 1001 s, to the nanosecond. Nobody takes the frames before, which saves
// reading them.
TEST_F(DeckTransport, AnHourOf525FramesDoesNotDrift) {
  DeckTape tape(folder_.file("hour.dv"));
  const std::string path = tape.add(kNtsc, 3).path();
  tape.setSize(108'000 * frameSizeOf(kNtsc));
  for (const int thirds : {1, 3}) {
    DeckRig rig(path);
    rig.deck->stopStreaming();
    rig.command(kDeckPlay);
    rig.runFor(1001s * thirds - 1ms);
    rig.deck->startStreaming(rig.sink);
    rig.runFor(1s);
    ASSERT_EQ(rig.sink.deliveries.size(), 30U);
    for (std::int64_t i = 0; i < 30; ++i) {
      EXPECT_EQ(rig.sink.deliveries[static_cast<std::size_t>(i)].at, 1001s * thirds + deckTick(kNtsc, i));
    }
  }
}

}  // namespace
}  // namespace zq::backend

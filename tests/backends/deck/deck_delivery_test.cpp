// The delivery thread of the deck and whoever takes its frames: slow ones, ones that leave, and files that go bad.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/deck_rig.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using test::DeckDelivery;
using test::DeckRig;
using test::DeckSink;
using test::DeckTape;
using test::DeckTest;
using test::deckTick;
using test::kDeckPause;
using test::kDeckPlay;
using test::kDeckStop;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DVSystem kPal = DVSystem::pal625_50;

class DeckDeliveries : public DeckTest {
 protected:
  /// The sink takes this long for the frame.
  static void holdUp(DeckRig& rig, std::int64_t frame, platform::Duration duration) {
    rig.sink.onFrame = [&rig, frame, duration](std::int64_t number) {
      if (number == frame) rig.runtime.clock().sleepFor(duration);
    };
  }
};

TEST_F(DeckDeliveries, StopStreamingDoesNotWaitAndWaitForDeliveryDoes) {
  DeckRig rig(tapeOf(50));
  bool delivered = false;
  rig.sink.onFrame = [&](std::int64_t) {
    rig.runtime.clock().sleepFor(3s);
    delivered = true;
  };
  rig.command(kDeckPlay);
  rig.runFor(1s);
  rig.deck->stopStreaming();
  EXPECT_EQ(rig.now(), 1s);
  EXPECT_FALSE(delivered);
  rig.deck->waitForDelivery();
  EXPECT_EQ(rig.now(), 3s);
  EXPECT_TRUE(delivered);
  rig.runFor(10s);
  EXPECT_EQ(rig.sink.deliveries.size(), 1U);
}

TEST_F(DeckDeliveries, WaitForDeliveryReturnsAtOnceWhenNoneIsUnderWay) {
  DeckRig rig(tapeOf(50));
  rig.command(kDeckPlay);
  rig.runFor(100ms);
  rig.deck->stopStreaming();
  rig.deck->waitForDelivery();
  EXPECT_EQ(rig.now(), 100ms);
}

TEST_F(DeckDeliveries, StreamingCanBeStoppedFromADelivery) {
  DeckRig rig(tapeOf(50));
  rig.sink.onFrame = [&](std::int64_t number) {
    if (number == 4) rig.deck->stopStreaming();
  };
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_EQ(rig.sink.deliveries.size(), 5U);
}

TEST_F(DeckDeliveries, TheTapeRunsOnWhileNobodyListens) {
  DeckRig rig(tapeOf(50));
  rig.deck->stopStreaming();
  rig.command(kDeckPlay);
  rig.runFor(deckTick(kPal, 10) - 1ms);
  rig.deck->startStreaming(rig.sink);
  rig.runFor(deckTick(kPal, 3));
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(10, 11, 12));
}

TEST_F(DeckDeliveries, FramesGoToTheSinkThatAskedLast) {
  DeckRig rig(tapeOf(50));
  DeckSink second(rig.runtime.clock());
  rig.command(kDeckPlay);
  rig.runFor(deckTick(kPal, 2) - 1ms);
  rig.deck->startStreaming(second);
  rig.runFor(deckTick(kPal, 2));
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1));
  EXPECT_THAT(second.numbers(), ElementsAre(2, 3));
  rig.deck->stopStreaming();
  rig.deck->waitForDelivery();
}

TEST_F(DeckDeliveries, ATapeImageWaitsForWhoeverHoldsItUp) {
  DeckRig rig(tapeOf(300));
  holdUp(rig, 3, 5s);
  rig.command(kDeckPlay);
  rig.runFor(5s + deckTick(kPal, 5) - 1ms);
  EXPECT_THAT(rig.sink.deliveries,
              ElementsAre(DeckDelivery{0, 0ms}, DeckDelivery{1, 40ms}, DeckDelivery{2, 80ms}, DeckDelivery{3, 120ms},
                          DeckDelivery{4, 5120ms}, DeckDelivery{5, 5160ms}));
}

TEST_F(DeckDeliveries, ATapeImageLosesNothingHoweverItIsHeldUp) {
  DeckRig rig(tapeOf(300));
  std::mt19937 random(4);
  rig.sink.onFrame = [&](std::int64_t) {
    rig.runtime.clock().sleepFor(std::chrono::milliseconds(random() % 10 == 0 ? random() % 4000 : random() % 60));
  };
  rig.command(kDeckPlay);
  rig.runFor(1h);
  ASSERT_EQ(rig.sink.deliveries.size(), 300U);
  for (std::size_t i = 0; i < 300; ++i) EXPECT_EQ(rig.sink.deliveries[i].number, static_cast<std::int64_t>(i));
}

TEST_F(DeckDeliveries, AShortHoldUpIsCaughtUp) {
  for (const bool live : {false, true}) {
    DeckOptions options;
    options.live = live;
    DeckRig rig(tapeOf(50), options);
    holdUp(rig, 3, 900ms);
    rig.command(kDeckPlay);
    rig.runFor(deckTick(kPal, 40) - 1ms);
    ASSERT_EQ(rig.sink.deliveries.size(), 40U);
    EXPECT_EQ(rig.sink.deliveries.back(), (DeckDelivery{39, deckTick(kPal, 39)}));
  }
}

// Frame 3 is held until 5120 ms; what passed more than a second earlier is gone.
TEST_F(DeckDeliveries, ALiveDeckPlaysOnAndLosesWhatPassesMeanwhile) {
  DeckOptions options;
  options.live = true;
  DeckRig rig(tapeOf(300), options);
  holdUp(rig, 3, 5s);
  rig.command(kDeckPlay);
  rig.runFor(deckTick(kPal, 200) - 1ms);
  const std::vector<std::int64_t> numbers = rig.sink.numbers();
  ASSERT_GT(numbers.size(), 5U);
  EXPECT_THAT(std::vector(numbers.begin(), numbers.begin() + 6), ElementsAre(0, 1, 2, 3, 103, 104));
  EXPECT_EQ(rig.sink.deliveries.back(), (DeckDelivery{199, deckTick(kPal, 199)}));
}

TEST_F(DeckDeliveries, FramesThatAreHeldStayAsTheyAre) {
  DeckRig rig(tapeOf(100));
  rig.sink.keepFrames = true;
  rig.command(kDeckPlay);
  rig.runFor(10s);
  ASSERT_EQ(rig.sink.frames.size(), 100U);
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(test::deckFrameNumber(rig.sink.frames[i].bytes()), static_cast<std::int64_t>(i));
  }
}

TEST_F(DeckDeliveries, AFileThatShrinksWhileItPlaysStopsTheDeckWithAnError) {
  DeckTape tape(folder_.file("tape.dv"));
  DeckRig rig(tape.add(kPal, 200).path());
  rig.sink.onFrame = [&](std::int64_t number) {
    if (number == 3) tape.setSize(10 * frameSizeOf(kPal) + 777);
  };
  rig.command(kDeckPlay);
  rig.runFor(5s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
  ASSERT_EQ(rig.sink.errors.size(), 1U);
  EXPECT_THAT(rig.sink.errors[0].text(), HasSubstr("became shorter while it was read"));
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckPlay, kDeckStop));
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
}

TEST_F(DeckDeliveries, AFileThatIsEmptiedWhileItWindsStopsTheDeckWithAnError) {
  DeckTape tape(folder_.file("tape.dv"));
  DeckRig rig(tape.add(kPal, 200).path());
  tape.setSize(0);
  rig.command(test::kDeckWind);
  rig.runFor(5s);
  EXPECT_EQ(rig.sink.errors.size(), 1U);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
}

TEST_F(DeckDeliveries, WhoeverHearsOfTheErrorMayStopStreaming) {
  DeckTape tape(folder_.file("tape.dv"));
  DeckRig rig(tape.add(kPal, 20).path());
  rig.sink.onError = [&] { rig.deck->stopStreaming(); };
  tape.setSize(2 * frameSizeOf(kPal));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  rig.deck->waitForDelivery();
  EXPECT_EQ(rig.sink.errors.size(), 1U);
}

TEST_F(DeckDeliveries, AnErrorThatNobodyListensToIsLogged) {
  DeckTape tape(folder_.file("tape.dv"));
  DeckRig rig(tape.add(kPal, 20).path());
  rig.deck->stopStreaming();
  tape.setSize(2 * frameSizeOf(kPal));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  ASSERT_EQ(rig.log.lines.size(), 1U);
  EXPECT_EQ(rig.log.lines[0].level, LogLevel::error);
  EXPECT_THAT(rig.log.lines[0].message, HasSubstr("became shorter"));
}

TEST_F(DeckDeliveries, ADeckCanGoWhileItPlays) {
  DeckRig rig(tapeOf(50));
  rig.command(kDeckPlay);
  rig.runFor(100ms);
  rig.deck.reset();
  const std::size_t delivered = rig.sink.deliveries.size();
  const std::size_t announced = rig.notices.size();
  rig.runFor(10s);
  EXPECT_EQ(rig.sink.deliveries.size(), delivered);
  EXPECT_EQ(rig.notices.size(), announced);
}

TEST_F(DeckDeliveries, ADeckThatGoesWaitsForTheDeliveryThatIsUnderWay) {
  DeckRig rig(tapeOf(50));
  bool delivered = false;
  rig.sink.onFrame = [&](std::int64_t) {
    rig.runtime.clock().sleepFor(3s);
    delivered = true;
  };
  rig.command(kDeckPlay);
  rig.runFor(1s);
  rig.deck.reset();
  EXPECT_TRUE(delivered);
  EXPECT_EQ(rig.now(), 3s);
  EXPECT_EQ(rig.sink.deliveries.size(), 1U);
}

// The end of the tape and the late status of its beginning are on their way to the main thread when the deck goes.
TEST_F(DeckDeliveries, WhatADeckHadStillToAnnounceGoesWithIt) {
  DeckOptions options;
  options.faults.lateStatus = 1s;
  DeckRig rig(tapeOf(5), options);
  rig.command(kDeckPlay);
  rig.runFor(100ms);
  rig.runtime.clock().sleepFor(500ms);
  rig.deck.reset();
  rig.runFor(10s);
  EXPECT_THAT(rig.notices, IsEmpty());
}

TEST_F(DeckDeliveries, TheSameRunIsTheSameOnEverySeedOfTheRuntime) {
  const std::string path = tapeOf(50);
  const auto run = [&](std::uint64_t seed) {
    DeckRig rig(path, {}, seed);
    rig.command(kDeckPlay);
    rig.runFor(505ms);
    rig.command(kDeckPause);
    rig.runFor(505ms);
    rig.command({1, -13000});
    rig.runFor(3s);
    return std::pair(rig.sink.deliveries, rig.notices);
  };
  const auto first = run(0);
  for (std::uint64_t seed = 1; seed < 20; ++seed) EXPECT_EQ(run(seed), first) << "seed " << seed;
}

}  // namespace
}  // namespace zq::backend

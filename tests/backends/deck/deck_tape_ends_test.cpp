// What the deck does at the ends of its tape, and where the tape changes system.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/deck_rig.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::AVCTransportControls;
using test::DeckDelivery;
using test::DeckNotice;
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
using testing::IsEmpty;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

class DeckTapeEnds : public DeckTest {};

TEST_F(DeckTapeEnds, PlayingStopsBehindTheLastFrameAndSaysSo) {
  DeckRig rig(tapeOf(5));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_THAT(rig.notices, ElementsAre(DeckNotice{false, kDeckStop, 0s}, DeckNotice{true, kDeckPlay, 0s},
                                       DeckNotice{false, kDeckPlay, 200ms}, DeckNotice{true, kDeckStop, 200ms}));
  EXPECT_TRUE(rig.allOnMainThread);
  EXPECT_THAT(rig.sink.errors, IsEmpty());
}

TEST_F(DeckTapeEnds, PlayingBackwardsStopsBeforeTheFirstFrameAndSaysSo) {
  DeckRig rig(tapeOf(5));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  rig.command(kDeckReverse);
  rig.runFor(1s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3, 4, 4, 3, 2, 1, 0));
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckPlay, kDeckStop, kDeckReverse, kDeckStop));
  EXPECT_EQ(rig.notices.back().at, 1200ms);
}

class DeckStopsAtBothEnds : public DeckTapeEnds, public testing::WithParamInterface<AVCTransportControls> {};

TEST_P(DeckStopsAtBothEnds, AndPlaysFromThere) {
  const AVCTransportControls forward = GetParam();
  const AVCTransportControls backward{forward.playbackMode, -forward.speed};
  DeckRig rig(tapeOf(60));
  rig.command(forward);
  rig.runFor(60s);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
  rig.sink.deliveries.clear();
  rig.command(kDeckReverse);
  rig.runFor(deckTick(kPal, 3) - 1ms);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(59, 58, 57));
  rig.command(backward);
  rig.runFor(60s);
  EXPECT_EQ(rig.deck->avcTransportControls(), kDeckStop);
  rig.sink.deliveries.clear();
  rig.command(kDeckPlay);
  rig.runFor(deckTick(kPal, 3) - 1ms);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2));
  EXPECT_THAT(rig.announced(), ElementsAre(forward, kDeckStop, kDeckReverse, backward, kDeckStop, kDeckPlay));
}

INSTANTIATE_TEST_SUITE_P(Speeds, DeckStopsAtBothEnds,
                         testing::Values(AVCTransportControls{0, 13000}, AVCTransportControls{1, 1000},
                                         AVCTransportControls{1, 4000}, AVCTransportControls{1, 7000},
                                         AVCTransportControls{1, 10000}, AVCTransportControls{1, 13000},
                                         AVCTransportControls{1, 16000}, AVCTransportControls{1, 19000}),
                         [](const auto& each) {
                           return "Mode" + std::to_string(each.param.playbackMode) + "Speed" +
                                  std::to_string(each.param.speed);
                         });

TEST_F(DeckTapeEnds, PlayAtTheEndStopsAgainAtOnce) {
  DeckRig rig(tapeOf(3));
  rig.command(kDeckPlay);
  rig.runFor(1s);
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_EQ(rig.sink.deliveries.size(), 3U);
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckPlay, kDeckStop, kDeckPlay, kDeckStop));
  EXPECT_EQ(rig.notices.back().at, 1s);
}

// Whoever commanded it did not know that the tape would stand by then.
TEST_F(DeckTapeEnds, ACommandThatIsOnItsWayIsObeyedAfterTheTapeHasStopped) {
  DeckOptions options;
  options.reactions.command = 1s;
  DeckRig rig(tapeOf(5), options);
  rig.command(kDeckRewind);
  rig.runFor(500ms);
  rig.command(kDeckPlay);
  rig.runFor(3s);
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckRewind, kDeckStop, kDeckPlay, kDeckStop));
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(DeckTapeEnds, PauseAtTheEndShowsTheLastFrame) {
  DeckRig rig(tapeOf(30));
  rig.command(kDeckWind);
  rig.runFor(1s);
  rig.command(kDeckPause);
  rig.runFor(deckTick(kPal, 3) - 1ms);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(29, 29, 29));
}

TEST_F(DeckTapeEnds, TheTapeStopsEvenWhenNobodyTakesItsFrames) {
  DeckRig rig(tapeOf(5));
  rig.deck->stopStreaming();
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_THAT(rig.announced(), ElementsAre(kDeckPlay, kDeckStop));
  EXPECT_THAT(rig.sink.deliveries, IsEmpty());
}

TEST_F(DeckTapeEnds, APartOfAFrameAtTheEndIsNotPlayed) {
  DeckTape tape(folder_.file("cut.dv"));
  const std::string path = tape.add(kPal, 5).path();
  tape.setSize(tape.size() - 1);
  DeckRig rig(path);
  rig.command(kDeckPlay);
  rig.runFor(1s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(rig.sink.errors, IsEmpty());
}

TEST_F(DeckTapeEnds, AChangeOfSystemChangesTheTickTheFormatAndTheSize) {
  DeckRig rig(DeckTape(folder_.file("mixed.dv")).add(kPal, 3).add(kNtsc, 4).add(kPal, 3).path());
  rig.command(kDeckPlay);
  rig.runFor(1s);
  const platform::Duration change = deckTick(kPal, 3);
  const platform::Duration back = change + deckTick(kNtsc, 4);
  EXPECT_THAT(rig.sink.deliveries,
              ElementsAre(DeckDelivery{0, deckTick(kPal, 0)}, DeckDelivery{1, deckTick(kPal, 1)},
                          DeckDelivery{2, deckTick(kPal, 2)}, DeckDelivery{3, change + deckTick(kNtsc, 0)},
                          DeckDelivery{4, change + deckTick(kNtsc, 1)}, DeckDelivery{5, change + deckTick(kNtsc, 2)},
                          DeckDelivery{6, change + deckTick(kNtsc, 3)}, DeckDelivery{7, back + deckTick(kPal, 0)},
                          DeckDelivery{8, back + deckTick(kPal, 1)}, DeckDelivery{9, back + deckTick(kPal, 2)}));
  for (std::size_t i = 0; i < 10; ++i) {
    const bool isPal = i < 3 || i >= 7;
    EXPECT_EQ(rig.sink.sizes[i], frameSizeOf(isPal ? kPal : kNtsc));
    EXPECT_EQ(rig.sink.formats[i].formatType, isPal ? platform::fourCharCode("dvcp") : platform::fourCharCode("dvc "));
    EXPECT_EQ(rig.sink.formats[i].mediaType, platform::QTMediaTypeVideo);
  }
}

TEST_F(DeckTapeEnds, AChangeOfSystemIsPassedBackwardsToo) {
  DeckRig rig(DeckTape(folder_.file("mixed.dv")).add(kPal, 3).add(kNtsc, 3).path());
  rig.command(kDeckWind);
  rig.runFor(1s);
  rig.command(kDeckReverse);
  rig.runFor(1s);
  EXPECT_THAT(rig.sink.numbers(), ElementsAre(5, 4, 3, 2, 1, 0));
  EXPECT_EQ(rig.sink.deliveries.back().at - rig.sink.deliveries.front().at, deckTick(kNtsc, 3) + deckTick(kPal, 2));
}

TEST_F(DeckTapeEnds, TheFormatOfTheDeckIsThatOfItsFirstFrame) {
  DeckRig pal(DeckTape(folder_.file("pal.dv")).add(kPal).add(kNtsc, 3).path());
  DeckRig ntsc(DeckTape(folder_.file("ntsc.dv")).add(kNtsc).add(kPal, 3).path());
  ASSERT_EQ(pal.deck->formatDescriptions().size(), 1U);
  EXPECT_EQ(pal.deck->formatDescriptions()[0].formatType, platform::fourCharCode("dvcp"));
  EXPECT_EQ(ntsc.deck->formatDescriptions()[0].formatType, platform::fourCharCode("dvc "));
}

}  // namespace
}  // namespace zq::backend

// Recording from and to where the tape stands, with the deck's own reactions and faults.

#include <gmock/gmock.h>

#include "support/capture_scenario.h"

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(TapeTransport, FromAPausedTapeTheClipBeginsAtTheVeryFrameThatWasShown) {
  CaptureScenario scenario({{150, 0, 0}});
  scenario.settings.setBoolForKey(ZQACDetectScene, false);
  scenario.controller().setDevicePlaying(true);
  scenario.letPass(3s);
  scenario.controller().setDevicePlaying(false);
  scenario.letPass(1s);
  const TimecodeValue shown = scenario.controller().currentTimecodeValue();
  ASSERT_NE(shown, nullptr);
  const auto stoodAt = static_cast<std::uint32_t>(shown->mSeconds * 25 + shown->mFrames);
  ASSERT_GT(stoodAt, 70U);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(1), idsFromTo(stoodAt, 149));
  EXPECT_EQ(*scenario.delegate.infos.at(0).clipStartTimecode, *shown);
}

TEST(TapeTransport, TheOverlayIsShownWhileItIsRecordedOnly) {
  CaptureScenario scenario({{50, 0, 0}});
  EXPECT_TRUE(scenario.overlay.isHidden());
  bool hidden = true;
  scenario.delegate.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo&) {
    if (controller.isRecording()) hidden = scenario.overlay.isHidden();
  };
  scenario.record();
  EXPECT_FALSE(hidden);
  EXPECT_TRUE(scenario.overlay.isHidden());
  EXPECT_EQ(scenario.overlay.timecode(), timecodeOf(0, 0, 1, 24, 1));
}

TEST(TapeTransport, AtTheEndOfTheTapeTheWatchdogEndsWhatNobodyElseDoes) {
  CaptureScenario scenario({{30, 0, 0}});
  scenario.asksWhetherItPlays = false;
  scenario.settings.setBoolForKey(ZQACDetectEndTape, true);
  scenario.settings.setIntegerForKey(ZQACDetectEndTapeSecond, 2);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 29));
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(0U, 29U));
}

TEST(TapeTransport, ADeckThatThreadsUpFirstIsWaitedFor) {
  backend::DeckOptions options;
  options.reactions.command = 300ms;
  options.reactions.threadUp = 4s;
  CaptureScenario scenario({{30, 0, 0}}, options);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 29));
}

// A device that does not answer has no transport that could be asked; the frames that stay away are the sign.
TEST(TapeTransport, ALostCableLeavesWhatWasCapturedComplete) {
  backend::DeckOptions options;
  options.faults.cableLostAfterFrames = 20;
  CaptureScenario scenario({{50, 0, 0}}, options);
  scenario.settings.setBoolForKey(ZQACDetectEndTape, true);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 19));
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(0U, 19U));
}

TEST(TapeTransport, AStopInMidTapeEndsTheClipThere) {
  CaptureScenario scenario({{100, 0, 0}});
  scenario.controller().setRecording(true);
  scenario.letPass(2s);
  scenario.controller().setRecording(false);
  const TimecodeValue last = scenario.controller().currentTimecodeValue();
  scenario.takeDown();
  const auto end = static_cast<std::uint32_t>(last->mSeconds * 25 + last->mFrames);
  EXPECT_NEAR(end, 50, 2);
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, end));
  EXPECT_EQ(*scenario.delegate.infos.at(1).clipEndTimecode, *last);
}

TEST(TapeTransport, TwoRecordingsInARowGoIntoFilesOfTheirOwn) {
  CaptureScenario scenario({{100, 0, 0}});
  scenario.settings.setIntegerForKey(ZQACActionAfterRecord, 0);
  scenario.controller().setRecording(true);
  scenario.letPass(1s);
  scenario.controller().setRecording(false);
  scenario.letPass(1s);
  scenario.record();
  const auto first = scenario.movieOf(2);
  const auto second = scenario.movieOf(4);
  ASSERT_THAT(first, testing::Not(IsEmpty()));
  ASSERT_THAT(second, testing::Not(IsEmpty()));
  EXPECT_EQ(first, idsFromTo(0, first.back()));
  EXPECT_EQ(second, idsFromTo(second.front(), 99));
  EXPECT_NEAR(second.front() - first.back(), 25, 2);
}

TEST(TapeTransport, DestroyingTheControllerInMidTapeCompletesItsFiles) {
  CaptureScenario scenario({{100, 0, 0}});
  scenario.controller().setRecording(true);
  scenario.letPass(2s);
  scenario.takeDown();
  const auto movie = scenario.movieOf(2);
  EXPECT_THAT(movie, SizeIs(testing::Ge(45U)));
  EXPECT_EQ(movie, idsFromTo(0, static_cast<std::uint32_t>(movie.size()) - 1));
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(0U, movie.back()));
}

TEST(TapeTransport, AFrameThatWasDamagedOnItsWayNeverStopsTheCapture) {
  backend::DeckOptions options;
  options.faults.damagedFrames = 0.5;
  CaptureScenario scenario({{60, 0, 0}}, options);
  scenario.settings.setBoolForKey(ZQACDetectScene, false);
  scenario.record();
  EXPECT_THAT(scenario.movies.movies().at(scenario.delegate.moviePath(1)), SizeIs(60));
}

}  // namespace
}  // namespace zq::test

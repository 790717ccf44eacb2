// Where the movie file starts and ends.

#include "capture/movie_trigger.h"

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using platform::SceneChangeType;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

platform::QTSampleBuffer frameAt(std::optional<int> timecode, SceneChangeType change = SceneChangeType::none) {
  platform::QTSampleBuffer buffer;
  if (timecode) buffer.smpteTime = valueWithSMPTETime(timecodeAtFrame(DVSystem::pal625_50, *timecode));
  buffer.sceneChangeType = change;
  return buffer;
}

TimecodeValue pointAt(int timecode) {
  return valueWithSMPTETime(timecodeAtFrame(DVSystem::pal625_50, timecode));
}

TEST(MovieTriggerRule, StartsAtItsPointAndOnlyOnce) {
  MovieTrigger trigger;
  const TimecodeValue start = pointAt(100);
  trigger.armStart(start);
  EXPECT_EQ(trigger.takeStartReachedBy(frameAt(99)), nullptr);
  EXPECT_EQ(trigger.takeStartReachedBy(frameAt(100)), start);
  EXPECT_EQ(trigger.takeStartReachedBy(frameAt(101)), nullptr);
}

TEST(MovieTriggerRule, StartsBehindItsPointWhenTheFrameThereIsMissing) {
  MovieTrigger trigger;
  trigger.armStart(pointAt(100));
  EXPECT_NE(trigger.takeStartReachedBy(frameAt(140)), nullptr);
}

TEST(MovieTriggerRule, EndsBehindItsPointNotAtIt) {
  MovieTrigger trigger;
  const TimecodeValue end = pointAt(100);
  trigger.armEnd(end);
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(99)), nullptr);
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(100)), nullptr);
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(101)), end);
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(102)), nullptr);
}

TEST(MovieTriggerRule, EndsWhereTheTimecodeDoesNotFollow) {
  MovieTrigger trigger;
  trigger.armEnd(pointAt(100));
  EXPECT_NE(trigger.takeEndPassedBy(frameAt(0, SceneChangeType::timeStampDiscontinuity)), nullptr);
  trigger.armEnd(pointAt(100));
  EXPECT_NE(trigger.takeEndPassedBy(frameAt(0, SceneChangeType::explicitChange)), nullptr);
}

TEST(MovieTriggerRule, TakesAFrameWithoutATimecodeForZero) {
  MovieTrigger trigger;
  trigger.armStart(pointAt(1));
  EXPECT_EQ(trigger.takeStartReachedBy(frameAt(std::nullopt)), nullptr);
  trigger.armStart(pointAt(0));
  EXPECT_NE(trigger.takeStartReachedBy(frameAt(std::nullopt)), nullptr);
  trigger.armEnd(pointAt(0));
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(std::nullopt)), nullptr);
}

TEST(MovieTriggerRule, DoesNothingUnlessArmed) {
  MovieTrigger trigger;
  EXPECT_EQ(trigger.takeStartReachedBy(frameAt(100)), nullptr);
  EXPECT_EQ(trigger.takeEndPassedBy(frameAt(100, SceneChangeType::explicitChange)), nullptr);
}

class MovieDetection : public CaptureTest {
 protected:
  /// Only the movie rule, without the rules for clips.
  void detect(std::optional<int> timecode, SceneChangeType change = SceneChangeType::none) {
    controller_->movieDetection(frameAt(timecode, change));
  }
  void startArmed(TimecodeValue start, TimecodeValue end) {
    startRecording();
    journal_.clear();
    controller_->setTimecodeStartValue(std::move(start));
    controller_->setTimecodeEndValue(std::move(end));
  }
};

TEST_F(MovieDetection, EndsBeforeItStartsOnTheSameFrame) {
  startArmed(pointAt(101), pointAt(100));
  controller_->setMoviePath("/next.mov");
  detect(101);
  EXPECT_THAT(movieCommands(), ElementsAre("movie: none", "movie: /next.mov"));
  EXPECT_THAT(log_.messages(), ElementsAre("END (00:00:04.00)", "START (00:00:04.01)"));
  EXPECT_EQ(controller_->timecodeStartValue(), nullptr);
  EXPECT_EQ(controller_->timecodeEndValue(), nullptr);
}

TEST_F(MovieDetection, LogsThePointsAndNotTheFrame) {
  startArmed(valueWithSMPTETime(timecodeOf(1, 2, 3, 4, 1)), valueWithSMPTETime(timecodeOf(0, 59, 58, 7, 1)));
  detect(25 * 3600 * 5);
  EXPECT_THAT(log_.messages(), ElementsAre("END (00:59:58.07)", "START (01:02:03.04)"));
}

TEST_F(MovieDetection, ADiscontinuityEndsTheMovieBeforeItsEndTimecode) {
  startArmed(nullptr, pointAt(1000));
  detect(5, SceneChangeType::timeStampDiscontinuity);
  EXPECT_THAT(movieCommands(), ElementsAre("movie: none"));
}

TEST_F(MovieDetection, AnEndPointThatIsNotReachedStaysArmed) {
  startArmed(nullptr, pointAt(1000));
  detect(5);
  EXPECT_THAT(movieCommands(), IsEmpty());
  EXPECT_NE(controller_->timecodeEndValue(), nullptr);
}

TEST_F(MovieDetection, WithoutAMoviePathTheStartWritesNothing) {
  startArmed(pointAt(10), nullptr);
  controller_->setMoviePath(std::nullopt);
  detect(10);
  EXPECT_THAT(movieCommands(), ElementsAre("movie: none"));
  EXPECT_THAT(log_.messages(), ElementsAre("START (00:00:00.10)"));
}

TEST_F(MovieDetection, DoesNothingWhileNothingIsRecorded) {
  controller_->setTimecodeStartValue(pointAt(0));
  controller_->setTimecodeEndValue(pointAt(0));
  detect(10);
  EXPECT_THAT(movieCommands(), IsEmpty());
  EXPECT_NE(controller_->timecodeStartValue(), nullptr);
  EXPECT_NE(controller_->timecodeEndValue(), nullptr);
}

TEST_F(MovieDetection, OfACapturedTapeLogsEachStartAndEnd) {
  startRecording();
  play(1, 100, 0);
  play(2, 101, 0);
  play(3, 102, 50);
  EXPECT_THAT(log_.messages(LogLevel::info),
              ElementsAre("START (00:00:04.00)", "END (00:00:04.01)", "START (00:00:04.02)"));
}

TEST_F(MovieDetection, ATimecodeThatRestartsAtACutEndsOneMovieAndStartsTheNextOnThatFrame) {
  startRecording();
  play(1, 100, 0);
  play(2, 101, 0);
  play(3, 0, 50, SceneChangeType::timeStampDiscontinuity);
  play(4, 1, 50);
  const auto& movies = movieFileOutput().movies;
  EXPECT_EQ(movies.at(delegate_.moviePath(2)).size(), 2U);
  EXPECT_EQ(movies.at(delegate_.moviePath(3)).size(), 2U);
}

TEST_F(MovieDetection, CaptureMovieOffTakesNoPathFromTheDelegate) {
  settings_.setBoolForKey(ZQACCaptureMovie, false);
  EXPECT_FALSE(controller_->captureMovie());
  startRecording();
  play(1, 100, 0);
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
  EXPECT_THAT(movieCommands(), Not(Contains("movie: " + delegate_.moviePath(2))));
  EXPECT_EQ(controller_->thumbnailsPath(), delegate_.thumbnailsPath(2));
}

TEST_F(MovieDetection, CaptureMovieIsAskedForWhenAClipOpens) {
  startRecording();
  play(1, 100, 0);
  settings_.setBoolForKey(ZQACCaptureMovie, false);
  play(2, 101, 0);
  EXPECT_EQ(controller_->moviePath(), delegate_.moviePath(2));
  play(3, 102, 50);
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(movieFileOutput().movies.size(), 1U);
}

}  // namespace
}  // namespace zq::test

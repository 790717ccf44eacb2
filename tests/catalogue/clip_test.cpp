// What a clip makes of the record that it is given.

#include "catalogue/clip.h"

#include <gtest/gtest.h>

#include "support/recapture_tape.h"

namespace zq::test {
namespace {

ClipRecord recordWithDuration(const SMPTETime& duration, std::int32_t timebase) {
  ClipRecord record = recordOf({});
  record.duration = valueWithSMPTETime(duration);
  record.timebase = timebase;
  return record;
}

/// Seconds from the clip's first date to its last.
double secondsOf(const ZQACClip& clip) {
  return clip.dateEndClip()->timeIntervalSinceDate(*clip.dateStartClip());
}

TEST(Clip, LastsAsManyFramesAsItsDurationHasInItsTimebase) {
  const ZQACClip clip(recordWithDuration(timecodeOf(0, 0, 10, 12), 25));
  EXPECT_EQ(clip.durationInFrame(), 262);
  EXPECT_EQ(ZQACClip(recordWithDuration(timecodeOf(1, 2, 3, 4), 30)).durationInFrame(), 111694);
}

TEST(Clip, EndsAfterTheWholeSecondsOfItsDuration) {
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, 10, 12), 25))), 10);
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, 10, 24), 25))), 10);
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, 11, 0), 25))), 11);
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, 0, 24), 25))), 0);
}

TEST(Clip, OfNegativeDurationEndsBeforeItBegins) {
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, -2, 0), 25))), -2);
  EXPECT_EQ(secondsOf(ZQACClip(recordWithDuration(timecodeOf(0, 0, 0, -24), 25))), 0);
}

TEST(Clip, WithoutATimebaseTakesThatOfItsStartTimecode) {
  const auto timebaseOfType = [](std::uint32_t type) {
    ClipRecord record = recordOf({});
    record.timebase = 0;
    record.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 0, 0, type));
    record.duration = valueWithSMPTETime(timecodeOf(0, 0, 1, 0));
    const ZQACClip clip(record);
    EXPECT_EQ(clip.durationInFrame(), clip.timebase());
    EXPECT_EQ(secondsOf(clip), 1);
    return clip.timebase();
  };
  EXPECT_EQ(timebaseOfType(1), 25);
  EXPECT_EQ(timebaseOfType(0), 24);
  EXPECT_EQ(timebaseOfType(2), 30);
}

TEST(Clip, WithoutATimebaseAndAStartTimecodeCounts24FramesASecond) {
  ClipRecord record = recordOf({});
  record.timebase = 0;
  record.startTimecode = nullptr;
  EXPECT_EQ(ZQACClip(record).timebase(), 24);
}

TEST(Clip, KeepsAGivenTimebaseWhateverItsTimecodesSay) {
  ClipRecord record = recordOf({});
  record.timebase = 50;
  EXPECT_EQ(ZQACClip(record).timebase(), 50);
}

TEST(Clip, WithoutADateEndsNever) {
  ClipRecord record = recordOf({});
  record.startDate = nullptr;
  const ZQACClip clip(record);
  EXPECT_EQ(clip.dateStartClip(), nullptr);
  EXPECT_EQ(clip.dateEndClip(), nullptr);
  EXPECT_EQ(clip.durationInFrame(), 249);
}

TEST(Clip, WithoutADurationEndsWhereItBegins) {
  ClipRecord record = recordOf({});
  record.duration = nullptr;
  const ZQACClip clip(record);
  EXPECT_EQ(clip.durationInFrame(), 0);
  EXPECT_EQ(*clip.dateEndClip(), *clip.dateStartClip());
}

TEST(Clip, TellsTheMovieInItsFolderNotTheFolder) {
  ClipRecord record = recordOf({});
  record.clipId = "ABC";
  record.recapturePath = "/Movies/Recaptures";
  EXPECT_EQ(ZQACClip(record).recapturePath(), "/Movies/Recaptures/ABC.mov");
}

TEST(Clip, BuildsItsMoviePathOfWhatIsThere) {
  EXPECT_EQ(ZQACClip(ClipRecord{}).recapturePath(), "/.mov");
}

TEST(Clip, IsNeitherFinishedNorLastAndNowhereOnScreenAtFirst) {
  const ZQACClip clip(recordOf({}));
  EXPECT_FALSE(clip.isRecaptureFinished());
  EXPECT_FALSE(clip.isLastClip());
  EXPECT_EQ(clip.posInTimeline(), platform::Rect{});
  EXPECT_EQ(clip.posterImagePos(), platform::Rect{});
  EXPECT_EQ(clip.progressBar(), platform::Rect{});
}

TEST(Clip, HandsOutWhatItWasGiven) {
  ClipRecord record = recordOf({});
  record.clipId = "id";
  record.clipName = "name";
  record.posterImage = std::make_shared<const platform::Image>();
  record.index = 3;
  record.isInTrash = true;
  const ZQACClip clip(record);
  EXPECT_EQ(clip.clipId(), "id");
  EXPECT_EQ(clip.clipName(), "name");
  EXPECT_EQ(clip.posterImage(), record.posterImage);
  EXPECT_EQ(clip.indexInSequence(), 3);
  EXPECT_TRUE(clip.isInTrash());
  EXPECT_TRUE(clip.isRecapture());
  EXPECT_EQ(clip.timecodeStartClip(), record.startTimecode);
  EXPECT_EQ(clip.timecodeEndClip(), record.endTimecode);
  EXPECT_EQ(clip.clipDuration(), record.duration);
  EXPECT_EQ(clip.dateStartClip(), record.startDate);
}

TEST(Clip, RemembersWhatItIsTold) {
  ZQACClip clip(recordOf({}));
  clip.setRecaptureFinished(true);
  clip.setIsLastClip(true);
  clip.setPosInTimeline({1, 2, 3, 4});
  clip.setPosterImagePos({5, 6, 7, 8});
  clip.setProgressBar({9, 10, 11, 12});
  EXPECT_TRUE(clip.isRecaptureFinished());
  EXPECT_TRUE(clip.isLastClip());
  EXPECT_EQ(clip.posInTimeline(), (platform::Rect{1, 2, 3, 4}));
  EXPECT_EQ(clip.posterImagePos(), (platform::Rect{5, 6, 7, 8}));
  EXPECT_EQ(clip.progressBar(), (platform::Rect{9, 10, 11, 12}));
}

}  // namespace
}  // namespace zq::test

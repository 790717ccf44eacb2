// Which recaptured movies are right, and what is said of those that are not.

#include "host/movie_check.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/tape_script.h"

namespace zq::host {
namespace {

using test::framesOf;
using test::makeFrameBytes;
using test::ScriptFrame;
using test::timecodeOf;

const StampDateTime kDate{2004, 7, 15, 13, 30, 45};
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

DateValue dateOf(const StampDateTime& date) {
  return std::make_shared<const CalendarDate>(date.year, date.month, date.day, date.hours, date.minutes, date.seconds);
}

/// The clip from 00:00:01:00 to 00:00:03:00, its last frame: the movie has the 50 frames before that.
CatalogueClip clipFrom(const SMPTETime& start = timecodeOf(0, 0, 1, 0, 1),
                       const SMPTETime& end = timecodeOf(0, 0, 3, 0, 1)) {
  CatalogueClip clip;
  clip.id = 7;
  clip.recordingDate = dateOf(kDate);
  clip.startTimecode = start;
  clip.endTimecode = end;
  clip.timebase = start.mType == 1 ? 25 : 30;
  clip.moviePath = "/captures/clip.mov";
  return clip;
}

/// The same as a list brings it.
CatalogueClip fromList() {
  CatalogueClip clip = clipFrom();
  clip.moviePath.clear();
  return clip;
}

CatalogueClip captured(CatalogueClip clip, std::int64_t frames) {
  clip.movieFrames = frames;
  return clip;
}

/// What such a movie holds.
std::vector<ScriptFrame> rightFrames(int count = 50) {
  return framesOf({{count, kDate, timecodeOf(0, 0, 1, 0)}});
}

std::string verdictOn(const CatalogueClip& clip, const std::vector<ScriptFrame>& frames) {
  MovieCheck check(clip);
  for (const ScriptFrame& frame : frames) check.add(SharedBytes::copyOf(frame.bytes));
  EXPECT_EQ(check.frames(), static_cast<std::int64_t>(frames.size()));
  return check.verdict();
}

std::vector<ScriptFrame> without(std::vector<ScriptFrame> frames, std::size_t first, std::size_t count = 1) {
  const auto begin = frames.begin() + static_cast<std::ptrdiff_t>(first);
  frames.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
  return frames;
}

/// Gives one frame this stamp instead of its own.
std::vector<ScriptFrame> stamped(std::vector<ScriptFrame> frames, std::size_t at,
                                 const std::optional<SMPTETime>& timecode, const std::optional<StampDateTime>& date) {
  FrameStamp stamp;
  stamp.timecode = timecode;
  stamp.dateTime = date;
  frames[at].bytes = makeFrameBytes(DVSystem::pal625_50, stamp);
  return frames;
}

TEST(MovieCheck, FramesFromTheStartUpToTheOneBeforeTheEndAreRight) {
  EXPECT_EQ(verdictOn(clipFrom(), rightFrames()), "");
  EXPECT_EQ(verdictOn(captured(clipFrom(), 51), rightFrames()), "");
}

TEST(MovieCheck, AMovieOfOneFrameIsRight) {
  EXPECT_EQ(verdictOn(clipFrom(timecodeOf(0, 0, 1, 0, 1), timecodeOf(0, 0, 1, 1, 1)), rightFrames(1)), "");
}

TEST(MovieCheck, WithoutFramesItIsWrong) {
  EXPECT_EQ(verdictOn(clipFrom(), {}), "it has no frames");
}

TEST(MovieCheck, AFirstFrameThatCameLateIsToldOf) {
  EXPECT_EQ(verdictOn(clipFrom(), without(rightFrames(), 0)),
            "it begins at 00:00:01:01, not at the clip's start 00:00:01:00");
}

TEST(MovieCheck, AFrameBeforeTheStartIsToldOf) {
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{51, kDate, timecodeOf(0, 0, 0, 24)}})),
            "it begins at 00:00:00:24, not at the clip's start 00:00:01:00");
}

TEST(MovieCheck, ALastFrameThatIsMissingIsToldOf) {
  EXPECT_EQ(verdictOn(clipFrom(), rightFrames(49)), "it ends after 00:00:02:23, not before the clip's end 00:00:03:00");
}

TEST(MovieCheck, OfAClipThatAListBroughtTheFrameAtTheEndBelongsToIt) {
  EXPECT_EQ(verdictOn(fromList(), rightFrames(51)), "");
  EXPECT_EQ(verdictOn(fromList(), rightFrames(50)), "it ends after 00:00:02:24, not before the clip's end 00:00:03:00");
  EXPECT_EQ(verdictOn(fromList(), rightFrames(52)), "it ends after 00:00:03:01, not before the clip's end 00:00:03:00");
}

TEST(MovieCheck, TheFrameAtTheEndIsOneTooMany) {
  EXPECT_EQ(verdictOn(clipFrom(), rightFrames(51)), "it ends after 00:00:03:00, not before the clip's end 00:00:03:00");
}

TEST(MovieCheck, AFrameThatIsMissingInTheMiddleIsToldOf) {
  EXPECT_EQ(verdictOn(clipFrom(), without(rightFrames(), 20)), "frames are missing before its timecode 00:00:01:21");
}

TEST(MovieCheck, AFrameThatIsMissingOfACapturedClipIsToldByTheCount) {
  EXPECT_EQ(verdictOn(captured(clipFrom(), 51), without(rightFrames(), 20)),
            "it has 49 frames where the clip had 50 before its last frame");
}

TEST(MovieCheck, AFrameThatComesTwiceIsToldOf) {
  auto frames = rightFrames();
  frames.insert(frames.begin() + 10, frames[10]);
  EXPECT_EQ(verdictOn(clipFrom(), frames), "at frame 11 its timecode repeats 00:00:01:10");
}

TEST(MovieCheck, ATapeThatGoesBackwardsIsToldOf) {
  auto frames = rightFrames();
  std::swap(frames[10], frames[11]);
  EXPECT_EQ(verdictOn(captured(clipFrom(), 51), frames).substr(0, 49),
            "at frame 11 its timecode goes back to 00:00:01:10");
}

TEST(MovieCheck, TheFirstThingThatIsWrongIsTheOneThatIsTold) {
  EXPECT_EQ(verdictOn(clipFrom(), without(without(rightFrames(49), 20), 0)),
            "it begins at 00:00:01:01, not at the clip's start 00:00:01:00");
}

TEST(MovieCheck, ADateThatGoesBackIsToldOf) {
  const StampDateTime before{2004, 7, 15, 13, 30, 44};
  const auto frames = stamped(rightFrames(), 30, timecodeOf(0, 0, 2, 5, 1), before);
  EXPECT_EQ(verdictOn(clipFrom(), frames),
            "at frame 30 its recording date 2004-07-15T13:30:44 is not that of the clip");
}

TEST(MovieCheck, ADateThatJumpsIsToldOf) {
  const StampDateTime later{2004, 7, 15, 13, 30, 49};
  const auto frames = stamped(rightFrames(), 30, timecodeOf(0, 0, 2, 5, 1), later);
  EXPECT_EQ(verdictOn(clipFrom(), frames),
            "at frame 30 its recording date 2004-07-15T13:30:49 is not that of the clip");
}

TEST(MovieCheck, FramesOfAnotherSceneWithTheSameTimecodesAreToldOf) {
  const StampDateTime other{2003, 1, 1, 9, 0, 0};
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{50, other, timecodeOf(0, 0, 1, 0)}})),
            "at frame 0 its recording date 2003-01-01T09:00:00 is not that of the clip");
}

TEST(MovieCheck, ADateThatWasWorkedOutMayBeASecondBesideTheTapesButNotTwo) {
  for (const int seconds : {44, 46}) {
    const StampDateTime beside{2004, 7, 15, 13, 30, seconds};
    EXPECT_EQ(verdictOn(clipFrom(), framesOf({{50, beside, timecodeOf(0, 0, 1, 0)}})), "") << seconds;
  }
  for (const int seconds : {43, 47}) {
    const StampDateTime beside{2004, 7, 15, 13, 30, seconds};
    EXPECT_NE(verdictOn(clipFrom(), framesOf({{50, beside, timecodeOf(0, 0, 1, 0)}})), "") << seconds;
  }
}

TEST(MovieCheck, AClockThatStandsStillIsRight) {
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{50, kDate, timecodeOf(0, 0, 1, 0), DVSystem::pal625_50, false}})), "");
}

TEST(MovieCheck, FramesThatLostTheirTimecodeAreBorneOutByTheOthers) {
  for (const std::size_t place : {0U, 20U, 49U}) {
    const auto seconds = static_cast<std::uint8_t>(45 + place / 25);
    const StampDateTime date{2004, 7, 15, 13, 30, seconds};
    EXPECT_EQ(verdictOn(clipFrom(), stamped(rightFrames(), place, std::nullopt, date)), "") << place;
  }
}

TEST(MovieCheck, FramesThatLostTheirDateAreBorneOutByTheOthers) {
  for (const std::size_t place : {0U, 20U, 49U}) {
    const SMPTETime timecode = rightFrames().size() > place
                                   ? timecodeOf(0, 0, 1 + static_cast<int>(place) / 25, static_cast<int>(place) % 25, 1)
                                   : SMPTETime{};
    EXPECT_EQ(verdictOn(clipFrom(), stamped(rightFrames(), place, timecode, std::nullopt)), "") << place;
  }
}

TEST(MovieCheck, AMissingFrameIsNotHiddenByOneBesideItThatLostItsTimecode) {
  const auto frames = without(stamped(rightFrames(), 20, std::nullopt, kDate), 21);
  EXPECT_EQ(verdictOn(clipFrom(), frames), "frames are missing before its timecode 00:00:01:22");
}

TEST(MovieCheck, AMissingFrameIsNotHiddenByALostTimecodeAtEitherEnd) {
  EXPECT_EQ(verdictOn(clipFrom(), without(stamped(rightFrames(), 0, std::nullopt, kDate), 1)),
            "it begins at 00:00:01:02, not at the clip's start 00:00:01:00");
  const StampDateTime last{2004, 7, 15, 13, 30, 46};
  EXPECT_EQ(verdictOn(clipFrom(), without(stamped(rightFrames(), 49, std::nullopt, last), 48)),
            "it ends after 00:00:02:22, not before the clip's end 00:00:03:00");
}

TEST(MovieCheck, FramesWithoutAnyTimecodeAreNotTakenForTheClip) {
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{50, kDate, std::nullopt}})), "none of its frames has a timecode");
}

TEST(MovieCheck, FramesWithoutAnyDateAreBorneOutByTheirTimecodes) {
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{50, std::nullopt, timecodeOf(0, 0, 1, 0)}})), "");
}

TEST(MovieCheck, AChangeOfSystemIsToldOf) {
  auto frames = rightFrames(30);
  const auto others = framesOf({{20, kDate, timecodeOf(0, 0, 2, 5), kNtsc}});
  frames.insert(frames.end(), others.begin(), others.end());
  EXPECT_EQ(verdictOn(clipFrom(), frames), "the tape changes its system in it");
}

TEST(MovieCheck, AMovieOfTheOtherSystemIsToldOf) {
  EXPECT_EQ(verdictOn(clipFrom(), framesOf({{60, kDate, timecodeOf(0, 0, 1, 0), kNtsc}})),
            "it is of 525/60, and the clip of 625/50");
  EXPECT_EQ(verdictOn(clipFrom(timecodeOf(0, 0, 1, 0, 2), timecodeOf(0, 0, 3, 0, 2)), rightFrames()),
            "it is of 625/50, and the clip of 525/60");
}

TEST(MovieCheck, ATimecodeThatJumpedWhenTheClipWasCapturedIsRight) {
  const StampDateTime goesOn{2004, 7, 15, 13, 30, 45};
  const auto frames = framesOf({{20, kDate, timecodeOf(0, 0, 1, 0)}, {20, goesOn, timecodeOf(0, 0, 2, 5)}});
  EXPECT_EQ(verdictOn(captured(clipFrom(), 41), frames), "");
  EXPECT_EQ(verdictOn(captured(clipFrom(), 51), frames),
            "it has 40 frames where the clip had 50 before its last frame");
  EXPECT_EQ(verdictOn(clipFrom(), frames), "frames are missing before its timecode 00:00:02:05");
}

TEST(MovieCheck, ATimecodeThatJumpedDoesNotExcuseAMissingEnd) {
  const auto frames = framesOf({{20, kDate, timecodeOf(0, 0, 1, 0)}, {19, kDate, timecodeOf(0, 0, 2, 5)}});
  EXPECT_EQ(verdictOn(captured(clipFrom(), 40), frames),
            "it ends after 00:00:02:23, not before the clip's end 00:00:03:00");
}

// 525/60 frames whose numbers run over a minute: with drop-frame counting 00 and 01 are left out, without they are not.
std::vector<ScriptFrame> overAMinute(bool dropFrame, int count) {
  std::vector<ScriptFrame> frames;
  SMPTETime timecode = timecodeOf(0, 0, 59, 20, 2);
  for (int i = 0; i < count; ++i) {
    FrameStamp stamp;
    stamp.timecode = timecode;
    stamp.dateTime = kDate;
    frames.push_back({makeFrameBytes(kNtsc, stamp), 0});
    timecode = ZQACTimecodeUtils::addNbFrameToTimecode(1, timecode);
    if (dropFrame && timecode.mSeconds == 0 && timecode.mFrames == 0) timecode.mFrames = 2;
  }
  return frames;
}

TEST(MovieCheck, DropFrameCountingOverAMinuteIsRight) {
  const CatalogueClip clip = clipFrom(timecodeOf(0, 0, 59, 20, 2), timecodeOf(0, 1, 0, 12, 2));
  EXPECT_EQ(verdictOn(clip, overAMinute(true, 20)), "");
  EXPECT_EQ(verdictOn(clip, overAMinute(false, 22)), "");
}

TEST(MovieCheck, AMissingFrameAtTheMinuteIsNotTakenForDropFrameCounting) {
  const CatalogueClip clip = clipFrom(timecodeOf(0, 0, 59, 20, 2), timecodeOf(0, 1, 0, 12, 2));
  EXPECT_EQ(verdictOn(clip, without(overAMinute(true, 20), 9)), "frames are missing before its timecode 00:01:00:02");
  EXPECT_EQ(verdictOn(clip, without(overAMinute(true, 20), 10)), "frames are missing before its timecode 00:01:00:03");
  EXPECT_EQ(verdictOn(clip, overAMinute(true, 19)), "it ends after 00:01:00:10, not before the clip's end 00:01:00:12");
}

}  // namespace
}  // namespace zq::host

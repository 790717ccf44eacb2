#include "host/batch_list_dating.h"

#include <gtest/gtest.h>

#include <memory>

#include "host/batch_list_text.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

CatalogueClip captured(const char* first, const char* last, const char* date, int timebase = 25) {
  CatalogueClip clip;
  clip.id = 7;
  clip.timebase = timebase;
  clip.recordingDate = dateOf(date);
  clip.startTimecode = timecodeAt(framesTo(*timecodeOf(first), timebase), timebase);
  clip.endTimecode = timecodeAt(framesTo(*timecodeOf(last), timebase), timebase);
  clip.aspectRatio = 1;
  clip.moviePath = "/clips/a.mov";
  return clip;
}

BatchRow row(const char* in, const char* out) {
  BatchRow wanted;
  wanted.name = "Beach";
  wanted.tape = "holiday";
  wanted.in = *timecodeOf(in);
  wanted.out = *timecodeOf(out);
  return wanted;
}

CatalogueTape tapeOf(std::vector<CatalogueClip> clips) {
  return {1, "holiday", {{1, "capture", std::move(clips)}}};
}

PlacedRow placed(const BatchRow& wanted, const std::vector<CatalogueClip>& clips) {
  const CatalogueTape tape = tapeOf(clips);
  return placeRow(wanted, 25, &tape);
}

TEST(BatchListDating, TakesTheDateOfTheClipThatHoldsTheRowWithTheSecondsUpToIt) {
  const PlacedRow place =
      placed(row("00:00:03:10", "00:00:05:00"), {captured("00:00:00:15", "00:00:04:24", "2004-07-15T13:30:59"),
                                                 captured("00:00:05:00", "00:00:09:24", "2004-07-16T10:00:00")});
  EXPECT_EQ(place.reason, "");
  EXPECT_TRUE(place.clip.marked);
  ASSERT_NE(place.clip.recordingDate, nullptr);
  EXPECT_EQ(place.clip.recordingDate->isoString(), "2004-07-15T13:31:01") << "2 seconds and 20 frames later";
  EXPECT_EQ(place.clip.name, "Beach");
  EXPECT_EQ(timecodeText(*place.clip.startTimecode), "00:00:03:10");
  EXPECT_EQ(timecodeText(*place.clip.endTimecode), "00:00:04:24") << "the last frame, not the one after it";
  EXPECT_EQ(timecodeText(*place.clip.duration), "00:00:01:14");
  EXPECT_EQ(place.clip.startTimecode->mType, 1U);
  EXPECT_EQ(place.clip.aspectRatio, 1);
}

TEST(BatchListDating, CountsInTheSystemOfTheClip) {
  const PlacedRow place =
      placed(row("00:00:01:00", "00:00:02:00"), {captured("00:00:00:00", "00:00:01:29", "2004-07-15T13:30:45", 30)});
  EXPECT_TRUE(place.clip.marked);
  EXPECT_EQ(place.clip.timebase, 30);
  EXPECT_EQ(timecodeText(*place.clip.endTimecode), "00:00:01:29");
  EXPECT_EQ(place.clip.startTimecode->mType, 2U);
}

TEST(BatchListDating, OneFrameOutsideIsNotHeld) {
  const std::vector<CatalogueClip> clips{captured("00:00:01:00", "00:00:04:24", "2004-07-15T13:30:45")};
  EXPECT_TRUE(placed(row("00:00:01:00", "00:00:05:00"), clips).clip.marked);
  for (const BatchRow& wanted : {row("00:00:00:24", "00:00:05:00"), row("00:00:01:00", "00:00:05:01")}) {
    const PlacedRow place = placed(wanted, clips);
    EXPECT_FALSE(place.clip.marked);
    EXPECT_EQ(place.clip.recordingDate, nullptr);
    EXPECT_NE(place.reason.find("no captured clip of tape \"holiday\" holds"), std::string::npos) << place.reason;
  }
}

TEST(BatchListDating, AFrameNumberThatTheClipsSystemLacksIsNotHeld) {
  EXPECT_FALSE(
      placed(row("00:00:01:27", "00:00:02:00"), {captured("00:00:00:00", "00:00:04:24", "2004-07-15T13:30:45")})
          .clip.marked);
}

TEST(BatchListDating, ClipsThatSayDifferentDatesSayNothing) {
  const PlacedRow place =
      placed(row("00:00:01:00", "00:00:02:00"), {captured("00:00:00:00", "00:00:04:24", "2004-07-15T13:30:45"),
                                                 captured("00:00:00:00", "00:00:09:24", "2004-07-16T10:00:00")});
  EXPECT_FALSE(place.clip.marked);
  EXPECT_NE(place.reason.find("different dates"), std::string::npos) << place.reason;
}

TEST(BatchListDating, ATapeThatWasCapturedTwiceSaysTheSameTwice) {
  EXPECT_TRUE(placed(row("00:00:01:00", "00:00:02:00"), {captured("00:00:00:00", "00:00:04:24", "2004-07-15T13:30:45"),
                                                         captured("00:00:00:00", "00:00:04:24", "2004-07-15T13:30:45")})
                  .clip.marked);
}

TEST(BatchListDating, OnlyCapturedDatedClipsThatAreNotTrashedCount) {
  const CatalogueClip good = captured("00:00:00:00", "00:00:04:24", "2004-07-15T13:30:45");
  CatalogueClip trashed = good;
  trashed.trashed = true;
  CatalogueClip undated = good;
  undated.recordingDate = nullptr;
  CatalogueClip untimed = good;
  untimed.startTimecode.reset();
  CatalogueClip fromAList = good;
  fromAList.moviePath.clear();
  for (const CatalogueClip& clip : {trashed, undated, untimed, fromAList}) {
    EXPECT_FALSE(placed(row("00:00:01:00", "00:00:02:00"), {clip}).clip.marked);
  }
  CatalogueClip picturesOnly = fromAList;
  picturesOnly.thumbnailPath = "/clips/a.thumbnails.dv";
  EXPECT_TRUE(placed(row("00:00:01:00", "00:00:02:00"), {picturesOnly}).clip.marked);
}

TEST(BatchListDating, WithoutTheTapeTheListsOwnDateCounts) {
  BatchRow wanted = row("00:00:01:00", "00:00:02:00");
  PlacedRow place = placeRow(wanted, 30, nullptr);
  EXPECT_FALSE(place.clip.marked);
  EXPECT_EQ(place.clip.timebase, 30);
  EXPECT_EQ(place.reason, "tape \"holiday\" has not been captured yet");
  wanted.recordingDate = dateOf("2004-07-15T13:30:45");
  wanted.timebase = 25;
  place = placeRow(wanted, 30, nullptr);
  EXPECT_TRUE(place.clip.marked);
  EXPECT_EQ(place.reason, "");
  EXPECT_EQ(place.clip.timebase, 25);
  EXPECT_EQ(timecodeText(*place.clip.endTimecode), "00:00:01:24");
}

}  // namespace
}  // namespace zq::host

#include "host/catalogue_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dv_frames.h"
#include "support/scratch_folder.h"

namespace zq::test {
namespace {

using host::CapturedClip;
using host::CatalogueClip;
using host::CatalogueEntry;
using host::CatalogueSequence;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::array kDate{2004, 7, 15, 13, 30, 45};

class LinesLog : public Log {
 public:
  void write(LogLevel, std::string_view message) override { lines.emplace_back(message); }
  std::vector<std::string> lines;
};

/// What a poster was asked for.
struct PosterRequest {
  SharedBytes frame;
  std::int32_t aspectRatio = 0;
};

CapturedClip capturedClip(DVSystem system = DVSystem::pal625_50) {
  CapturedClip clip;
  clip.system = system;
  clip.info.clipId = "1";
  clip.info.clipRecordingDate = std::make_shared<const CalendarDate>(CalendarDate::ofFields(kDate));
  clip.info.clipStartTimecode = valueWithSMPTETime(timecodeOf(1, 2, 3, 4));
  clip.info.clipEndTimecode = valueWithSMPTETime(timecodeOf(1, 2, 5, 6));
  clip.info.clipDuration = valueWithSMPTETime(timecodeOf(0, 0, 2, 2));
  clip.info.clipAspectRatio = 1;
  clip.moviePath = "2004-07-15T13-30-45.mov";
  clip.movieFrames = 53;
  return clip;
}

class CatalogueEntryTest : public testing::Test {
 protected:
  CatalogueSequence sequenceOf(const std::vector<CapturedClip>& clips) {
    return CatalogueEntry(folder.path(), makePoster, log).sequenceOf(clips);
  }
  CatalogueClip clipOf(const CapturedClip& clip) { return sequenceOf({clip}).clips.at(0); }
  CapturedClip clipWithThumbnails(DVSystem system, std::span<const std::uint8_t> bytes) const {
    folder.fileWith("clip.thumbnails.dv", bytes);
    CapturedClip clip = capturedClip(system);
    clip.thumbnailPath = "clip.thumbnails.dv";
    return clip;
  }

  ScratchFolder folder;
  LinesLog log;
  std::vector<PosterRequest> requests;
  Expected<std::vector<std::uint8_t>> poster = std::vector<std::uint8_t>{1, 2, 3};
  CatalogueEntry::MakePoster makePoster = [this](const SharedBytes& frame, std::int32_t aspectRatio) {
    requests.push_back({frame, aspectRatio});
    return poster;
  };
};

TEST_F(CatalogueEntryTest, KeepsWhatIsKnownOfAClip) {
  CapturedClip captured = capturedClip();
  captured.thumbnailFrames = 3;
  const CatalogueClip clip = clipOf(captured);
  EXPECT_EQ(clip.name, "2004-07-15T13-30-45");
  EXPECT_EQ(clip.recordingDate->isoString(), "2004-07-15T13:30:45");
  EXPECT_EQ(clip.aspectRatio, 1);
  EXPECT_EQ(clip.moviePath, folder.file("2004-07-15T13-30-45.mov"));
  EXPECT_EQ(clip.thumbnailPath, "");
  EXPECT_EQ(clip.movieFrames, 53);
  EXPECT_EQ(clip.thumbnailFrames, 3);
  EXPECT_FALSE(clip.marked || clip.recaptured || clip.trashed);
}

TEST_F(CatalogueEntryTest, TimecodesSayInWhichSystemTheyCount) {
  const CatalogueClip pal = clipOf(capturedClip(DVSystem::pal625_50));
  EXPECT_EQ(pal.startTimecode, timecodeOf(1, 2, 3, 4, 1));
  EXPECT_EQ(pal.endTimecode, timecodeOf(1, 2, 5, 6, 1));
  EXPECT_EQ(pal.duration, timecodeOf(0, 0, 2, 2, 1));
  EXPECT_EQ(pal.timebase, 25);
  const CatalogueClip ntsc = clipOf(capturedClip(DVSystem::ntsc525_60));
  EXPECT_EQ(ntsc.startTimecode, timecodeOf(1, 2, 3, 4, 2));
  EXPECT_EQ(ntsc.duration, timecodeOf(0, 0, 2, 2, 2));
  EXPECT_EQ(ntsc.timebase, 30);
}

TEST_F(CatalogueEntryTest, WhatIsNotKnownStaysUnknown) {
  CapturedClip captured = capturedClip();
  captured.info = {};
  const CatalogueClip clip = clipOf(captured);
  EXPECT_EQ(clip.recordingDate, nullptr);
  EXPECT_EQ(clip.startTimecode, std::nullopt);
  EXPECT_EQ(clip.endTimecode, std::nullopt);
  EXPECT_EQ(clip.duration, std::nullopt);
}

TEST_F(CatalogueEntryTest, WhatAnUnsetClockWroteIsNoDate) {
  CapturedClip captured = capturedClip();
  captured.impossibleDate = true;
  const CatalogueSequence sequence = sequenceOf({captured});
  EXPECT_EQ(sequence.clips.at(0).recordingDate, nullptr);
  EXPECT_EQ(sequence.name, std::filesystem::path(folder.path()).filename());
}

TEST_F(CatalogueEntryTest, IsNamedByTheFirstDateThereIs) {
  CapturedClip undated = capturedClip();
  undated.info.clipRecordingDate = nullptr;
  const CatalogueSequence sequence = sequenceOf({undated, capturedClip()});
  EXPECT_THAT(sequence.clips, SizeIs(2));
  EXPECT_EQ(sequence.name, "2004-07-15T13:30:45");
}

TEST_F(CatalogueEntryTest, IsNamedByTheFolderWhenNoClipIsDated) {
  CapturedClip undated = capturedClip();
  undated.info.clipRecordingDate = nullptr;
  for (const char* words : {"/somewhere/tape 7", "/somewhere/tape 7/", "/somewhere/tape 7/./"}) {
    EXPECT_EQ(CatalogueEntry(words, makePoster, log).sequenceOf({undated}).name, "tape 7") << words;
  }
}

TEST_F(CatalogueEntryTest, PathsAreAbsolute) {
  const CatalogueSequence sequence = CatalogueEntry("./clips/../more/", makePoster, log).sequenceOf({capturedClip()});
  EXPECT_EQ(sequence.clips.at(0).moviePath,
            (std::filesystem::current_path() / "clips/../more/2004-07-15T13-30-45.mov").string());
}

TEST_F(CatalogueEntryTest, AClipWithoutAMovieIsNamedByItsThumbnails) {
  CapturedClip captured = capturedClip();
  captured.moviePath = "";
  captured.thumbnailPath = "a.b.thumbnails.dv";
  const CatalogueClip clip = clipOf(captured);
  EXPECT_EQ(clip.name, "a.b");
  EXPECT_EQ(clip.moviePath, "");
  EXPECT_EQ(clip.thumbnailPath, folder.file("a.b.thumbnails.dv"));
}

TEST_F(CatalogueEntryTest, ThePosterIsOfTheFirstThumbnail) {
  for (const DVSystem system : {DVSystem::pal625_50, DVSystem::ntsc525_60}) {
    FrameBytes frames = makeFrameBytes(system);
    frames.insert(frames.end(), frames.size(), 7);
    const CatalogueClip clip = clipOf(clipWithThumbnails(system, frames));
    EXPECT_EQ(clip.poster, poster.value());
    EXPECT_EQ(requests.back().aspectRatio, 1);
    const auto asked = requests.back().frame.bytes();
    EXPECT_TRUE(std::ranges::equal(asked, makeFrameBytes(system)));
  }
  EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(CatalogueEntryTest, NoThumbnailsAreNoPoster) {
  EXPECT_THAT(clipOf(capturedClip()).poster, IsEmpty());
  EXPECT_THAT(requests, IsEmpty());
  EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(CatalogueEntryTest, APosterThatCannotBeMadeIsToldAndLeftOut) {
  poster = Error{"no picture", "it is noise"};
  const CatalogueClip clip = clipOf(clipWithThumbnails(DVSystem::pal625_50, makeFrameBytes(DVSystem::pal625_50)));
  EXPECT_EQ(clip.thumbnailPath, folder.file("clip.thumbnails.dv"));
  EXPECT_THAT(clip.poster, IsEmpty());
  ASSERT_THAT(log.lines, SizeIs(1));
  EXPECT_THAT(log.lines[0], HasSubstr("clip.thumbnails.dv: no picture"));
}

TEST_F(CatalogueEntryTest, ThumbnailsThatEndInsideTheFirstFrameAreToldAndNoPoster) {
  const CatalogueClip clip = clipOf(clipWithThumbnails(DVSystem::pal625_50, FrameBytes(143999)));
  EXPECT_THAT(clip.poster, IsEmpty());
  EXPECT_THAT(requests, IsEmpty());
  ASSERT_THAT(log.lines, SizeIs(1));
  EXPECT_THAT(log.lines[0], HasSubstr("Cannot read the first thumbnail"));
}

TEST_F(CatalogueEntryTest, NoClipsAreASequenceOfNone) {
  EXPECT_THAT(sequenceOf({}).clips, IsEmpty());
}

}  // namespace
}  // namespace zq::test

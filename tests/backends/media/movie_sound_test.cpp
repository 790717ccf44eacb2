// Sound of other formats than 48 kHz in two channels, in movies read back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "written_movies.h"

namespace zq::media {
namespace {

using test::Clip;
using test::clipOfFile;
using test::DVRecordingLog;
using test::expectPicturesOf;
using test::expectSound;
using test::FrameBytes;
using test::makeClip;
using test::makeSoundFrameBytes;
using test::ReadMovie;
using test::readMovie;
using test::recordedSound;
using test::sampleBufferOf;
using test::ScratchFolder;
using test::write;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

class MovieSoundFormats : public testing::TestWithParam<const char*> {
 protected:
  std::string path() const { return folder_.file(std::string("clip.") + GetParam()); }

  ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(EachContainer, MovieSoundFormats, testing::Values("mov", "avi", "mkv"),
                         [](const auto& parameters) { return std::string(parameters.param); });

TEST_P(MovieSoundFormats, RecordedWith32kHzByACamcorder) {
  const Clip clip = clipOfFile(DECKHAND_FIXTURES "/sony-digital8-ntsc-5-frames.dv", kNtsc);
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  expectPicturesOf(clip, movie.pictures.at(0), 5);
  EXPECT_EQ(movie.metadataFor("timecode"), "00:00:02;17");
  EXPECT_EQ(movie.metadataFor("date"), "2024-07-08T19:55:58");
  const auto format = soundFormatOf(clip[0].bytesForAllSamples.bytes());
  ASSERT_TRUE(format.has_value());
  ASSERT_THAT(movie.sounds, SizeIs(format->recorded[1] ? 2 : 1));
  EXPECT_EQ(movie.sounds[0].sampleRate, 32000);
  for (std::size_t i = 0; i < movie.sounds.size(); ++i) expectSound(recordedSound(clip, i), movie.sounds[i]);
}

TEST_P(MovieSoundFormats, OfTwoPairsHaveTwoTracksTheFirstBeingTheDefault) {
  Clip clip;
  for (const auto& frame : test::framesOf(DECKHAND_FIXTURES "/sony-digital8-ntsc-5-frames.dv", kNtsc)) {
    FrameBytes dubbed(frame.bytes().begin(), frame.bytes().end());
    test::markSecondPairRecorded(dubbed);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(dubbed)));
  }
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.sounds, SizeIs(2));
  expectSound(recordedSound(clip, 0), movie.sounds[0]);
  expectSound(recordedSound(clip, 1), movie.sounds[1]);
  // AVI cannot say it: there the first of a kind is the default.
  if (std::string(GetParam()) == "avi") return;
  EXPECT_TRUE(movie.sounds[0].isDefault);
  EXPECT_FALSE(movie.sounds[1].isDefault);
}

TEST_P(MovieSoundFormats, Of44100HzKeepTheirRate) {
  Clip clip;
  for (int i = 0; i < 10; ++i) {
    FrameBytes frame = makeSoundFrameBytes(kPal, i);
    test::make44100(frame);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(frame)));
  }
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.sounds, SizeIs(1));
  EXPECT_EQ(movie.sounds[0].sampleRate, 44100);
  EXPECT_THAT(movie.sounds[0].samples(), SizeIs(10 * 1764 * 2));
  expectSound(recordedSound(clip, 0), movie.sounds[0]);
}

TEST_P(MovieSoundFormats, ThatChangeAreSilentFromThereAndReportedOnce) {
  Clip clip = makeClip(kPal, 4);
  const auto start = recordedSound(clip, 0);
  for (int i = 0; i < 3; ++i) {
    FrameBytes frame = makeSoundFrameBytes(kPal, i);
    test::make32000(frame);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(frame)));
  }
  DVRecordingLog log;
  write(clip, path(), &log);
  std::vector<std::int16_t> expected = start;
  expected.resize(std::size_t{7} * 1920 * 2);
  expectSound(expected, readMovie(path()).sounds.at(0));
  ASSERT_THAT(log.lines, SizeIs(1));
  EXPECT_EQ(log.lines[0].level, LogLevel::warning);
  EXPECT_THAT(log.lines[0].message, AllOf(HasSubstr(path()), HasSubstr("frame 4")));
}

}  // namespace
}  // namespace zq::media

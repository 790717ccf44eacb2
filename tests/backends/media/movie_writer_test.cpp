// Movies written by the factory's writers and read back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "backends/media/movie_writer_factory.h"
#include "backends/media/small_disk.h"
#include "made_clips.h"
#include "movie_reader.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"

namespace zq::media {
namespace {

using platform::MovieWriter;
using test::Clip;
using test::clipOfFile;
using test::DVRecordingLog;
using test::FileSizeLimit;
using test::FrameBytes;
using test::makeClip;
using test::makeFrame;
using test::makeSoundFrameBytes;
using test::ReadMovie;
using test::readMovie;
using test::ReadTrack;
using test::recordedSound;
using test::sampleBufferOf;
using test::ScratchDisk;
using test::ScratchFolder;
using test::timecodeOf;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

std::unique_ptr<MovieWriter> writerFor(const std::string& path, Log* log = nullptr) {
  auto writer = MovieWriterFactory(log).create(path, nullptr);
  EXPECT_TRUE(writer.ok()) << writer.error().text();
  return std::move(writer.value());
}

void write(const Clip& clip, const std::string& path, Log* log = nullptr) {
  const auto writer = writerFor(path, log);
  for (const auto& frame : clip) {
    const Status appended = writer->append(frame);
    ASSERT_TRUE(appended.ok()) << appended.error().text();
  }
  const Status finished = writer->finish();
  ASSERT_TRUE(finished.ok()) << finished.error().text();
}

void expectPicturesOf(const Clip& clip, const ReadTrack& track, std::size_t count) {
  ASSERT_EQ(track.packets.size(), count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto frame = clip[i].bytesForAllSamples.bytes();
    ASSERT_TRUE(std::ranges::equal(track.packets[i], frame)) << "frame " << i;
  }
}

/// The sound must be there whole and start with the picture; times of Matroska are rounded to milliseconds.
void expectSound(const std::vector<std::int16_t>& samples, const ReadTrack& track) {
  EXPECT_EQ(track.codec, AV_CODEC_ID_PCM_S16LE);
  EXPECT_EQ(track.channels, 2);
  EXPECT_NEAR(track.start, 0, 1e-9);
  EXPECT_NEAR(track.end, static_cast<double>(samples.size()) / 2 / track.sampleRate, 2e-3);
  EXPECT_TRUE(track.samples() == samples);
}

class ZoneOfTheTest {
 public:
  ZoneOfTheTest() {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
  }
  ~ZoneOfTheTest() {
    unsetenv("TZ");
    tzset();
  }
};

// Each container with each system.

class MovieContainer : public testing::TestWithParam<std::tuple<const char*, DVSystem>> {
 protected:
  std::string extension() const { return std::get<0>(GetParam()); }
  DVSystem system() const { return std::get<1>(GetParam()); }
  std::string path() const { return folder_.file("clip." + extension()); }
  bool is(const char* name) const { return extension() == name; }

  ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(EachSystem, MovieContainer,
                         testing::Combine(testing::Values("mov", "avi", "mkv"), testing::Values(kPal, kNtsc)),
                         [](const auto& parameters) {
                           const bool isPal = std::get<1>(parameters.param) == kPal;
                           return std::get<0>(parameters.param) + std::string(isPal ? "625_50" : "525_60");
                         });

TEST_P(MovieContainer, HasPicturesByteForByteAndSoundAsRecorded) {
  const Clip clip = makeClip(system(), 40);
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  expectPicturesOf(clip, movie.pictures[0], clip.size());
  ASSERT_THAT(movie.sounds, SizeIs(1));
  EXPECT_EQ(movie.sounds[0].sampleRate, 48000);
  expectSound(recordedSound(clip, 0), movie.sounds[0]);
}

TEST_P(MovieContainer, SaysWhatItsPicturesAre) {
  write(makeClip(system(), 10), path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  const ReadTrack& track = movie.pictures[0];
  const bool isPal = system() == kPal;
  EXPECT_EQ(track.codec, AV_CODEC_ID_DVVIDEO);
  EXPECT_EQ(track.tag, !is("mov") ? "dvsd" : isPal ? "dvcp" : "dvc ");
  EXPECT_EQ(track.width, 720);
  EXPECT_EQ(track.height, isPal ? 576 : 480);
  EXPECT_EQ(av_cmp_q(track.frameRate, isPal ? AVRational{25, 1} : AVRational{30000, 1001}), 0);
  EXPECT_EQ(av_cmp_q(track.sampleAspect, isPal ? AVRational{16, 15} : AVRational{8, 9}), 0);
  // AVI has no field for it that programs read; the DV stream itself says it there.
  if (!is("avi")) {
    EXPECT_EQ(track.fieldOrder, AV_FIELD_BT);
  }
}

TEST_P(MovieContainer, SaysThatAPictureIsWide) {
  FrameStamp stamp;
  stamp.aspect = 0;
  write(makeClip(system(), 10, stamp), path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  const AVRational expected = system() == kPal ? AVRational{64, 45} : AVRational{32, 27};
  EXPECT_EQ(av_cmp_q(movie.pictures[0].sampleAspect, expected), 0);
}

TEST_P(MovieContainer, HasTimecodeAndDateOfItsFirstFrame) {
  const ZoneOfTheTest zone;
  FrameStamp stamp;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
  write(makeClip(system(), 10, stamp), path());
  const ReadMovie movie = readMovie(path());
  EXPECT_EQ(movie.metadataFor("timecode"), "01:02:03:04");
  EXPECT_EQ(movie.metadataFor("date"), "2004-07-15T13:30:45");
  // The instant, which AVI has no place for.
  if (!is("avi")) {
    EXPECT_EQ(movie.metadataFor("creation_time"), "2004-07-15T11:30:45.000000Z");
  }
}

TEST_P(MovieContainer, SaysNoTimecodeRatherThanABrokenOne) {
  FrameStamp stamp;
  stamp.timecode = timecodeOf(25, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 15, 39, 13, 30, 45};
  const Clip clip = makeClip(system(), 5, stamp);
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  expectPicturesOf(clip, movie.pictures[0], clip.size());
  EXPECT_EQ(movie.metadataFor("timecode"), "");
  EXPECT_EQ(movie.metadataFor("date"), "");
}

TEST_P(MovieContainer, IsGoneWhenItGotNoFrame) {
  const auto writer = writerFor(path());
  EXPECT_TRUE(std::filesystem::exists(path()));
  EXPECT_TRUE(writer->finish().ok());
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_P(MovieContainer, RefusesAFrameOfTheOtherSystemAndIsCompleteWithoutIt) {
  const Clip clip = makeClip(system(), 3);
  const auto writer = writerFor(path());
  for (const auto& frame : clip) ASSERT_TRUE(writer->append(frame).ok());
  const Status refused = writer->append(sampleBufferOf(makeFrame(system() == kPal ? kNtsc : kPal)));
  ASSERT_FALSE(refused.ok());
  EXPECT_THAT(refused.error().text(), AllOf(HasSubstr(path()), HasSubstr("another file")));
  EXPECT_TRUE(writer->finish().ok());
  expectPicturesOf(clip, readMovie(path()).pictures.at(0), 3);
}

TEST_P(MovieContainer, IsPlayableUpToWhereTheDiskWasFull) {
  const ScratchDisk disk("tmpfs", "size=6m");
  if (!disk.mounted()) GTEST_SKIP() << disk.whyNot();
  const Clip clip = makeClip(system(), 60);
  const std::string full = disk.file("clip." + extension());
  const auto writer = writerFor(full);
  std::size_t written = 0;
  Status appended;
  while (written < clip.size() && (appended = writer->append(clip[written])).ok()) ++written;
  ASSERT_FALSE(appended.ok());
  EXPECT_THAT(appended.error().text(), AllOf(HasSubstr(full), HasSubstr("Free some space")));
  EXPECT_GT(written, 30U);
  const Status finished = writer->finish();
  ASSERT_TRUE(finished.ok()) << finished.error().text();
  const ReadMovie movie = readMovie(full);
  expectPicturesOf(clip, movie.pictures.at(0), written);
  const Clip kept(clip.begin(), clip.begin() + static_cast<std::ptrdiff_t>(written));
  expectSound(recordedSound(kept, 0), movie.sounds.at(0));
}

TEST_P(MovieContainer, IsPlayableUpToTheLargestFileSize) {
  const Clip clip = makeClip(system(), 10);
  const auto writer = writerFor(path());
  const FileSizeLimit limit(1 << 20);
  std::size_t written = 0;
  Status appended;
  while (written < clip.size() && (appended = writer->append(clip[written])).ok()) ++written;
  EXPECT_FALSE(appended.ok());
  EXPECT_GT(written, 4U);
  EXPECT_TRUE(writer->finish().ok());
  expectPicturesOf(clip, readMovie(path()).pictures.at(0), written);
}

TEST_P(MovieContainer, IsRemovedWhenNotEvenItsHeadFits) {
  const auto writer = writerFor(path());
  {
    const FileSizeLimit limit(4096);
    EXPECT_FALSE(writer->append(makeClip(system(), 1)[0]).ok());
  }
  EXPECT_FALSE(writer->finish().ok());
  EXPECT_TRUE(folder_.isEmpty());
}

TEST_P(MovieContainer, KeepsTheSoundOfAClipThatStartsWithBlankFrames) {
  Clip clip{sampleBufferOf(makeFrame(system())),
            sampleBufferOf(SharedBytes::copyOf(FrameBytes(frameSizeOf(system()))))};
  const Clip sounding = makeClip(system(), 8);
  clip.insert(clip.end(), sounding.begin(), sounding.end());
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  expectPicturesOf(clip, movie.pictures.at(0), clip.size());
  const int silentSamples = system() == kPal ? 3840 : 3203;
  std::vector<std::int16_t> expected(static_cast<std::size_t>(2 * silentSamples));
  const auto recorded = recordedSound(clip, 0);
  expected.insert(expected.end(), recorded.begin(), recorded.end());
  expectSound(expected, movie.sounds.at(0));
}

TEST_P(MovieContainer, TakesShapeAndDateFromLaterFramesWhenTheFirstOneIsBlank) {
  FrameStamp stamp;
  stamp.aspect = 0;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
  Clip clip = makeClip(system(), 8, stamp);
  clip.insert(clip.begin(), sampleBufferOf(SharedBytes::copyOf(FrameBytes(frameSizeOf(system())))));
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  const AVRational wide = system() == kPal ? AVRational{64, 45} : AVRational{32, 27};
  EXPECT_EQ(av_cmp_q(movie.pictures.at(0).sampleAspect, wide), 0);
  EXPECT_EQ(movie.metadataFor("date"), "2004-07-15T13:30:45");
  EXPECT_EQ(movie.metadataFor("timecode"), "");
}

TEST_P(MovieContainer, HasASilentTrackWhenTheTapeHasNoSound) {
  for (const int frames : {7, 100}) {
    const std::string file = folder_.file(std::to_string(frames) + "." + extension());
    const Clip clip(static_cast<std::size_t>(frames), sampleBufferOf(makeFrame(system())));
    write(clip, file);
    const ReadMovie movie = readMovie(file);
    expectPicturesOf(clip, movie.pictures.at(0), clip.size());
    const std::int64_t samples =
        system() == kPal ? std::int64_t{1920} * frames : std::int64_t{frames} * 48000 * 1001 / 30000;
    ASSERT_THAT(movie.sounds, SizeIs(1));
    EXPECT_EQ(movie.sounds[0].sampleRate, 48000);
    expectSound(std::vector<std::int16_t>(static_cast<std::size_t>(2 * samples)), movie.sounds[0]);
  }
}

TEST(MovieTimecode, IsCountedDropFrameWhereTheTapeIs) {
  const ScratchFolder folder;
  FrameStamp stamp;
  stamp.dropFrame = true;
  stamp.timecode = timecodeOf(1, 2, 0, 2);
  write(makeClip(kNtsc, 5, stamp), folder.file("a.mov"));
  EXPECT_EQ(readMovie(folder.file("a.mov")).metadataFor("timecode"), "01:02:00;02");
  // Numbers that this way of counting leaves out are on no sound tape.
  stamp.timecode = timecodeOf(1, 2, 0, 1);
  write(makeClip(kNtsc, 5, stamp), folder.file("b.mov"));
  EXPECT_EQ(readMovie(folder.file("b.mov")).metadataFor("timecode"), "");
}

// Sound of other formats.

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

// Raw DV.

TEST(RawMovie, IsTheFramesEndToEnd) {
  const ScratchFolder folder;
  for (const DVSystem system : {kPal, kNtsc}) {
    const std::string path = folder.file(std::string(nameOf(system).substr(0, 3)) + ".dv");
    const Clip clip = makeClip(system, 5);
    write(clip, path);
    FrameBytes expected;
    for (const auto& frame : clip) {
      const auto bytes = frame.bytesForAllSamples.bytes();
      expected.insert(expected.end(), bytes.begin(), bytes.end());
    }
    EXPECT_TRUE(test::readFile(path) == expected);
  }
}

TEST(RawMovie, HasWholeFramesOnlyWhenTheDiskIsFull) {
  const ScratchFolder folder;
  const Clip clip = makeClip(kPal, 5);
  const auto writer = writerFor(folder.file("a.dv"));
  {
    const FileSizeLimit limit(2 * 144000 + 5000);
    EXPECT_TRUE(writer->append(clip[0]).ok());
    EXPECT_TRUE(writer->append(clip[1]).ok());
    EXPECT_FALSE(writer->append(clip[2]).ok());
  }
  EXPECT_TRUE(writer->finish().ok());
  EXPECT_EQ(std::filesystem::file_size(folder.file("a.dv")), 2U * 144000U);
}

TEST(RawMovie, RefusesWhatIsNoFrameOfItsSystem) {
  const ScratchFolder folder;
  const auto writer = writerFor(folder.file("a.dv"));
  EXPECT_FALSE(writer->append({}).ok());
  EXPECT_TRUE(writer->append(makeClip(kPal, 1)[0]).ok());
  EXPECT_FALSE(writer->append(makeClip(kNtsc, 1)[0]).ok());
  EXPECT_TRUE(writer->finish().ok());
  EXPECT_EQ(std::filesystem::file_size(folder.file("a.dv")), 144000U);
}

TEST(RawMovie, IsGoneWhenItGotNoFrame) {
  const ScratchFolder folder;
  EXPECT_TRUE(writerFor(folder.file("a.dv"))->finish().ok());
  EXPECT_TRUE(folder.isEmpty());
}

// The factory.

TEST(MovieWriterFactory, RefusesAnExtensionThatNamesNoFormat) {
  const ScratchFolder folder;
  for (const char* name : {"a.mp4", "a", "a.mov.txt", ".mov"}) {
    const auto writer = MovieWriterFactory().create(folder.file(name), nullptr);
    ASSERT_FALSE(writer.ok()) << name;
    EXPECT_THAT(writer.error().text(), AllOf(HasSubstr(folder.file(name)), HasSubstr(".mkv")));
  }
  EXPECT_TRUE(folder.isEmpty());
}

TEST(MovieWriterFactory, TakesExtensionsInUpperCase) {
  const ScratchFolder folder;
  EXPECT_TRUE(MovieWriterFactory().create(folder.file("A.MOV"), nullptr).ok());
}

TEST(MovieWriterFactory, LeavesAnExistingFileAsItIs) {
  const ScratchFolder folder;
  for (const char* name : {"a.mov", "a.dv"}) {
    std::ofstream(folder.file(name)) << "precious";
    EXPECT_FALSE(MovieWriterFactory().create(folder.file(name), nullptr).ok());
    EXPECT_EQ(std::filesystem::file_size(folder.file(name)), 8U);
  }
}

TEST(MovieWriterFactory, TellsAtOnceThatAFolderIsMissing) {
  const ScratchFolder folder;
  const auto writer = MovieWriterFactory().create(folder.file("none/a.mov"), nullptr);
  ASSERT_FALSE(writer.ok());
  EXPECT_THAT(writer.error().text(), HasSubstr(folder.file("none/a.mov")));
}

}  // namespace
}  // namespace zq::media

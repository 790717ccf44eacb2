// Frames that come out of a movie file as they went in, and files that are refused.

#include "backends/media/movie_frames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "backends/media/movie_writer_factory.h"
#include "made_clips.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using test::Clip;
using test::FrameBytes;
using test::makeClip;
using test::ScratchFolder;
using test::timecodeOf;
using testing::HasSubstr;

void write(const Clip& clip, const std::string& path) {
  auto writer = MovieWriterFactory(nullptr).create(path, nullptr);
  ASSERT_TRUE(writer.ok()) << writer.error().text();
  for (const auto& frame : clip) ASSERT_TRUE(writer.value()->append(frame).ok());
  ASSERT_TRUE(writer.value()->finish().ok());
}

FrameBytes bytesOf(const SharedBytes& frame) {
  return {frame.bytes().begin(), frame.bytes().end()};
}

std::vector<FrameBytes> framesOf(const Clip& clip) {
  std::vector<FrameBytes> frames;
  for (const auto& buffer : clip) frames.push_back(bytesOf(buffer.bytesForAllSamples));
  return frames;
}

struct Read {
  std::vector<FrameBytes> frames;
  Status status;
};

Read read(const std::string& path) {
  Read result;
  result.status = readMovieFrames(path, [&](const SharedBytes& frame) { result.frames.push_back(bytesOf(frame)); });
  return result;
}

class MovieFrames : public ::testing::Test {
 protected:
  void expectRefused(const std::string& path, const std::string& why) {
    const Read result = read(path);
    ASSERT_FALSE(result.status.ok());
    EXPECT_EQ(result.status.error().message, "Cannot read the movie " + path);
    EXPECT_THAT(result.status.error().informative, HasSubstr(why));
    EXPECT_TRUE(result.frames.empty());
  }

  ScratchFolder folder;
};

class MovieFramesOfEachFormat : public MovieFrames,
                                public ::testing::WithParamInterface<std::tuple<const char*, DVSystem>> {
 protected:
  std::string path() const { return folder.file(std::string("movie.") + std::get<0>(GetParam())); }
  static Clip clip(int frames) {
    return makeClip(std::get<1>(GetParam()), frames, {.timecode = timecodeOf(0, 0, 1, 0)});
  }
};

TEST_P(MovieFramesOfEachFormat, AreThoseThatWereWritten) {
  const Clip written = clip(12);
  write(written, path());
  const Read result = read(path());
  EXPECT_TRUE(result.status.ok());
  EXPECT_EQ(result.frames, framesOf(written));
}

TEST_P(MovieFramesOfEachFormat, MayBeOneOnly) {
  const Clip written = clip(1);
  write(written, path());
  const Read result = read(path());
  EXPECT_TRUE(result.status.ok());
  EXPECT_EQ(result.frames, framesOf(written));
}

TEST_P(MovieFramesOfEachFormat, StayValidForWhoeverKeepsTheHandle) {
  const Clip written = clip(5);
  write(written, path());
  std::vector<SharedBytes> kept;
  ASSERT_TRUE(readMovieFrames(path(), [&](const SharedBytes& frame) { kept.push_back(frame); }).ok());
  ASSERT_EQ(kept.size(), written.size());
  for (std::size_t i = 0; i < kept.size(); ++i) {
    EXPECT_EQ(bytesOf(kept[i]), bytesOf(written[i].bytesForAllSamples)) << i;
  }
}

// What is cut off is not made up: the frames that come are whole ones from the beginning.
TEST_P(MovieFramesOfEachFormat, OfATruncatedFileAreWholeOrDoNotCome) {
  const Clip written = clip(12);
  const std::vector<FrameBytes> whole = framesOf(written);
  write(written, path());
  const auto size = std::filesystem::file_size(path());
  for (const std::uintmax_t left : {size - 1, size / 2 + 1000, size / 2, std::uintmax_t{1000}, std::uintmax_t{10}}) {
    std::filesystem::resize_file(path(), left);
    const Read result = read(path());
    ASSERT_LE(result.frames.size(), left < size - 1 ? whole.size() - 1 : whole.size()) << left;
    for (std::size_t i = 0; i < result.frames.size(); ++i) {
      EXPECT_TRUE(result.frames[i] == whole[i]) << "frame " << i << " of a file of " << left << " bytes";
    }
  }
}

TEST_F(MovieFrames, OfARawFileThatEndsInsideAFrameComeUpToThere) {
  const Clip written = makeClip(DVSystem::pal625_50, 3);
  const std::string path = folder.file("movie.dv");
  write(written, path);
  std::filesystem::resize_file(path, 3 * 144000 - 1);
  const Read result = read(path);
  ASSERT_FALSE(result.status.ok());
  EXPECT_EQ(result.status.error().text(), (Error{"Cannot read the movie " + path, "It ends inside a frame."}.text()));
  EXPECT_EQ(result.frames.size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Each, MovieFramesOfEachFormat,
                         ::testing::Combine(::testing::Values("mov", "avi", "mkv", "dv"),
                                            ::testing::Values(DVSystem::pal625_50, DVSystem::ntsc525_60)));

TEST_F(MovieFrames, OfAFileThatIsNotThereAreRefused) {
  expectRefused(folder.file("nowhere.mov"), "No such file or directory");
}

TEST_F(MovieFrames, OfAFolderAreRefused) {
  expectRefused(folder.path(), "");
}

TEST_F(MovieFrames, OfAnEmptyFileAreRefused) {
  expectRefused(folder.fileWith("empty.mov", {}), "");
}

TEST_F(MovieFrames, OfALetterAreRefused) {
  const std::string letter(10000, 'a');
  std::ofstream(folder.file("letter.mov")) << letter;
  expectRefused(folder.file("letter.mov"), "Invalid data");
}

TEST_F(MovieFrames, OfAFileWithSoundOnlyAreRefused) {
  // A second of silence as a WAV file: 8 kHz, 8 bits, one channel.
  std::string wave = "RIFF";
  const auto number = [&wave](std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) wave += static_cast<char>(value >> (8 * i) & 0xFF);
  };
  number(36 + 8000, 4);
  wave += "WAVEfmt ";
  number(16, 4);
  number(1, 2);
  number(1, 2);
  number(8000, 4);
  number(8000, 4);
  number(1, 2);
  number(8, 2);
  wave += "data";
  number(8000, 4);
  wave.append(8000, '\x80');
  std::ofstream(folder.file("sound.wav"), std::ios::binary) << wave;
  expectRefused(folder.file("sound.wav"), "It has no video track.");
}

}  // namespace
}  // namespace zq::media

// Raw DV, and what the factory makes of names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "backends/media/small_disk.h"
#include "support/dv_frames.h"
#include "written_movies.h"

namespace zq::media {
namespace {

using test::Clip;
using test::FileSizeLimit;
using test::FrameBytes;
using test::makeClip;
using test::ScratchFolder;
using test::write;
using test::writerFor;
using testing::AllOf;
using testing::HasSubstr;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

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

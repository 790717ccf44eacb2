// Movies for which the disk has too little room.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "backends/media/small_disk.h"
#include "written_movies.h"

namespace zq::media {
namespace {

using test::Clip;
using test::EachContainer;
using test::eachContainerAndSystem;
using test::expectPicturesOf;
using test::expectSound;
using test::FileSizeLimit;
using test::makeClip;
using test::nameOfContainerAndSystem;
using test::ReadMovie;
using test::readMovie;
using test::recordedSound;
using test::ScratchDisk;
using test::writerFor;
using testing::AllOf;
using testing::HasSubstr;

class MovieOnASmallDisk : public EachContainer {};

INSTANTIATE_TEST_SUITE_P(EachSystem, MovieOnASmallDisk, eachContainerAndSystem(), &nameOfContainerAndSystem);

TEST_P(MovieOnASmallDisk, IsPlayableUpToWhereTheDiskWasFull) {
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

TEST_P(MovieOnASmallDisk, IsPlayableUpToTheLargestFileSize) {
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

TEST_P(MovieOnASmallDisk, IsRemovedWhenNotEvenItsHeadFits) {
  const auto writer = writerFor(path());
  {
    const FileSizeLimit limit(4096);
    EXPECT_FALSE(writer->append(makeClip(system(), 1)[0]).ok());
  }
  EXPECT_FALSE(writer->finish().ok());
  EXPECT_TRUE(folder_.isEmpty());
}

}  // namespace
}  // namespace zq::media

#include "backends/media/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <vector>

#include "backends/media/small_disk.h"
#include "support/dv_frames.h"

namespace zq::media {
namespace {

using test::FileSizeLimit;
using test::FrameBytes;
using test::readFile;
using test::ScratchDisk;
using test::ScratchFolder;
using testing::HasSubstr;

constexpr std::int64_t kMegabyte = 1 << 20;

std::unique_ptr<OutputFile> created(const std::string& path) {
  auto file = OutputFile::create(path);
  EXPECT_TRUE(file.ok()) << file.error().text();
  return std::move(file.value());
}

std::int64_t bytesOnDisk(const std::string& path) {
  struct stat info {};
  EXPECT_EQ(stat(path.c_str(), &info), 0);
  return std::int64_t{info.st_blocks} * 512;
}

std::vector<std::uint8_t> bytes(std::size_t count, std::uint8_t value) {
  return std::vector<std::uint8_t>(count, value);
}

TEST(OutputFile, LeavesAnExistingFileAsItIs) {
  const ScratchFolder folder;
  std::ofstream(folder.file("a.mov")) << "precious";
  const auto file = OutputFile::create(folder.file("a.mov"));
  ASSERT_FALSE(file.ok());
  EXPECT_THAT(file.error().text(), HasSubstr(folder.file("a.mov")));
  EXPECT_THAT(file.error().text(), HasSubstr("choose another name"));
  EXPECT_EQ(readFile(folder.file("a.mov")).size(), 8U);
}

TEST(OutputFile, SaysThatTheFolderIsMissing) {
  const ScratchFolder folder;
  const auto file = OutputFile::create(folder.file("none/a.mov"));
  ASSERT_FALSE(file.ok());
  EXPECT_THAT(file.error().text(), HasSubstr("Choose a folder that exists"));
}

TEST(OutputFile, WritesAtPositions) {
  const ScratchFolder folder;
  const auto file = created(folder.file("a"));
  EXPECT_TRUE(file->writeAt(0, bytes(4, 1)).ok());
  EXPECT_TRUE(file->writeAt(4, bytes(2, 2)).ok());
  EXPECT_TRUE(file->writeAt(1, bytes(2, 3)).ok());
  EXPECT_EQ(file->size(), 6);
  EXPECT_TRUE(file->close().ok());
  EXPECT_EQ(readFile(folder.file("a")), (FrameBytes{1, 3, 3, 1, 2, 2}));
}

TEST(OutputFile, HoldsWhatItReservedAndGivesBackTheRest) {
  const ScratchDisk disk("tmpfs", "size=64m");
  if (!disk.mounted()) GTEST_SKIP() << disk.whyNot();
  const auto file = created(disk.file("a"));
  EXPECT_TRUE(file->writeAt(0, bytes(1000, 1)).ok());
  EXPECT_TRUE(file->reserve(kMegabyte).ok());
  EXPECT_GE(bytesOnDisk(disk.file("a")), kMegabyte);
  EXPECT_EQ(std::filesystem::file_size(disk.file("a")), 1000U);
  EXPECT_TRUE(file->close().ok());
  EXPECT_LE(bytesOnDisk(disk.file("a")), 4096);
  EXPECT_EQ(readFile(disk.file("a")), bytes(1000, 1));
}

TEST(OutputFile, GivesBackTheReserveOnTheDiskOfTheTests) {
  const ScratchFolder folder;
  const auto file = created(folder.file("a"));
  EXPECT_TRUE(file->reserve(kMegabyte).ok());
  EXPECT_TRUE(file->writeAt(0, bytes(1000, 1)).ok());
  EXPECT_TRUE(file->close().ok());
  EXPECT_LE(bytesOnDisk(folder.file("a")), 64 << 10);
}

TEST(OutputFile, RefusesAReserveThatTheDiskDoesNotHave) {
  const ScratchDisk disk("tmpfs", "size=4m");
  if (!disk.mounted()) GTEST_SKIP() << disk.whyNot();
  const auto file = created(disk.file("a"));
  EXPECT_TRUE(file->writeAt(0, bytes(1000, 1)).ok());
  // Far less than one step of reserving is left, but what is asked for is there.
  EXPECT_TRUE(file->reserve(3 * kMegabyte).ok());
  const Status refused = file->reserve(8 * kMegabyte);
  ASSERT_FALSE(refused.ok());
  EXPECT_THAT(refused.error().text(), HasSubstr("Free some space"));
  EXPECT_THAT(refused.error().text(), HasSubstr(disk.file("a")));
  // What was reserved before still is: another file cannot take it.
  const auto other = created(disk.file("b"));
  EXPECT_FALSE(other->writeAt(0, bytes(2 * kMegabyte, 2)).ok());
  EXPECT_TRUE(file->writeAt(1000, bytes(3 * kMegabyte, 1)).ok());
}

TEST(OutputFile, ReservesOnADiskThatCannotAllocateAhead) {
  const ScratchDisk disk("ramfs", "");
  if (!disk.mounted()) GTEST_SKIP() << disk.whyNot();
  const auto file = created(disk.file("a"));
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(file->reserve(100000).ok());
    ASSERT_TRUE(file->writeAt(file->size(), bytes(30000, 7)).ok());
  }
  EXPECT_EQ(file->size(), 300000);
  EXPECT_TRUE(file->close().ok());
  EXPECT_EQ(readFile(disk.file("a")), bytes(300000, 7));
}

TEST(OutputFile, KnowsTheLimitOfFileSizes) {
  const ScratchFolder folder;
  const FileSizeLimit limit(kMegabyte);
  const auto file = created(folder.file("a"));
  EXPECT_TRUE(file->reserve(kMegabyte).ok());
  const Status refused = file->reserve(kMegabyte + 1);
  ASSERT_FALSE(refused.ok());
  EXPECT_THAT(refused.error().text(), HasSubstr("no larger file"));
}

TEST(OutputFile, ReportsAWriteThatDoesNotFit) {
  const ScratchFolder folder;
  const FileSizeLimit limit(1000);
  const auto file = created(folder.file("a"));
  EXPECT_TRUE(file->writeAt(0, bytes(600, 1)).ok());
  EXPECT_FALSE(file->writeAt(600, bytes(600, 1)).ok());
  EXPECT_TRUE(file->cutTo(600).ok());
  EXPECT_TRUE(file->close().ok());
  EXPECT_EQ(readFile(folder.file("a")).size(), 600U);
}

TEST(OutputFile, RemovesItself) {
  const ScratchFolder folder;
  const auto file = created(folder.file("a"));
  EXPECT_TRUE(file->remove().ok());
  EXPECT_TRUE(folder.isEmpty());
}

}  // namespace
}  // namespace zq::media

#include "capture/thumbnails_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "backends/media/small_disk.h"
#include "support/capture_buffers.h"
#include "support/scratch_folder.h"

namespace zq::test {
namespace {

class ThumbnailsFileTest : public testing::Test {
 protected:
  static SharedBytes bytesOf(const std::string& text) {
    return SharedBytes::copyOf({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }
  static std::string contentOf(const std::string& path) {
    const FrameBytes bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
  }
  void write(const std::string& content) {
    ThumbnailsFile file;
    file.open(path_);
    file.append(bytesOf(content));
  }

  ScratchFolder scratch_;
  const std::string path_ = scratch_.file("clip.thumbs");
};

TEST_F(ThumbnailsFileTest, IsCreatedEmpty) {
  ThumbnailsFile file;
  EXPECT_FALSE(file.isOpen());
  file.open(path_);
  EXPECT_TRUE(file.isOpen());
  EXPECT_EQ(contentOf(path_), "");
}

TEST_F(ThumbnailsFileTest, HoldsFramesEndToEnd) {
  ThumbnailsFile file;
  file.open(path_);
  file.append(bytesOf("first"));
  file.append(bytesOf("second"));
  EXPECT_EQ(contentOf(path_), "firstsecond");
}

TEST_F(ThumbnailsFileTest, AnExistingFileIsWrittenOverFromItsStartAndNotCut) {
  write("0123456789");
  write("abc");
  EXPECT_EQ(contentOf(path_), "abc3456789");
}

TEST_F(ThumbnailsFileTest, AnExistingFileThatIsOnlyOpenedKeepsItsBytes) {
  write("0123456789");
  ThumbnailsFile file;
  file.open(path_);
  file.close();
  EXPECT_EQ(contentOf(path_), "0123456789");
}

TEST_F(ThumbnailsFileTest, APathThatCannotBeMadeTakesFramesSilently) {
  ThumbnailsFile file;
  file.open(scratch_.file("missing/clip.thumbs"));
  EXPECT_FALSE(file.isOpen());
  file.append(bytesOf("lost"));
  file.close();
}

TEST_F(ThumbnailsFileTest, ADirectoryTakesFramesSilently) {
  ThumbnailsFile file;
  file.open(scratch_.path());
  EXPECT_FALSE(file.isOpen());
  file.append(bytesOf("lost"));
}

TEST_F(ThumbnailsFileTest, TakesNothingOnceClosed) {
  ThumbnailsFile file;
  file.open(path_);
  file.close();
  file.close();
  file.append(bytesOf("late"));
  EXPECT_EQ(contentOf(path_), "");
}

TEST_F(ThumbnailsFileTest, OpeningAnotherClosesTheFirst) {
  ThumbnailsFile file;
  file.open(path_);
  file.open(scratch_.file("other.thumbs"));
  file.append(bytesOf("x"));
  EXPECT_EQ(contentOf(path_), "");
  EXPECT_EQ(contentOf(scratch_.file("other.thumbs")), "x");
}

TEST_F(ThumbnailsFileTest, AFullDiskLeavesWholeFramesOnly) {
  struct stat status {};
  if (stat("/dev/full", &status) != 0) GTEST_SKIP() << "no full device here";
  ThumbnailsFile file;
  file.open("/dev/full");
  ASSERT_TRUE(file.isOpen());
  file.append(bytesOf("lost"));
}

TEST_F(ThumbnailsFileTest, AFrameThatTheDiskCutsShortIsTakenBack) {
  const FileSizeLimit limit(15);
  ThumbnailsFile file;
  file.open(path_);
  file.append(bytesOf("0123456789"));
  file.append(bytesOf("abcdefghij"));
  EXPECT_EQ(contentOf(path_), "0123456789");
  file.append(bytesOf("xyz"));
  EXPECT_EQ(contentOf(path_), "0123456789xyz");
}

TEST_F(ThumbnailsFileTest, AFrameThatTheDiskCutsShortTakesNothingFromAnOlderFile) {
  write(std::string(30, 'o'));
  const FileSizeLimit limit(15);
  ThumbnailsFile file;
  file.open(path_);
  file.append(bytesOf("0123456789"));
  file.append(bytesOf("abcdefghij"));
  const std::string content = contentOf(path_);
  EXPECT_EQ(content.size(), 30U);
  EXPECT_EQ(content.substr(0, 10), "0123456789");
  EXPECT_EQ(content.substr(15), std::string(15, 'o'));
}

}  // namespace
}  // namespace zq::test

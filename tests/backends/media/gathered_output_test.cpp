// A file that is written in large pieces.

#include "backends/media/gathered_output.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <vector>

#include "backends/media/small_disk.h"
#include "support/dv_frames.h"

namespace zq::media {
namespace {

using test::FileSizeLimit;
using test::readFile;
using test::ScratchFolder;

using Bytes = std::vector<std::uint8_t>;

class GatheredOutputs : public testing::Test {
 protected:
  std::uint64_t sizeOnDisk() const { return std::filesystem::file_size(path_); }

  const ScratchFolder folder_;
  const std::string path_ = folder_.file("tape.dv");
  const std::unique_ptr<OutputFile> file_ = std::move(OutputFile::create(path_).value());
  GatheredOutput output_{*file_};
};

TEST_F(GatheredOutputs, TheFileHoldsWhatWasAppendedInWhateverPortions) {
  std::mt19937 random(3);
  Bytes all;
  for (int i = 0; i < 60; ++i) {
    const std::size_t length = i % 20 == 19 ? 2 * GatheredOutput::kPiece + random() % 1000 : random() % 300'000;
    const Bytes portion(length, static_cast<std::uint8_t>(i));
    ASSERT_TRUE(output_.append(portion).ok());
    all.insert(all.end(), portion.begin(), portion.end());
  }
  ASSERT_TRUE(output_.flush().ok());
  ASSERT_TRUE(file_->close().ok());
  const auto written = readFile(path_);
  EXPECT_TRUE(std::equal(written.begin(), written.end(), all.begin(), all.end()));
}

TEST_F(GatheredOutputs, WholePiecesAreWrittenAtOnceAndTheRestWaits) {
  ASSERT_TRUE(output_.append(Bytes(GatheredOutput::kPiece - 1, 1)).ok());
  EXPECT_EQ(sizeOnDisk(), 0U);
  ASSERT_TRUE(output_.append(Bytes(3, 2)).ok());
  EXPECT_EQ(sizeOnDisk(), GatheredOutput::kPiece);
  ASSERT_TRUE(output_.flush().ok());
  EXPECT_EQ(sizeOnDisk(), GatheredOutput::kPiece + 2);
  ASSERT_TRUE(output_.flush().ok()) << "nothing waits any more";
  EXPECT_EQ(sizeOnDisk(), GatheredOutput::kPiece + 2);
}

TEST_F(GatheredOutputs, AWriteThatDoesNotFitIsAnError) {
  const FileSizeLimit limit(1000);
  EXPECT_TRUE(output_.append(Bytes(2000, 1)).ok()) << "it waits";
  EXPECT_FALSE(output_.flush().ok());
  EXPECT_FALSE(output_.append(Bytes(GatheredOutput::kPiece, 1)).ok());
}

}  // namespace
}  // namespace zq::media

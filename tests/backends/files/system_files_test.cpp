// The files of the system: deleted, and led to.

#include "backends/files/system_files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/dv_frames.h"
#include "support/scratch_folder.h"

namespace zq::test {
namespace {

namespace fs = std::filesystem;

class SystemFilesTest : public testing::Test {
 protected:
  std::string makeFile(const std::string& name) { return scratch_.fileWith(name, std::vector<std::uint8_t>{1, 2, 3}); }

  ScratchFolder scratch_;
  backend::SystemFiles files_;
};

TEST_F(SystemFilesTest, DeleteAFile) {
  const std::string path = makeFile("movie.mov");
  EXPECT_TRUE(files_.removeFile(path).ok());
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(SystemFilesTest, SayWhichFileToDeleteIsNotThere) {
  const Status removed = files_.removeFile(scratch_.file("none.mov"));
  ASSERT_FALSE(removed.ok());
  EXPECT_EQ(removed.error().message, "Cannot delete " + scratch_.file("none.mov"));
  EXPECT_EQ(removed.error().informative, "There is no such file.");
}

TEST_F(SystemFilesTest, DoNotDeleteAFolderWithFiles) {
  fs::create_directory(scratch_.file("folder"));
  makeFile("folder/movie.mov");
  const Status removed = files_.removeFile(scratch_.file("folder"));
  ASSERT_FALSE(removed.ok());
  EXPECT_FALSE(removed.error().informative.empty());
  EXPECT_TRUE(fs::exists(scratch_.file("folder/movie.mov")));
}

TEST_F(SystemFilesTest, DeleteAnAliasNotWhatItLeadsTo) {
  const std::string path = makeFile("movie.mov");
  ASSERT_TRUE(files_.aliasWithPath(path)->writeToFile(scratch_.file("alias.mov")).ok());
  EXPECT_TRUE(files_.removeFile(scratch_.file("alias.mov")).ok());
  EXPECT_TRUE(fs::exists(path));
}

TEST_F(SystemFilesTest, HaveNoAliasOfWhatIsNoFile) {
  EXPECT_EQ(files_.aliasWithPath(scratch_.file("none.mov")), nullptr);
  EXPECT_EQ(files_.aliasWithPath(scratch_.path()), nullptr);
  EXPECT_EQ(files_.aliasWithPath(""), nullptr);
}

TEST_F(SystemFilesTest, LeaveAnAliasThatReadsAsTheFile) {
  fs::create_directory(scratch_.file("movies"));
  const std::string path = makeFile("movies/movie.mov");
  ASSERT_TRUE(files_.aliasWithPath(path)->writeToFile(scratch_.file("clip.mov")).ok());
  EXPECT_EQ(readFile(scratch_.file("clip.mov")), readFile(path));
  EXPECT_EQ(fs::read_symlink(scratch_.file("clip.mov")), fs::path(path));
}

TEST_F(SystemFilesTest, LeaveAnAliasInOneFolderThatMovesWithIt) {
  fs::create_directory(scratch_.file("movies"));
  const std::string path = makeFile("movies/movie.mov");
  ASSERT_TRUE(files_.aliasWithPath(path)->writeToFile(scratch_.file("movies/clip.mov")).ok());
  fs::rename(scratch_.file("movies"), scratch_.file("moved"));
  EXPECT_EQ(readFile(scratch_.file("moved/clip.mov")).size(), 3U);
}

TEST_F(SystemFilesTest, LeaveAnAliasOfAPathGivenFromTheCurrentFolder) {
  makeFile("movie.mov");
  const fs::path before = fs::current_path();
  fs::current_path(scratch_.path());
  fs::create_directory("aliases");
  const Status written = files_.aliasWithPath("movie.mov")->writeToFile("aliases/clip.mov");
  fs::current_path(before);
  ASSERT_TRUE(written.ok());
  EXPECT_EQ(readFile(scratch_.file("aliases/clip.mov")).size(), 3U);
}

TEST_F(SystemFilesTest, WriteNoAliasOverAFile) {
  const std::string path = makeFile("movie.mov");
  const std::string other = scratch_.fileWith("clip.mov", std::vector<std::uint8_t>{9});
  const Status written = files_.aliasWithPath(path)->writeToFile(other);
  ASSERT_FALSE(written.ok());
  EXPECT_EQ(written.error().message, "Cannot leave an alias of " + path + " at " + other);
  EXPECT_FALSE(written.error().informative.empty());
  EXPECT_EQ(readFile(other).size(), 1U);
}

TEST_F(SystemFilesTest, WriteNoAliasOverTheFileItself) {
  const std::string path = makeFile("movie.mov");
  EXPECT_FALSE(files_.aliasWithPath(path)->writeToFile(path).ok());
  EXPECT_EQ(readFile(path).size(), 3U);
}

TEST_F(SystemFilesTest, WriteNoAliasIntoAFolderThatIsNotThere) {
  const std::string path = makeFile("movie.mov");
  EXPECT_FALSE(files_.aliasWithPath(path)->writeToFile(scratch_.file("none/clip.mov")).ok());
}

}  // namespace
}  // namespace zq::test

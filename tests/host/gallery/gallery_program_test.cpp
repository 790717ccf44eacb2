// The gallery as a user runs it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <string>
#include <vector>

#include "support/running_program.h"

namespace zq {
namespace {

using test::ProgramResult;
using test::readText;
using test::writeText;
using testing::HasSubstr;
using testing::IsEmpty;

class GalleryProgram : public testing::Test {
 protected:
  ProgramResult gallery(std::vector<std::string> words) {
    words.insert(words.begin(), DECKHAND_GALLERY);
    return test::RunningProgram(folder_, std::move(words)).wait();
  }
  std::vector<std::string> pictures(const std::string& name) const {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / name))
      files.push_back(entry.path().string());
    std::ranges::sort(files);
    return files;
  }

  test::ProgramFolder folder_;
};

TEST_F(GalleryProgram, SavesEachPictureAtOneAndAtTwoPixelsAPoint) {
  const ProgramResult result = gallery({"--output", folder_ / "new/pictures"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  for (const char* name : {"controls", "transport", "tape", "gliding", "rolling", "overlay"}) {
    const std::string path = folder_ / ("new/pictures/" + std::string(name));
    EXPECT_THAT(result.out, HasSubstr(path + ".png\n"));
    const QImage once(QString::fromStdString(path + ".png"));
    const QImage twice(QString::fromStdString(path + "@2x.png"));
    ASSERT_FALSE(once.isNull()) << name;
    EXPECT_EQ(twice.size(), once.size() * 2) << name;
    // Drawn anew, not blown up.
    EXPECT_NE(twice, once.scaled(twice.size())) << name;
  }
}

TEST_F(GalleryProgram, MakesTheSamePicturesEachTime) {
  ASSERT_EQ(gallery({"--output", folder_ / "one"}).exitCode, 0);
  ASSERT_EQ(gallery({"--output", folder_ / "other"}).exitCode, 0);
  const std::vector<std::string> one = pictures("one");
  const std::vector<std::string> other = pictures("other");
  ASSERT_EQ(one.size(), 12U);
  ASSERT_EQ(other.size(), one.size());
  for (std::size_t file = 0; file < one.size(); ++file) {
    EXPECT_TRUE(readText(one[file]) == readText(other[file])) << one[file];
  }
}

TEST_F(GalleryProgram, OverwritesNothing) {
  std::filesystem::create_directory(folder_ / "mine");
  writeText(folder_ / "mine/tape.png", "mine");
  const ProgramResult result = gallery({"--output", folder_ / "mine"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("mine/tape.png exists already"));
  EXPECT_EQ(readText(folder_ / "mine/tape.png"), "mine");
  EXPECT_EQ(pictures("mine").size(), 1U);
}

TEST_F(GalleryProgram, SaysWhyAFolderCannotBeMade) {
  writeText(folder_ / "file", "");
  const ProgramResult result = gallery({"--output", folder_ / "file/pictures"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("file/pictures cannot be made"));
}

TEST_F(GalleryProgram, DrawsWithTheUsersSkin) {
  std::filesystem::create_directory(folder_ / "skin");
  QImage red(9, 40, QImage::Format_RGB32);
  red.fill(Qt::red);
  for (const char* name : {"timelineLeft", "timelineRight"}) {
    ASSERT_TRUE(red.save(QString::fromStdString(folder_ / ("skin/" + std::string(name) + ".png"))));
  }
  writeText(folder_ / "skin/timelineMiddle.svg", "no picture");
  const ProgramResult result = gallery({"--output", folder_ / "pictures", "--skin", folder_ / "skin"});
  EXPECT_EQ(result.exitCode, 0);
  // The broken one is told, and ours is drawn.
  EXPECT_THAT(result.err, HasSubstr("timelineMiddle.svg"));
  const QImage page(QString::fromStdString(folder_ / "pictures/rolling.png"));
  EXPECT_EQ(page.pixelColor(18, 58), QColor(Qt::red));
}

TEST_F(GalleryProgram, RefusesASkinThatIsNotThere) {
  const ProgramResult result = gallery({"--output", folder_ / "pictures", "--skin", folder_ / "none"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("There is no such folder"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "pictures"));
}

TEST_F(GalleryProgram, HasHelpWithExamplesAndRefusesWhatItDoesNotKnow) {
  const ProgramResult help = gallery({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.out, HasSubstr("Examples:"));
  const ProgramResult wrong = gallery({"--folder", "x"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_THAT(wrong.out, IsEmpty());
}

}  // namespace
}  // namespace zq

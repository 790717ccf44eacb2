#include "host/clip_files.h"

#include <gtest/gtest.h>

#include "support/program.h"

namespace zq::host {
namespace {

const DateValue kDate = std::make_shared<const CalendarDate>(2004, 7, 15, 13, 30, 45);

TEST(ClipFiles, NamesADatedClipByItsDateAndAnUndatedOneByTheTape) {
  const test::ProgramFolder folder;
  const ClipFiles files(folder.path(), "mov", "holiday");
  EXPECT_EQ(files.freeStem(kDate, 3), "2004-07-15T13-30-45");
  EXPECT_EQ(files.freeStem(nullptr, 3), "holiday-0003");
}

TEST(ClipFiles, ATakenNameGetsACounterForMovieAndThumbnailsTogether) {
  const test::ProgramFolder folder;
  const ClipFiles files(folder.path(), "mov", "holiday");
  test::writeText(folder / "2004-07-15T13-30-45.thumbnails.dv", "mine");
  EXPECT_EQ(files.freeStem(kDate, 1), "2004-07-15T13-30-45-2");
  test::writeText(folder / "2004-07-15T13-30-45-2.mov", "mine");
  EXPECT_EQ(files.freeStem(kDate, 1), "2004-07-15T13-30-45-3");
}

TEST(ClipFiles, ANameWhoseContinuationIsTakenIsTaken) {
  const test::ProgramFolder folder;
  const ClipFiles files(folder.path(), "mov", "holiday");
  test::writeText(folder / "2004-07-15T13-30-45-part2.mov", "mine");
  EXPECT_EQ(files.freeStem(kDate, 1), "2004-07-15T13-30-45-2");
}

TEST(ClipFiles, WorkingNamesOfAnEarlierCaptureThatWasKilledAreLeftAlone) {
  const test::ProgramFolder folder;
  ClipFiles files(folder.path(), "mov", "holiday");
  test::writeText(files.workingNames(1).movie, "all that is left of a tape");
  EXPECT_EQ(files.workingNames(1).movie, folder / "capturing-0001-2.mov");
}

TEST(ClipFiles, AFileIsNotMovedOntoAnother) {
  const test::ProgramFolder folder;
  test::writeText(folder / "new", "new");
  test::writeText(folder / "old", "old");
  const Status status = moveWithoutOverwriting(folder / "new", folder / "old");
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(test::readText(folder / "old"), "old");
  EXPECT_EQ(test::readText(folder / "new"), "new");
}

TEST(ClipFiles, MakesTheFolderAndThoseAboveIt) {
  const test::ProgramFolder folder;
  ClipFiles files(folder / "a/b/c", "mov", "holiday");
  EXPECT_TRUE(files.prepare().ok());
  EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/c"));
}

}  // namespace
}  // namespace zq::host

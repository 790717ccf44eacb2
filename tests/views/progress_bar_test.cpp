// The progress bars under the posters, pixel by pixel, at one and two device pixels a point.

#include "views/progress_bar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

const QColor kNothing(Qt::black);

class ProgressBarTest : public StripTest, public testing::WithParamInterface<int> {
 protected:
  QImage drawn() { return draw(GetParam()); }
  /// One marked clip of 100 frames whose bar reaches from 122 to 178, the slices at 122, 124 and 176.
  void showMarked(int frames = 100) { show(makeStrip({{.marked = true, .frames = frames}})); }
  void recaptureAt(int frame) {
    view_.setClipBeingRecap(clip(0));
    view_.setCursorTimecode(palTimecode(frame));
  }
};

INSTANTIATE_TEST_SUITE_P(PixelsAPoint, ProgressBarTest, testing::Values(1, 2), testing::PrintToStringParamName());

const QColor kEmptyLeft(0x40, 0, 0);
const QColor kEmptyMiddle(0, 0x40, 0);
const QColor kEmptyRight(0, 0, 0x40);
const QColor kFullLeft(0xff, 0, 0);
const QColor kFullMiddle(0, 0xff, 0);
const QColor kFullRight(0, 0, 0xff);

TEST_P(ProgressBarTest, AClipThatIsNotMarkedHasNone) {
  show(makeStrip({{}}));
  clip(0)->setRecaptureFinished(true);
  recaptureAt(150);
  EXPECT_EQ(pixel(drawn(), 150, 3), kNothing);
}

TEST_P(ProgressBarTest, IsEmptyUntilTheClipIsRecaptured) {
  showMarked();
  view_.setCursorTimecode(palTimecode(150));
  const QImage image = drawn();
  for (const int row : {0, 3, 5}) {
    EXPECT_EQ(pixel(image, 121, row), kNothing);
    EXPECT_EQ(pixel(image, 122, row), kEmptyLeft);
    EXPECT_EQ(pixel(image, 123, row), kEmptyLeft);
    EXPECT_EQ(pixel(image, 124, row), kEmptyMiddle);
    EXPECT_EQ(pixel(image, 175, row), kEmptyMiddle);
    EXPECT_EQ(pixel(image, 176, row), kEmptyRight);
    EXPECT_EQ(pixel(image, 177, row), kEmptyRight);
    EXPECT_EQ(pixel(image, 178, row), kNothing);
  }
  EXPECT_EQ(pixel(image, 150, 6), kNothing);
}

TEST_P(ProgressBarTest, IsFullWhenTheClipIsFinished) {
  showMarked();
  clip(0)->setRecaptureFinished(true);
  const QImage image = drawn();
  EXPECT_EQ(pixel(image, 122, 3), kFullLeft);
  EXPECT_EQ(pixel(image, 124, 0), kFullMiddle);
  EXPECT_EQ(pixel(image, 175, 5), kFullMiddle);
  EXPECT_EQ(pixel(image, 177, 3), kFullRight);
}

TEST_P(ProgressBarTest, FillsWithTheCursor) {
  showMarked();
  recaptureAt(150);
  const QImage image = drawn();
  EXPECT_EQ(pixel(image, 122, 3), kFullLeft);
  EXPECT_EQ(pixel(image, 124, 3), kFullMiddle);
  EXPECT_EQ(pixel(image, 149, 3), kFullMiddle) << "half of the whole bar, caps included, is 28 points";
  EXPECT_EQ(pixel(image, 150, 3), kEmptyMiddle);
  EXPECT_EQ(pixel(image, 176, 3), kEmptyRight);
}

TEST_P(ProgressBarTest, ShowsTheLeftCapFromTheFirstFrameOn) {
  showMarked();
  recaptureAt(100);
  const QImage image = drawn();
  EXPECT_EQ(pixel(image, 122, 3), kFullLeft);
  EXPECT_EQ(pixel(image, 124, 3), kEmptyMiddle);
}

TEST_P(ProgressBarTest, ShowsTheRightCapPastNinetyNinePercentOnly) {
  showMarked();
  recaptureAt(199);
  EXPECT_EQ(pixel(drawn(), 177, 3), kEmptyRight);
  EXPECT_EQ(pixel(drawn(), 175, 3), kFullMiddle);
  recaptureAt(200);
  EXPECT_EQ(pixel(drawn(), 177, 3), kFullRight);
}

TEST_P(ProgressBarTest, IsEmptyWithTheCursorOutsideOfTheClip) {
  showMarked();
  for (const int frame : {99, 201}) {
    recaptureAt(frame);
    EXPECT_EQ(pixel(drawn(), 122, 3), kEmptyLeft) << frame;
    EXPECT_EQ(pixel(drawn(), 130, 3), kEmptyMiddle) << frame;
  }
}

TEST_P(ProgressBarTest, FillsForTheClipBeingRecapturedOnly) {
  show(makeStrip({{.marked = true}, {.marked = true}}));  // bars at 92 and 152
  view_.setClipBeingRecap(clip(1));
  view_.setCursorTimecode(palTimecode(150));
  const QImage image = drawn();
  EXPECT_EQ(pixel(image, 92, 3), kEmptyLeft);
  EXPECT_EQ(pixel(image, 152, 3), kFullLeft);
}

TEST_P(ProgressBarTest, OfAClipWithoutFramesDoesNotFill) {
  showMarked(0);
  recaptureAt(100);
  const QImage image = drawn();
  EXPECT_EQ(pixel(image, 122, 3), kFullLeft);
  EXPECT_EQ(pixel(image, 124, 3), kEmptyMiddle);
  EXPECT_EQ(pixel(image, 177, 3), kEmptyRight);
}

TEST_P(ProgressBarTest, OfAClipWithoutTimecodesIsDrawn) {
  ClipRecord record;
  record.recapture = true;
  const auto bare = std::make_shared<ZQACClip>(record);
  show(std::make_shared<ZQACSequence>("1", "", std::vector<ClipValue>{bare}, dateAfter(0)));
  recaptureAt(0);
  EXPECT_EQ(pixel(drawn(), 130, 3), kEmptyMiddle);
  recaptureAt(5);
  EXPECT_EQ(pixel(drawn(), 122, 3), kEmptyLeft);
}

TEST(FractionDone, CountsFramesInTheClipsTimebaseWithoutOverflowing) {
  ClipRecord record;
  record.timebase = 25;
  record.startTimecode = valueWithSMPTETime(palTimecode(100));
  record.duration = valueWithSMPTETime(palTimecode(300));
  EXPECT_EQ(fractionDone(ZQACClip(record), palTimecode(200)), 100.0F / 300.0F);
  EXPECT_EQ(fractionDone(ZQACClip(record), palTimecode(25)), -75.0F / 300.0F);
  SMPTETime wild;
  wild.mHours = -32768;
  record.startTimecode = valueWithSMPTETime(wild);
  wild.mHours = 32767;
  EXPECT_TRUE(std::isfinite(fractionDone(ZQACClip(record), wild)));
}

}  // namespace
}  // namespace zq::test

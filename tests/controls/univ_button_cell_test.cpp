#include "controls/univ_button_cell.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>

#include "controls/control_paint.h"
#include "controls/controls_fixture.h"
#include "controls/univ_button.h"

namespace zq {
namespace {

using test::differenceOf;
using test::faded;
using test::flat;
using test::hasColor;
using test::isColorAt;
using test::pictureOf;

class UnivButtonCell : public test::ControlsTest {
 protected:
  UnivButtonCell() {
    button_.resize(100, 24);
    button_.awakeFromNib();
  }

  /// Where the title lies, in a picture of two pixels a point.
  QRectF titleBox(const QString& title) {
    button_.setText({});
    const QImage without = pictureOf(button_, 2);
    button_.setText(title);
    return differenceOf(without, pictureOf(button_, 2));
  }

  ZQCaptureUnivButton button_;
};

TEST_F(UnivButtonCell, PaintsThreeSlicesAtTheLowerEdge) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(button_, scale);
    EXPECT_TRUE(isColorAt(picture, 0.5, 12, flat("univButtonLeft")));
    EXPECT_TRUE(isColorAt(picture, 5.5, 12, flat("univButtonLeft")));
    EXPECT_TRUE(isColorAt(picture, 6.5, 12, flat("univButtonMiddle")));
    EXPECT_TRUE(isColorAt(picture, 91.5, 12, flat("univButtonMiddle")));
    EXPECT_TRUE(isColorAt(picture, 92.5, 12, flat("univButtonRight")));
    EXPECT_TRUE(isColorAt(picture, 99.5, 23.5, flat("univButtonRight")));
    // The slices are 20 points high and unscaled.
    EXPECT_TRUE(isColorAt(picture, 50, 4.5, flat("univButtonMiddle")));
    EXPECT_FALSE(isColorAt(picture, 50, 3.5, flat("univButtonMiddle")));
  }
}

TEST_F(UnivButtonCell, PaintsTheClickedSlicesWhilePressed) {
  button_.setDown(true);
  const QImage picture = pictureOf(button_);
  EXPECT_TRUE(isColorAt(picture, 3, 12, flat("univButtonLeftClicked")));
  EXPECT_TRUE(isColorAt(picture, 20, 12, flat("univButtonMiddleClicked")));
  EXPECT_TRUE(isColorAt(picture, 96, 12, flat("univButtonRightClicked")));
}

TEST_F(UnivButtonCell, DoesNotPaintTheClickedSlicesForBeingOn) {
  button_.setChecked(true);
  EXPECT_TRUE(isColorAt(pictureOf(button_), 20, 12, flat("univButtonMiddle")));
}

TEST_F(UnivButtonCell, PaintsAFadedFrameAndAGreyTitleWhenDisabled) {
  button_.setText("Done");
  button_.setEnabled(false);
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(button_, scale);
    EXPECT_TRUE(isColorAt(picture, 3, 12, faded(flat("univButtonLeft"), 0.35)));
    EXPECT_TRUE(isColorAt(picture, 10, 12, faded(flat("univButtonMiddle"), 0.35)));
    EXPECT_TRUE(isColorAt(picture, 96, 12, faded(flat("univButtonRight"), 0.35)));
    EXPECT_TRUE(hasColor(picture, {20, 6, 60, 14}, QColor(128, 128, 128)));
  }
}

TEST_F(UnivButtonCell, HasAGreyTitleAndADarkerOneWhilePressed) {
  button_.setText("WWWW");
  EXPECT_TRUE(hasColor(pictureOf(button_, 2), {20, 6, 60, 14}, QColor(128, 128, 128), 12));
  EXPECT_FALSE(hasColor(pictureOf(button_, 2), {20, 6, 60, 14}, QColor(77, 77, 77), 12));
  button_.setDown(true);
  EXPECT_TRUE(hasColor(pictureOf(button_, 2), {20, 6, 60, 14}, QColor(77, 77, 77), 12));
}

TEST_F(UnivButtonCell, CentresItsTitleAPointAboveTheMiddle) {
  const QSizeF size = titleSize(helveticaFont(12), "Options");
  const QRectF box = titleBox("Options");
  EXPECT_NEAR(box.center().x(), 50, 1.5);
  EXPECT_NEAR(box.width(), size.width(), 3);
  EXPECT_GE(box.top(), 12 - size.height() / 2 - 1);
  EXPECT_LE(box.bottom(), 12 + size.height() / 2 - 1);
}

TEST_F(UnivButtonCell, TitledCaptureShowsARecordingIconAndMovesTheTitleLeft) {
  const QSizeF size = titleSize(helveticaFont(12), "Capture");
  const QRectF other = titleBox("Captura");
  EXPECT_NEAR(other.left(), 50 - size.width() / 2, 2);
  button_.setText("Capture");
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(button_, scale);
    EXPECT_TRUE(isColorAt(picture, 82.5, 2.5, flat("recordingIcon")));
    EXPECT_TRUE(isColorAt(picture, 96.5, 16.5, flat("recordingIcon")));
    EXPECT_FALSE(isColorAt(picture, 97.5, 10, flat("recordingIcon")));
    EXPECT_FALSE(isColorAt(picture, 81.5, 10, flat("recordingIcon")));
  }
  const QRectF box = titleBox("Capture");  // with the icon
  EXPECT_NEAR(box.left(), other.left() - 15, 1);
  EXPECT_NEAR(box.right(), 97, 0.5);
}

TEST_F(UnivButtonCell, TitledCaptureShowsTheBrightIconWhileOn) {
  button_.setText("Capture");
  button_.setChecked(true);
  EXPECT_TRUE(isColorAt(pictureOf(button_), 90, 10, flat("recordingIconHL")));
}

TEST_F(UnivButtonCell, ShowsTheIconForTheTitleAsItIsReadOnly) {
  button_.setText("&Capture");  // the mark of a shortcut is not read
  EXPECT_TRUE(isColorAt(pictureOf(button_), 90, 10, flat("recordingIcon")));
  button_.setText("capture");
  EXPECT_FALSE(isColorAt(pictureOf(button_), 90, 3, flat("recordingIcon")));
  button_.setText("Capture ");
  EXPECT_FALSE(isColorAt(pictureOf(button_), 90, 3, flat("recordingIcon")));
}

TEST_F(UnivButtonCell, ShowsItsAlternateTitleWhileOn) {
  button_.setText("Go");
  button_.setAlternateTitle("Capture");
  EXPECT_EQ(button_.shownTitle(), "Go");
  EXPECT_FALSE(isColorAt(pictureOf(button_), 90, 5, flat("recordingIconHL")));
  button_.setChecked(true);
  EXPECT_EQ(button_.shownTitle(), "Capture");
  EXPECT_TRUE(isColorAt(pictureOf(button_), 90, 5, flat("recordingIconHL")));
}

TEST_F(UnivButtonCell, ShowsItsNormalTitleWhileOnWithoutAnAlternateOne) {
  button_.setText("Capture");
  button_.setAlternateTitle({});
  button_.setChecked(true);
  EXPECT_EQ(button_.shownTitle(), "Capture");
  EXPECT_TRUE(isColorAt(pictureOf(button_), 90, 10, flat("recordingIconHL")));
}

TEST_F(UnivButtonCell, PaintsTheCapsAtTheControlsEdgesWhereverTheFrameBegins) {
  QImage picture(100, 24, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::black);
  {
    QPainter painter(&picture);
    ZQCaptureUnivButtonCell().drawWithFrameInView(painter, {10, 0, 80, 24}, button_);
  }
  EXPECT_TRUE(isColorAt(picture, 3, 12, flat("univButtonLeft")));
  EXPECT_TRUE(isColorAt(picture, 12, 12, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 16.5, 12, flat("univButtonMiddle")));
  EXPECT_TRUE(isColorAt(picture, 76, 12, flat("univButtonRight")));
  EXPECT_TRUE(isColorAt(picture, 81.5, 12, flat("univButtonMiddle")));
  EXPECT_TRUE(isColorAt(picture, 82.5, 12, Qt::black));
}

TEST_F(UnivButtonCell, TilesWholePointsOnly) {
  QImage picture(400, 96, QImage::Format_ARGB32_Premultiplied);
  picture.setDevicePixelRatio(4);
  picture.fill(Qt::black);
  {
    QPainter painter(&picture);
    ZQCaptureUnivButtonCell().drawWithFrameInView(painter, {0, 0, 50.75, 24}, button_);
  }
  EXPECT_TRUE(isColorAt(picture, 41.9, 12, flat("univButtonMiddle")));
  EXPECT_TRUE(isColorAt(picture, 42.4, 12, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 43, 12, flat("univButtonRight")));
}

TEST_F(UnivButtonCell, NarrowerThanItsCapsPaintsNoMiddle) {
  button_.resize(10, 24);
  const QImage picture = pictureOf(button_);
  EXPECT_TRUE(isColorAt(picture, 1, 12, flat("univButtonLeft")));
  EXPECT_TRUE(isColorAt(picture, 9, 12, flat("univButtonRight")));
}

class UnivButtonCellAlone : public UnivButtonCell {
 protected:
  /// Not where the control is: what ignores the frame is seen.
  static constexpr QRectF kFrame{10, 7, 100, 24};

  QImage drawn() const {
    QImage picture(260, 80, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    ZQCaptureUnivButtonCell().drawWithFrameInView(painter, kFrame, button_);
    return picture;
  }
};

TEST_F(UnivButtonCellAlone, PutsItsCapsAtZeroAndAtTheWidthButEverythingAtTheFramesHeight) {
  const QImage picture = drawn();
  EXPECT_TRUE(isColorAt(picture, 0.5, 30.5, flat("univButtonLeft")));
  EXPECT_TRUE(isColorAt(picture, 5.5, 11.5, flat("univButtonLeft")));
  EXPECT_TRUE(isColorAt(picture, 5.5, 10.5, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 6.5, 20, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 16.5, 30.5, flat("univButtonMiddle")));
  EXPECT_TRUE(isColorAt(picture, 92.5, 20, flat("univButtonRight")));
  EXPECT_TRUE(isColorAt(picture, 99.5, 20, flat("univButtonRight")));
  EXPECT_TRUE(isColorAt(picture, 101.5, 20, flat("univButtonMiddle")));
  EXPECT_TRUE(isColorAt(picture, 102.5, 20, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 50, 31.5, Qt::black));
}

TEST_F(UnivButtonCellAlone, CentresItsTitleInTheFrame) {
  const QImage without = drawn();
  button_.setText("Options");
  const QRectF box = differenceOf(without, drawn());
  EXPECT_NEAR(box.center().x(), 60, 1.5);
  const qreal height = titleSize(helveticaFont(12), "Options").height();
  EXPECT_GE(box.top(), 19 - height / 2 - 1);
  EXPECT_LE(box.bottom(), 19 + height / 2 - 1);
}

TEST_F(UnivButtonCellAlone, PutsTheIconWhereTheFrameIsHighButNotWhereItBegins) {
  button_.setText("Capture");
  const QImage picture = drawn();
  EXPECT_TRUE(isColorAt(picture, 82.5, 9.5, flat("recordingIcon")));
  EXPECT_TRUE(isColorAt(picture, 96.5, 23.5, flat("recordingIcon")));
  EXPECT_FALSE(isColorAt(picture, 97.5, 15, flat("recordingIcon")));
  EXPECT_FALSE(isColorAt(picture, 90, 8.5, flat("recordingIcon")));
}

TEST_F(UnivButtonCell, DisabledCaptureKeepsItsIconBrightOverAFadedFrame) {
  button_.setText("Capture");
  button_.setEnabled(false);
  const QImage picture = pictureOf(button_);
  EXPECT_TRUE(isColorAt(picture, 90, 10, flat("recordingIcon")));
  EXPECT_TRUE(isColorAt(picture, 10, 12, faded(flat("univButtonMiddle"), 0.35)));
}

TEST_F(UnivButtonCell, PressedAndDisabledHasADarkTitleAsFaintAsItsFrame) {
  button_.setText("WWWW");
  button_.setEnabled(false);
  button_.setDown(true);
  ASSERT_TRUE(button_.isDown());
  const QColor frame = faded(flat("univButtonMiddleClicked"), 0.35);
  const auto part = [](int under) { return static_cast<int>(std::lround(under * 0.65 + 77 * 0.35)); };
  const QImage picture = pictureOf(button_, 2);
  EXPECT_TRUE(isColorAt(picture, 10, 12, frame));
  EXPECT_TRUE(hasColor(picture, {20, 6, 60, 14}, {part(frame.red()), part(frame.green()), part(frame.blue())}, 6));
  EXPECT_FALSE(hasColor(picture, {20, 6, 60, 14}, QColor(77, 77, 77), 12));
  EXPECT_FALSE(hasColor(picture, {20, 6, 60, 14}, QColor(128, 128, 128), 12));
}

}  // namespace
}  // namespace zq

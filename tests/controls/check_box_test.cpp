#include "controls/check_box.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "controls/check_box_cell.h"
#include "controls/control_paint.h"
#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::differenceOf;
using test::flat;
using test::hasColor;
using test::isColorAt;
using test::pictureOf;

template <int kStyle>
class StyledCell : public ZQCaptureCheckBoxCell {
 public:
  int windowStyle() const override { return kStyle; }
};

template <int kStyle>
class StyledCheckBox : public ZQCaptureCheckBox {
 public:
  ButtonCellClass cellClass() const override {
    return [] { return std::unique_ptr<ButtonCell>(std::make_unique<StyledCell<kStyle>>()); };
  }
};

class CheckBox : public test::ControlsTest {
 protected:
  CheckBox() { prepare(box_); }

  static void prepare(ZQCaptureCheckBox& box) {
    box.resize(120, 20);
    box.setText("Letterbox");
    box.awakeFromNib();
  }

  ZQCaptureCheckBox box_;
};

TEST_F(CheckBox, PaintsTheBoxOfItsStateUnscaledAtTheLowerLeft) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    box_.setChecked(false);
    const QImage off = pictureOf(box_, scale);
    EXPECT_TRUE(isColorAt(off, 0.5, 6.5, flat("checkBoxOff")));
    EXPECT_TRUE(isColorAt(off, 12.5, 19.5, flat("checkBoxOff")));
    EXPECT_FALSE(isColorAt(off, 13.5, 19.5, flat("checkBoxOff")));
    EXPECT_FALSE(isColorAt(off, 5, 5.5, flat("checkBoxOff")));
    box_.setChecked(true);
    EXPECT_TRUE(isColorAt(pictureOf(box_, scale), 6, 12, flat("checkBoxOn")));
  }
}

TEST_F(CheckBox, PaintsNoBoxBetweenOnAndOff) {
  box_.setText({});
  box_.setTristate(true);
  box_.setCheckState(Qt::PartiallyChecked);
  const QImage mixed = pictureOf(box_);
  EXPECT_FALSE(isColorAt(mixed, 6, 12, flat("checkBoxOff")));
  EXPECT_FALSE(isColorAt(mixed, 6, 12, flat("checkBoxOn")));
  box_.setText("Letterbox");
  EXPECT_GE(differenceOf(mixed, pictureOf(box_)).left(), 14);
}

TEST_F(CheckBox, PaintsItsTitleBesideTheBoxInTheMiddle) {
  const QImage with = pictureOf(box_, 2);
  box_.setText({});
  const QRectF title = differenceOf(with, pictureOf(box_, 2));
  const QSizeF size = titleSize(systemFont(11), "Letterbox");
  EXPECT_NEAR(title.left(), 15, 2);
  EXPECT_NEAR(title.width(), size.width(), 3);
  EXPECT_GE(title.top(), 10 - size.height() / 2);
  EXPECT_LE(title.bottom(), 10 + size.height() / 2);
}

TEST_F(CheckBox, HasAWhiteTitleAndAGreyOneWhenDisabled) {
  const QRectF area(14, 0, 100, 20);
  EXPECT_TRUE(hasColor(pictureOf(box_, 2), area, Qt::white, 20));
  box_.setEnabled(false);
  EXPECT_FALSE(hasColor(pictureOf(box_, 2), area, Qt::white, 20));
  EXPECT_TRUE(hasColor(pictureOf(box_, 2), area, QColor(128, 128, 128), 20));
  // The box fades for nobody.
  EXPECT_TRUE(isColorAt(pictureOf(box_), 6, 12, flat("checkBoxOff")));
}

TEST_F(CheckBox, HasTheSameLookInBothStylesOfWindow) {
  EXPECT_EQ(ZQCaptureCheckBoxCell().windowStyle(), 0);
  StyledCheckBox<1> pro;
  prepare(pro);
  EXPECT_EQ(pictureOf(pro, 2), pictureOf(box_, 2));
}

TEST_F(CheckBox, OfAnyOtherStyleOfWindowPaintsNothing) {
  QWidget nothing;
  nothing.resize(120, 20);
  StyledCheckBox<2> box;
  prepare(box);
  box.setChecked(true);
  EXPECT_EQ(pictureOf(box), pictureOf(nothing));
  StyledCheckBox<-1> other;
  prepare(other);
  EXPECT_EQ(pictureOf(other), pictureOf(nothing));
}

TEST_F(CheckBox, LooksAsThePlatformsUntilItAwakes) {
  ZQCaptureCheckBox plain;
  QCheckBox qts;
  for (QCheckBox* box : {static_cast<QCheckBox*>(&plain), &qts}) {
    box->setText("Letterbox");
    box->resize(120, 20);
  }
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
  EXPECT_EQ(plain.sizeHint(), qts.sizeHint());
}

TEST_F(CheckBox, KeepsStateTitleAndWhomItTellsWhenItAwakes) {
  ZQCaptureCheckBox box;
  box.setText("Letterbox");
  box.setChecked(true);
  box.setEnabled(false);
  box.setTag(3);
  const QSignalSpy toggles(&box, &QCheckBox::toggled);
  box.awakeFromNib();
  EXPECT_EQ(box.text(), "Letterbox");
  EXPECT_TRUE(box.isChecked());
  EXPECT_FALSE(box.isEnabled());
  EXPECT_EQ(box.tag(), 3);
  EXPECT_EQ(toggles.count(), 0);
  box.toggle();
  EXPECT_EQ(toggles.count(), 1);
}

TEST_F(CheckBox, KeepsTheStateBetweenOnAndOffWhenItAwakes) {
  ZQCaptureCheckBox box;
  box.setCheckState(Qt::PartiallyChecked);
  box.awakeFromNib();
  EXPECT_EQ(box.checkState(), Qt::PartiallyChecked);
}

TEST_F(CheckBox, LosesItsImageAndAlternateTitleWhenItAwakes) {
  ZQCaptureCheckBox box;
  EXPECT_TRUE(box.setProperty("alternateTitle", "Other"));
  EXPECT_EQ(box.alternateTitle(), "Other");
  box.setIcon(QIcon(QPixmap(2, 2)));
  box.awakeFromNib();
  EXPECT_EQ(box.alternateTitle(), "");
  EXPECT_TRUE(box.icon().isNull());
}

TEST_F(CheckBox, TogglesByMouseAndKey) {
  show(box_);
  QTest::mouseClick(&box_, Qt::LeftButton, {}, {5, 10});
  EXPECT_TRUE(box_.isChecked());
  QTest::mouseClick(&box_, Qt::LeftButton, {}, {30, 10});
  EXPECT_FALSE(box_.isChecked());
  QTest::keyClick(&box_, Qt::Key_Space);
  EXPECT_TRUE(box_.isChecked());
}

TEST_F(CheckBox, TakesNoClickBehindItsTitle) {
  show(box_);
  QTest::mouseClick(&box_, Qt::LeftButton, {}, {117, 10});
  EXPECT_FALSE(box_.isChecked());
}

TEST_F(CheckBox, ShowsARingForTheKeyboardOnly) {
  show(box_);
  focus(box_, Qt::MouseFocusReason);
  const QImage without = pictureOf(box_);
  focus(box_, Qt::TabFocusReason);
  EXPECT_EQ(differenceOf(without, pictureOf(box_)), QRectF(0, 0, 120, 20));
}

TEST_F(CheckBox, IsACheckBoxForAssistivePrograms) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&box_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::CheckBox);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Letterbox");
  box_.setChecked(true);
  EXPECT_TRUE(accessible->state().checked);
}

TEST_F(CheckBox, IsAsLargeAsBoxAndTitleNeed) {
  const QSizeF title = titleSize(systemFont(11), "Letterbox");
  EXPECT_EQ(box_.sizeHint().width(), static_cast<int>(std::ceil(15 + title.width())));
  EXPECT_GE(box_.sizeHint().height(), 14);
}

TEST_F(CheckBox, StandsWhereTheFrameBegins) {
  const auto drawn = [this] {
    QImage picture(300, 80, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    ZQCaptureCheckBoxCell().drawWithFrameInView(painter, {10, 7, 120, 20}, box_);
    return picture;
  };
  const QImage picture = drawn();
  EXPECT_TRUE(isColorAt(picture, 10.5, 26.5, flat("checkBoxOff")));
  EXPECT_TRUE(isColorAt(picture, 22.5, 13.5, flat("checkBoxOff")));
  EXPECT_TRUE(isColorAt(picture, 9.5, 20, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 15, 27.5, Qt::black));
  box_.setText({});
  EXPECT_NEAR(differenceOf(picture, drawn()).left(), 25, 2);
}

}  // namespace
}  // namespace zq

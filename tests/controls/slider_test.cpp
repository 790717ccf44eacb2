#include "controls/slider.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <limits>
#include <vector>

#include "controls/controls_fixture.h"
#include "controls/slider_cell.h"

namespace zq {
namespace {

using test::differenceOf;
using test::flat;
using test::isColorAt;
using test::pictureOf;

class Slider : public test::ControlsTest {
 protected:
  Slider() {
    slider_.resize(200, 30);
    slider_.setRange(0, 100);
    slider_.setValue(50);
    slider_.awakeFromNib();
  }

  bool isDraggingKnob() const { return dynamic_cast<const ZQAccurateSliderCell&>(slider_.cell()).isDraggingKnob(); }
  QPoint knob() const { return slider_.knobRect().center().toPoint(); }

  ZQAccurateSlider slider_;
};

TEST_F(Slider, PaintsABarOfThreeSlicesSixPointsHigh) {
  slider_.setValue(50);
  const QRectF track = slider_.trackRect();
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(slider_, scale);
    const qreal x = track.x();
    const qreal y = track.y() + 3;
    EXPECT_TRUE(isColorAt(picture, x + 0.5, y + 0.5, flat("sliderTrackLeft")));
    EXPECT_TRUE(isColorAt(picture, x + 3.5, y + 5.5, flat("sliderTrackLeft")));
    EXPECT_TRUE(isColorAt(picture, x + 4.5, y + 3, flat("sliderTrackMiddle")));
    EXPECT_TRUE(isColorAt(picture, track.right() - 4.5, y + 3, flat("sliderTrackMiddle")));
    EXPECT_TRUE(isColorAt(picture, track.right() - 3.5, y + 3, flat("sliderTrackRight")));
    EXPECT_FALSE(isColorAt(picture, x + 20, y - 0.5, flat("sliderTrackMiddle")));
    EXPECT_FALSE(isColorAt(picture, x + 20, y + 6.5, flat("sliderTrackMiddle")));
  }
}

TEST_F(Slider, PaintsTheKnobWhereTheMouseFindsIt) {
  for (const int value : {0, 30, 100}) {
    SCOPED_TRACE(value);
    slider_.setValue(value);
    const QRectF knob = slider_.knobRect();
    const QImage picture = pictureOf(slider_);
    EXPECT_TRUE(isColorAt(picture, knob.left() + 0.5, knob.top() + 0.5, flat("sliderKnob")));
    EXPECT_TRUE(isColorAt(picture, knob.right() - 0.5, knob.bottom() - 0.5, flat("sliderKnob")));
  }
}

TEST_F(Slider, PaintsAnotherKnobWithTickMarks) {
  slider_.setNumberOfTickMarks(5);
  EXPECT_TRUE(isColorAt(pictureOf(slider_), knob().x(), knob().y(), flat("sliderKnobAvecTick")));
  slider_.setNumberOfTickMarks(0);
  EXPECT_TRUE(isColorAt(pictureOf(slider_), knob().x(), knob().y(), flat("sliderKnob")));
}

TEST_F(Slider, PaintsItsBarWithoutAntialiasingAndLeavesThePainterAsItWas) {
  QImage picture(40, 20, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::black);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  ZQAccurateSliderCell().drawBarInside(painter, {0, 0.25, 40, 12});
  EXPECT_TRUE(painter.testRenderHint(QPainter::Antialiasing));
  EXPECT_TRUE(isColorAt(picture, 20, 3.5, flat("sliderTrackMiddle")));  // no half covered line
}

TEST_F(Slider, LooksAsThePlatformsUntilItAwakesOrWhereItStandsUpright) {
  ZQAccurateSlider plain;
  QSlider qts(Qt::Horizontal);
  plain.resize(200, 30);
  qts.resize(200, 30);
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
  plain.awakeFromNib();
  EXPECT_NE(pictureOf(plain), pictureOf(qts));
  plain.setOrientation(Qt::Vertical);
  qts.setOrientation(Qt::Vertical);
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
}

TEST_F(Slider, KeepsEverySettingWhenItAwakes) {
  ZQAccurateSlider slider;
  slider.setEnabled(false);
  slider.setRange(10, 50);
  slider.setNumberOfTickMarks(5);
  slider.setTickPosition(QSlider::TicksAbove);
  slider.setAllowsTickMarkValuesOnly(true);
  slider.setMinValue(1);
  slider.setMaxValue(2);
  slider.setDoubleValue(1.5);
  const QSignalSpy changes(&slider, &QSlider::valueChanged);
  slider.awakeFromNib();
  EXPECT_FALSE(slider.isEnabled());
  EXPECT_EQ(slider.minimum(), 10);
  EXPECT_EQ(slider.maximum(), 50);
  EXPECT_EQ(slider.value(), 30);
  EXPECT_EQ(slider.numberOfTickMarks(), 5);
  EXPECT_EQ(slider.tickPosition(), QSlider::TicksAbove);
  EXPECT_TRUE(slider.allowsTickMarkValuesOnly());
  EXPECT_DOUBLE_EQ(slider.minValue(), 1);
  EXPECT_DOUBLE_EQ(slider.maxValue(), 2);
  EXPECT_DOUBLE_EQ(slider.doubleValue(), 1.5);
  EXPECT_EQ(changes.count(), 0);
  slider.setValue(40);
  EXPECT_EQ(changes.count(), 1);
}

TEST_F(Slider, TakesItsSettingsAsPropertiesInAnyOrder) {
  ZQAccurateSlider slider;
  EXPECT_TRUE(slider.setProperty("allowsTickMarkValuesOnly", true));
  EXPECT_TRUE(slider.setProperty("numberOfTickMarks", 3));
  EXPECT_TRUE(slider.setProperty("maximum", 100));
  EXPECT_TRUE(slider.setProperty("tickInterval", 25));
  EXPECT_TRUE(slider.setProperty("maxValue", 4.0));
  EXPECT_TRUE(slider.setProperty("minValue", 0.0));
  EXPECT_TRUE(slider.setProperty("doubleValue", 1.0));
  slider.awakeFromNib();
  EXPECT_EQ(slider.value(), 25);
  show(slider);
  QTest::keyClick(&slider, Qt::Key_Right);
  EXPECT_DOUBLE_EQ(slider.property("doubleValue").toDouble(), 2.0);
}

TEST_F(Slider, CountsInItsStepsWithoutAScale) {
  EXPECT_DOUBLE_EQ(slider_.minValue(), 0);
  EXPECT_DOUBLE_EQ(slider_.maxValue(), 100);
  slider_.setDoubleValue(33.4);
  EXPECT_EQ(slider_.value(), 33);
  EXPECT_DOUBLE_EQ(slider_.doubleValue(), 33);
}

TEST_F(Slider, KeepsADoubleValueWithinItsScale) {
  slider_.setMinValue(-1);
  slider_.setMaxValue(1);
  slider_.setDoubleValue(5);
  EXPECT_EQ(slider_.value(), 100);
  slider_.setDoubleValue(-std::numeric_limits<double>::infinity());
  EXPECT_EQ(slider_.value(), 0);
  slider_.setDoubleValue(0.5);
  slider_.setDoubleValue(std::nan(""));
  EXPECT_DOUBLE_EQ(slider_.doubleValue(), 0.5);
}

TEST_F(Slider, HasOneValueWhereItsScaleOrRangeIsEmpty) {
  slider_.setMinValue(3);
  slider_.setMaxValue(3);
  slider_.setDoubleValue(8);
  EXPECT_DOUBLE_EQ(slider_.doubleValue(), 3);
  slider_.setRange(7, 7);
  EXPECT_DOUBLE_EQ(slider_.doubleValue(), 3);
}

TEST_F(Slider, PlacesTickMarksEvenly) {
  EXPECT_EQ(slider_.numberOfTickMarks(), 0);
  for (const int number : {1, 2, 3, 5, 11, 101}) {
    slider_.setNumberOfTickMarks(number);
    EXPECT_EQ(slider_.numberOfTickMarks(), number);
  }
  slider_.setNumberOfTickMarks(-3);
  EXPECT_EQ(slider_.numberOfTickMarks(), 0);
}

TEST_F(Slider, KnowsThatItsKnobIsDragged) {
  show(slider_);
  EXPECT_FALSE(isDraggingKnob());
  QTest::mousePress(&slider_, Qt::LeftButton, {}, knob());
  EXPECT_TRUE(isDraggingKnob());
  QTest::mouseMove(&slider_, {20, 15});
  EXPECT_TRUE(isDraggingKnob());
  QTest::mouseRelease(&slider_, Qt::LeftButton, {}, {20, 15});
  EXPECT_FALSE(isDraggingKnob());
}

TEST_F(Slider, IsNotDraggedByAClickBesideTheKnob) {
  show(slider_);
  QTest::mousePress(&slider_, Qt::LeftButton, {}, {5, 15});
  EXPECT_FALSE(isDraggingKnob());
  QTest::mouseRelease(&slider_, Qt::LeftButton, {}, {5, 15});
  EXPECT_LT(slider_.value(), 50);
}

TEST_F(Slider, IsNoLongerDraggedOnceItIsDisabled) {
  show(slider_);
  QTest::mousePress(&slider_, Qt::LeftButton, {}, knob());
  slider_.setEnabled(false);
  EXPECT_FALSE(isDraggingKnob());
}

TEST_F(Slider, FollowsTheMouse) {
  show(slider_);
  const QPoint start = knob();
  QTest::mousePress(&slider_, Qt::LeftButton, {}, start);
  QMouseEvent move(QEvent::MouseMove, start + QPointF(50, 0), slider_.mapToGlobal(start + QPointF(50, 0)), Qt::NoButton,
                   Qt::LeftButton, {});
  QApplication::sendEvent(&slider_, &move);
  EXPECT_NEAR(slider_.value(), 77, 2);
  EXPECT_NEAR(knob().x(), start.x() + 50, 1);
}

TEST_F(Slider, WithTickMarkValuesOnlyStaysOnThem) {
  slider_.setNumberOfTickMarks(5);
  slider_.setAllowsTickMarkValuesOnly(true);
  show(slider_);
  const QSignalSpy changes(&slider_, &QSlider::valueChanged);
  const QPoint start = knob();
  QTest::mousePress(&slider_, Qt::LeftButton, {}, start);
  for (const int by : {2, 10, 20, 30, 40, 48}) {
    const QPointF at = start + QPointF(by, 0);
    QMouseEvent move(QEvent::MouseMove, at, slider_.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&slider_, &move);
  }
  QTest::mouseRelease(&slider_, Qt::LeftButton, {}, start);
  ASSERT_EQ(changes.count(), 1);
  EXPECT_EQ(changes.at(0).at(0).toInt(), 75);
}

TEST_F(Slider, WithTickMarkValuesOnlyGoesFromOneToTheNextByKeysAndWheel) {
  slider_.setAllowsTickMarkValuesOnly(true);
  slider_.setNumberOfTickMarks(5);
  show(slider_);
  QTest::keyClick(&slider_, Qt::Key_Right);
  EXPECT_EQ(slider_.value(), 75);
  QTest::keyClick(&slider_, Qt::Key_PageDown);
  EXPECT_EQ(slider_.value(), 50);
  QTest::keyClick(&slider_, Qt::Key_End);
  EXPECT_EQ(slider_.value(), 100);
  QWheelEvent wheel({100, 15}, slider_.mapToGlobal(QPointF(100, 15)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&slider_, &wheel);
  EXPECT_LT(slider_.value(), 100);
  EXPECT_EQ(slider_.value() % 25, 0);
}

TEST_F(Slider, WithAnIntervalOnlySpreadsItsTickMarksOverItsRange) {
  slider_.setRange(0, 90);
  slider_.setTickPosition(QSlider::TicksBelow);
  slider_.setTickInterval(20);
  slider_.setAllowsTickMarkValuesOnly(true);
  show(slider_);
  QTest::keyClick(&slider_, Qt::Key_End);
  EXPECT_EQ(slider_.value(), 90);
}

TEST_F(Slider, WithoutTickMarksGoesInSteps) {
  slider_.setAllowsTickMarkValuesOnly(true);
  show(slider_);
  QTest::keyClick(&slider_, Qt::Key_Right);
  EXPECT_EQ(slider_.value(), 51);
}

TEST_F(Slider, ShowsARingForTheKeyboardOnly) {
  show(slider_);
  focus(slider_, Qt::MouseFocusReason);
  const QImage without = pictureOf(slider_);
  focus(slider_, Qt::TabFocusReason);
  EXPECT_EQ(differenceOf(without, pictureOf(slider_)), QRectF(0, 0, 200, 30));
}

TEST_F(Slider, IsASliderForAssistivePrograms) {
  slider_.setAccessibleName("Volume");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&slider_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Slider);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Volume");
  EXPECT_EQ(accessible->valueInterface()->currentValue().toInt(), 50);
}

TEST_F(Slider, HasAsManyTickMarksAsItIsToldWhateverItsRange) {
  for (const int number : {14, 18}) {
    slider_.setNumberOfTickMarks(number);
    EXPECT_EQ(slider_.numberOfTickMarks(), number);
  }
  slider_.setRange(-7, 40);
  EXPECT_EQ(slider_.numberOfTickMarks(), 18);
  slider_.setRange(0, 5);
  EXPECT_EQ(slider_.numberOfTickMarks(), 18);
  slider_.setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
  EXPECT_EQ(slider_.numberOfTickMarks(), 18);
}

TEST_F(Slider, WithTickMarkValuesOnlyReachesEveryTickMarkByKeys) {
  for (const int number : {14, 18, 61, 101}) {
    SCOPED_TRACE(number);
    slider_.setNumberOfTickMarks(number);
    slider_.setAllowsTickMarkValuesOnly(true);
    slider_.setValue(0);
    show(slider_);
    for (int i = 1; i < number; ++i) {
      QTest::keyClick(&slider_, Qt::Key_Right);
      ASSERT_EQ(slider_.value(), std::lround(i * 100.0 / (number - 1)));
    }
    for (int i = number - 2; i >= 0; --i) {
      QTest::keyClick(&slider_, Qt::Key_Left);
      ASSERT_EQ(slider_.value(), std::lround(i * 100.0 / (number - 1)));
    }
  }
}

TEST_F(Slider, WithTickMarkValuesOnlyFollowsARangeThatIsSetLater) {
  slider_.setNumberOfTickMarks(5);
  slider_.setAllowsTickMarkValuesOnly(true);
  slider_.setRange(0, 1000);
  slider_.setValue(0);
  show(slider_);
  for (const int mark : {250, 500, 750, 1000}) {
    QTest::keyClick(&slider_, Qt::Key_Right);
    EXPECT_EQ(slider_.value(), mark);
  }
}

TEST_F(Slider, WithTickMarkValuesOnlyReachesTheEndOfItsScaleInQtsOwnRange) {
  ZQAccurateSlider slider;
  slider.setMinValue(0);
  slider.setMaxValue(4);
  slider.setNumberOfTickMarks(5);
  slider.setAllowsTickMarkValuesOnly(true);
  slider.awakeFromNib();
  show(slider);
  QTest::keyClick(&slider, Qt::Key_End);
  EXPECT_DOUBLE_EQ(slider.doubleValue(), 4);
  QTest::keyClick(&slider, Qt::Key_Home);
  EXPECT_DOUBLE_EQ(slider.doubleValue(), 0);
}

TEST_F(Slider, WithTickMarkValuesOnlyGoesFarInARangeOfAllNumbers) {
  slider_.setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
  slider_.setNumberOfTickMarks(3);
  slider_.setAllowsTickMarkValuesOnly(true);
  slider_.setValue(slider_.minimum());
  show(slider_);
  QTest::keyClick(&slider_, Qt::Key_Right);
  EXPECT_NEAR(slider_.value(), 0, 1);
  QTest::keyClick(&slider_, Qt::Key_Right);
  EXPECT_EQ(slider_.value(), slider_.maximum());
}

TEST_F(Slider, PaintsItsTickMarksWhereTheKnobStopsAtThem) {
  constexpr int kNumber = 14;
  slider_.setNumberOfTickMarks(kNumber);
  const qreal y = slider_.knobRect().bottom() + 2;
  ASSERT_LT(y, slider_.height());
  std::vector<qreal> places;
  for (int i = 0; i < kNumber; ++i) {
    slider_.setValue(static_cast<int>(std::lround(i * 100.0 / (kNumber - 1))));
    places.push_back(slider_.knobRect().center().x());
  }
  const QImage picture = pictureOf(slider_);
  for (int i = 0; i < kNumber; ++i) {
    const auto at = static_cast<std::size_t>(i);
    EXPECT_TRUE(isColorAt(picture, places[at], y, QColor(128, 128, 128))) << i;
    if (i > 0) {
      EXPECT_TRUE(isColorAt(picture, (places[at] + places[at - 1]) / 2, y, Qt::black)) << i;
    }
  }
}

TEST_F(Slider, IsNoLongerDraggedOnceItIsHidden) {
  show(slider_);
  QTest::mousePress(&slider_, Qt::LeftButton, {}, knob());
  ASSERT_TRUE(isDraggingKnob());
  slider_.hide();
  EXPECT_FALSE(isDraggingKnob());
}

TEST_F(Slider, LooksTheSameWhenDisabled) {
  const QImage enabled = pictureOf(slider_, 2);
  slider_.setEnabled(false);
  EXPECT_EQ(pictureOf(slider_, 2), enabled);
}

TEST_F(Slider, WithTickMarkValuesOnlyGoesInStepsWhereThereAreMoreTickMarks) {
  slider_.setRange(0, 2);
  slider_.setValue(0);
  slider_.setNumberOfTickMarks(10);
  slider_.setAllowsTickMarkValuesOnly(true);
  show(slider_);
  for (const int step : {1, 2}) {
    QTest::keyClick(&slider_, Qt::Key_Right);
    EXPECT_EQ(slider_.value(), step);
  }
}

}  // namespace
}  // namespace zq

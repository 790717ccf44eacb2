#include "controls/text_field.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include "controls/controls_fixture.h"
#include "controls/text_field_cell.h"

namespace zq {
namespace {

using test::differenceOf;
using test::flat;
using test::hasColor;
using test::isColorAt;
using test::pictureOf;

const QColor kGrey(128, 128, 128);

class TextField : public test::ControlsTest {
 protected:
  TextField() {
    field_.resize(100, 22);
    field_.awakeFromNib();
  }

  QImage cellPicture(const QRectF& frame, qreal scale = 1) const {
    QImage picture((QSizeF(110, 40) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    ZQAccurateTextFieldCell().drawWithFrameInView(painter, frame, field_);
    return picture;
  }

  ZQAccurateTextField field_;
};

TEST_F(TextField, PaintsThreeSlicesOverItsWholeHeight) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(field_, scale);
    for (const qreal y : {0.5, 11.0, 21.5}) {
      EXPECT_TRUE(isColorAt(picture, 0.5, y, flat("textFieldLeft")));
      EXPECT_TRUE(isColorAt(picture, 4.5, y, flat("textFieldLeft")));
      EXPECT_TRUE(isColorAt(picture, 5.5, y, flat("textFieldMiddle")));
      EXPECT_TRUE(isColorAt(picture, 94.5, y, flat("textFieldMiddle")));
      EXPECT_TRUE(isColorAt(picture, 95.5, y, flat("textFieldRight")));
      EXPECT_TRUE(isColorAt(picture, 99.5, y, flat("textFieldRight")));
    }
  }
}

TEST_F(TextField, ThirtyPointsHighPaintsTheBigSlices) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = cellPicture({0, 0, 100, 30}, scale);
    EXPECT_TRUE(isColorAt(picture, 2, 15, flat("bigTextFieldLeft")));
    EXPECT_TRUE(isColorAt(picture, 50, 15, flat("bigTextFieldMiddle")));
    EXPECT_TRUE(isColorAt(picture, 97, 15, flat("bigTextFieldRight")));
  }
  field_.resize(100, 30);
  EXPECT_TRUE(isColorAt(pictureOf(field_), 50, 15, flat("bigTextFieldMiddle")));
}

TEST_F(TextField, ALittleLowerPaintsTheSmallOnes) {
  const QImage picture = cellPicture({0, 0, 100, 29.9});
  EXPECT_TRUE(isColorAt(picture, 2, 15, flat("textFieldLeft")));
  EXPECT_TRUE(isColorAt(picture, 50, 15, flat("textFieldMiddle")));
  EXPECT_TRUE(isColorAt(picture, 97, 15, flat("textFieldRight")));
}

TEST_F(TextField, PaintsItsTextInGreyOverTheSlices) {
  const QImage without = pictureOf(field_, 2);
  field_.setText("Tape 12");
  const QImage with = pictureOf(field_, 2);
  const QRectF box = differenceOf(without, with);
  EXPECT_GT(box.width(), 20);
  EXPECT_GE(box.left(), 4);
  EXPECT_TRUE(hasColor(with, box, kGrey, 10));
  EXPECT_TRUE(isColorAt(with, 50, 2, flat("textFieldMiddle")));
}

TEST_F(TextField, PaintsItsPlaceholderInAFainterGrey) {
  const QColor middle = flat("textFieldMiddle");
  field_.setPlaceholderText("WWWWW");
  const QColor faint((middle.red() + 128) / 2, (middle.green() + 128) / 2, (middle.blue() + 128) / 2);
  EXPECT_TRUE(hasColor(pictureOf(field_, 2), {5, 0, 90, 22}, faint, 8));
}

TEST_F(TextField, HasAGreyInsertionPointThatDoesNotBlink) {
  show(field_);
  for (const char* text : {"", "Tape", "iiil", "A longer text than the field can show at once"}) {
    for (const qreal scale : {1.0, 2.0}) {
      SCOPED_TRACE(text);
      SCOPED_TRACE(scale);
      field_.setText(text);
      focus(field_, Qt::TabFocusReason);
      field_.end(false);
      const QImage with = pictureOf(field_, scale);
      QApplication::setCursorFlashTime(0);  // Qt's own is shown for good
      EXPECT_EQ(pictureOf(field_, scale), with);
      field_.clearFocus();
      field_.end(false);
      const QRectF box = differenceOf(with, pictureOf(field_, scale));
      EXPECT_GT(box.height(), 8);
      EXPECT_LE(box.width(), 2);
      for (qreal y = box.top(); y < box.bottom(); y += 1 / scale) {
        EXPECT_TRUE(isColorAt(with, box.left(), y, kGrey));
        EXPECT_TRUE(isColorAt(with, box.right() - 0.5, y, kGrey));
      }
    }
  }
}

TEST_F(TextField, ThatCanOnlyBeSelectedHasAnInsertionPointToo) {
  field_.setReadOnly(true);
  field_.setText("Tape");
  show(field_);
  focus(field_, Qt::TabFocusReason);
  const auto point = [this] {
    const QImage with = pictureOf(field_);
    field_.clearFocus();
    const QRectF box = differenceOf(with, pictureOf(field_));
    focus(field_, Qt::MouseFocusReason);
    return box;
  };
  field_.home(false);
  const QRectF first = point();
  EXPECT_GT(first.height(), 8);
  EXPECT_LE(first.width(), 2);
  QTest::keyClick(&field_, Qt::Key_Right);
  EXPECT_GT(point().left(), first.left());
}

TEST_F(TextField, ThatCannotBeSelectedHasNoInsertionPoint) {
  field_.setSelectable(false);
  show(field_);
  field_.setFocus(Qt::OtherFocusReason);
  const QImage with = pictureOf(field_);
  field_.clearFocus();
  EXPECT_EQ(pictureOf(field_), with);
}

TEST_F(TextField, ShowsNoRing) {
  show(field_);
  field_.clearFocus();
  const QImage without = pictureOf(field_);
  focus(field_, Qt::TabFocusReason);
  EXPECT_LE(differenceOf(without, pictureOf(field_)).width(), 2);
}

TEST_F(TextField, PaintsTheGivenColorBehindItsText) {
  field_.setText("Searching");
  const QImage plain = pictureOf(field_, 2);
  outlets::TextField& outlet = field_;
  outlet.setBackgroundColor({1, 0, 0, 1});
  const QImage colored = pictureOf(field_, 2);
  EXPECT_TRUE(isColorAt(colored, 50, 2, Qt::red));
  EXPECT_TRUE(isColorAt(colored, 0.5, 11, Qt::red));
  EXPECT_TRUE(hasColor(colored, {5, 0, 90, 22}, kGrey, 10));
  outlet.setBackgroundColor({1, 0, 0, 0.5F});
  EXPECT_TRUE(isColorAt(pictureOf(field_), 80, 2,
                        QColor((flat("textFieldMiddle").red() + 255) / 2, flat("textFieldMiddle").green() / 2,
                               flat("textFieldMiddle").blue() / 2)));
  outlet.setBackgroundColor({0, 0, 0, 0});
  EXPECT_EQ(pictureOf(field_, 2), plain);
}

TEST_F(TextField, TakesTheNearestColorThereIs) {
  field_.setBackgroundColor({7, -1, 0, 9});
  EXPECT_TRUE(isColorAt(pictureOf(field_), 50, 2, Qt::red));
}

TEST_F(TextField, LooksAsThePlatformsUntilItAwakes) {
  ZQAccurateTextField plain;
  QLineEdit qts;
  for (QLineEdit* field : {static_cast<QLineEdit*>(&plain), &qts}) {
    field->setText("Tape");
    field->resize(100, 22);
  }
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
  EXPECT_EQ(plain.sizeHint(), qts.sizeHint());
  plain.setBackgroundColor({1, 0, 0, 1});
  EXPECT_TRUE(isColorAt(pictureOf(plain), 80, 11, Qt::red));
}

TEST_F(TextField, KeepsTextAndWhatCanBeDoneWithItWhenItAwakes) {
  ZQAccurateTextField field;
  field.setText("Tape 12");
  field.setPlaceholderText("Name");
  field.setReadOnly(true);
  field.setEnabled(false);
  EXPECT_TRUE(field.setProperty("selectable", false));
  const QSignalSpy changes(&field, &QLineEdit::textChanged);
  field.awakeFromNib();
  EXPECT_EQ(field.text(), "Tape 12");
  EXPECT_EQ(field.placeholderText(), "Name");
  EXPECT_TRUE(field.isReadOnly());
  EXPECT_FALSE(field.isEnabled());
  EXPECT_FALSE(field.isSelectable());
  EXPECT_FALSE(field.hasFrame());
  EXPECT_EQ(changes.count(), 0);
  field.setText("Tape 13");
  EXPECT_EQ(changes.count(), 1);
}

TEST_F(TextField, LosesAlignmentAndBackgroundWhenItAwakes) {
  ZQAccurateTextField field;
  field.resize(100, 22);
  field.setAlignment(Qt::AlignRight);
  field.setBackgroundColor({1, 0, 0, 1});
  field.awakeFromNib();
  EXPECT_EQ(field.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
  EXPECT_TRUE(isColorAt(pictureOf(field), 50, 2, flat("textFieldMiddle")));
}

TEST_F(TextField, TakesItsTextFromAnyThreadInOrder) {
  outlets::TextField& outlet = field_;
  onAnotherThread([&] {
    outlet.setStringValue("Searching");
    outlet.setStringValue(
        "R\xC3\xBC"
        "ckw\xC3\xA4rts");
  });
  EXPECT_EQ(field_.text(), "");
  deliver();
  EXPECT_EQ(field_.text(), QString::fromUtf8("R\xC3\xBC"
                                             "ckw\xC3\xA4rts"));
}

TEST_F(TextField, IsEditedByKeys) {
  show(field_);
  QTest::keyClicks(&field_, "Tape");
  QTest::keyClick(&field_, Qt::Key_Backspace);
  EXPECT_EQ(field_.text(), "Tap");
}

TEST_F(TextField, ThatCannotBeSelectedTakesNeitherFocusNorMouseNorKeys) {
  field_.setText("Searching");
  field_.selectAll();
  field_.setSelectable(false);
  EXPECT_FALSE(field_.hasSelectedText());
  EXPECT_TRUE(field_.isReadOnly());
  show(field_);
  QTest::mouseDClick(&field_, Qt::LeftButton, {}, {20, 11});
  EXPECT_FALSE(field_.hasSelectedText());
  EXPECT_EQ(field_.focusPolicy(), Qt::NoFocus);
  QTest::keyClicks(&field_, "x");
  EXPECT_EQ(field_.text(), "Searching");
  field_.setSelectable(true);
  QTest::mouseDClick(&field_, Qt::LeftButton, {}, {20, 11});
  EXPECT_EQ(field_.selectedText(), "Searching");
}

TEST_F(TextField, IsATextFieldForAssistivePrograms) {
  field_.setText("Tape 12");
  field_.setAccessibleName("Tape");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&field_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::EditableText);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Tape");
  EXPECT_EQ(accessible->text(QAccessible::Value), "Tape 12");
}

TEST_F(TextField, IsHighEnoughForItsSlices) {
  EXPECT_GE(field_.sizeHint().height(), 22);
}

TEST_F(TextField, PaintsItsSlicesAtTheUpperLeftWhereverTheFrameIs) {
  const QImage picture = cellPicture({10, 7, 100, 22});
  EXPECT_TRUE(isColorAt(picture, 0.5, 0.5, flat("textFieldLeft")));
  EXPECT_TRUE(isColorAt(picture, 5.5, 21.5, flat("textFieldMiddle")));
  EXPECT_TRUE(isColorAt(picture, 99.5, 0.5, flat("textFieldRight")));
  EXPECT_TRUE(isColorAt(picture, 100.5, 10, Qt::black));
  EXPECT_TRUE(isColorAt(picture, 50, 22.5, Qt::black));
}

TEST_F(TextField, NarrowerThanItsCapsPaintsTheRightOverTheLeftOne) {
  const QImage picture = cellPicture({0, 0, 8, 22});
  EXPECT_TRUE(isColorAt(picture, 2.5, 10, flat("textFieldLeft")));
  EXPECT_TRUE(isColorAt(picture, 3.5, 10, flat("textFieldRight")));
}

}  // namespace
}  // namespace zq

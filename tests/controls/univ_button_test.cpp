#include "controls/univ_button.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <cmath>
#include <memory>

#include "controls/control_paint.h"
#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::colorAt;
using test::differenceOf;
using test::isColorAt;
using test::pictureOf;

class UnivButton : public test::ControlsTest {
 protected:
  UnivButton() {
    button_.resize(100, 24);
    button_.awakeFromNib();
  }

  ZQCaptureUnivButton button_;
};

TEST_F(UnivButton, LooksAsThePlatformsUntilItAwakes) {
  ZQCaptureUnivButton plain;
  plain.resize(100, 24);
  plain.setText("Options");
  QPushButton qts("Options");
  qts.setCheckable(true);
  qts.resize(100, 24);
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
  plain.awakeFromNib();
  EXPECT_NE(pictureOf(plain), pictureOf(qts));
}

TEST_F(UnivButton, KeepsWhatTheInterfaceSetWhenItAwakes) {
  ZQCaptureUnivButton button;
  const QIcon image(QPixmap(2, 2));
  const QIcon alternate(QPixmap(3, 3));
  button.setText("Title");
  button.setAlternateTitle("Other");
  button.setEnabled(false);
  button.setIcon(image);
  button.setAlternateImage(alternate);
  button.setTag(7);
  button.awakeFromNib();
  EXPECT_EQ(button.text(), "Title");
  EXPECT_EQ(button.alternateTitle(), "Other");
  EXPECT_FALSE(button.isEnabled());
  EXPECT_EQ(button.icon().cacheKey(), image.cacheKey());
  EXPECT_EQ(button.alternateImage().cacheKey(), alternate.cacheKey());
  EXPECT_EQ(button.tag(), 7);
  EXPECT_TRUE(button.isFlat());
}

TEST_F(UnivButton, KeepsWhomAClickTellsWhenItAwakes) {
  ZQCaptureUnivButton button;
  const QSignalSpy clicks(&button, &QPushButton::clicked);
  button.awakeFromNib();
  button.click();
  EXPECT_EQ(clicks.count(), 1);
}

TEST_F(UnivButton, IsOffOnceItAwakesWhateverTheInterfaceSet) {
  ZQCaptureUnivButton button;
  button.setChecked(true);
  button.awakeFromNib();
  EXPECT_FALSE(button.isChecked());
  EXPECT_FALSE(button.state());
}

TEST_F(UnivButton, TakesItsSettingsAsProperties) {
  EXPECT_TRUE(button_.setProperty("alternateTitle", "Other"));
  EXPECT_TRUE(button_.setProperty("tag", 12));
  EXPECT_EQ(button_.alternateTitle(), "Other");
  EXPECT_EQ(button_.tag(), 12);
}

TEST_F(UnivButton, IsToldOfClicksAndDoesNotChangeByThem) {
  const QSignalSpy clicks(&button_, &QPushButton::clicked);
  show(button_);
  QTest::mouseClick(&button_, Qt::LeftButton);
  QTest::keyClick(&button_, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 2);
  EXPECT_FALSE(button_.isChecked());
  button_.setState(true);
  deliver();
  QTest::mouseClick(&button_, Qt::LeftButton);
  EXPECT_EQ(clicks.count(), 3);
  EXPECT_TRUE(button_.state());
  EXPECT_TRUE(button_.isChecked());
}

TEST_F(UnivButton, DisabledTakesNoClick) {
  const QSignalSpy clicks(&button_, &QPushButton::clicked);
  button_.setEnabled(false);
  show(button_);
  QTest::mouseClick(&button_, Qt::LeftButton);
  QTest::keyClick(&button_, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 0);
}

TEST_F(UnivButton, IsOnAtOnceForWhoAsksAndOnScreenWhenTheMainThreadIsFree) {
  onAnotherThread([this] {
    button_.setState(true);
    EXPECT_TRUE(button_.state());
  });
  EXPECT_FALSE(button_.isChecked());
  deliver();
  EXPECT_TRUE(button_.isChecked());
  onAnotherThread([this] { button_.setState(false); });
  deliver();
  EXPECT_FALSE(button_.isChecked());
}

TEST_F(UnivButton, ShowsTheLastOfManyStates) {
  const QSignalSpy toggles(&button_, &QPushButton::toggled);
  onAnotherThread([this] {
    for (const bool on : {true, false, true, false}) button_.setState(on);
  });
  deliver();
  EXPECT_FALSE(button_.isChecked());
  EXPECT_FALSE(button_.state());
  EXPECT_EQ(toggles.count(), 0);  // it never was anything else on screen
}

TEST_F(UnivButton, HasOneStateByWhateverNameItIsSet) {
  button_.setChecked(true);
  EXPECT_TRUE(button_.state());
  button_.toggle();
  EXPECT_FALSE(button_.state());
}

TEST_F(UnivButton, ThatGoesBeforeItsNewsIsNotAsked) {
  auto button = std::make_unique<ZQCaptureUnivButton>();
  onAnotherThread([&] { button->setState(true); });
  button.reset();
  deliver();
}

TEST_F(UnivButton, ShowsAThinRingWhenTheKeyboardBroughtTheFocus) {
  show(button_);
  button_.clearFocus();
  const QImage without = pictureOf(button_, 2);
  focus(button_, Qt::TabFocusReason);
  const QImage with = pictureOf(button_, 2);
  EXPECT_EQ(differenceOf(without, with), QRectF(0, 0, 100, 24));
  EXPECT_TRUE(isColorAt(with, 1.5, 12, colorAt(without, 1.5, 12)));
  const QColor ring = QColor::fromRgbF(1.0F, 0.922F, 0.549F);
  const QColor under = colorAt(without, 0.5, 12);
  const QColor mixed((ring.red() * 4 + under.red()) / 5, (ring.green() * 4 + under.green()) / 5,
                     (ring.blue() * 4 + under.blue()) / 5);
  EXPECT_TRUE(isColorAt(with, 0.5, 12, mixed));
  button_.clearFocus();
  EXPECT_EQ(pictureOf(button_, 2), without);
}

TEST_F(UnivButton, ShowsNoRingWhenTheMouseBroughtTheFocus) {
  show(button_);
  button_.clearFocus();
  const QImage without = pictureOf(button_);
  focus(button_, Qt::MouseFocusReason);
  EXPECT_EQ(pictureOf(button_), without);
}

TEST_F(UnivButton, KeepsTheRingOverAnInterruption) {
  show(button_);
  focus(button_, Qt::BacktabFocusReason);
  const QImage with = pictureOf(button_);
  QApplication::setActiveWindow(nullptr);
  EXPECT_NE(pictureOf(button_), with);
  QApplication::setActiveWindow(&button_);
  ASSERT_TRUE(button_.hasFocus());
  EXPECT_EQ(pictureOf(button_), with);
}

TEST_F(UnivButton, IsAPushButtonForAssistivePrograms) {
  button_.setText("&Options");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Options");
  EXPECT_FALSE(accessible->state().checked);
  button_.setChecked(true);
  button_.setAlternateTitle("Close");
  EXPECT_TRUE(accessible->state().checked);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Close");
  button_.setAccessibleName("Options of this pass");
  EXPECT_EQ(accessible->text(QAccessible::Name), "Options of this pass");
}

TEST_F(UnivButton, CanBePressedByAssistivePrograms) {
  const QSignalSpy clicks(&button_, &QPushButton::clicked);
  QAccessibleActionInterface* actions = QAccessible::queryAccessibleInterface(&button_)->actionInterface();
  ASSERT_NE(actions, nullptr);
  EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  EXPECT_FALSE(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(clicks.count(), 1);
  EXPECT_FALSE(button_.isChecked());
}

TEST_F(UnivButton, IsAsLargeAsItsSlicesAndTitlesNeed) {
  button_.setText("Go");
  const QSize small = button_.sizeHint();
  EXPECT_EQ(small.height(), 20);
  EXPECT_GE(small.width(), 6 + 8 + titleSize(helveticaFont(12), "Go").width());
  button_.setAlternateTitle("A much longer title");
  EXPECT_GT(button_.sizeHint().width(), small.width());
  EXPECT_EQ(button_.minimumSizeHint(), button_.sizeHint());
}

TEST_F(UnivButton, IsReachedByItsShortcut) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  auto* button = new ZQCaptureUnivButton;
  layout->addWidget(button);
  button->setText("&Options");
  button->awakeFromNib();
  const QSignalSpy presses(button, &QPushButton::pressed);  // Qt lets go of it some time later
  show(window);
  QTest::keyClick(&window, Qt::Key_O, Qt::AltModifier);
  EXPECT_EQ(presses.count(), 1);
}

TEST_F(UnivButton, ShowsARingWhenItIsTheFirstOfItsWindowToHaveTheFocus) {
  QDialog dialog;
  auto* button = new ZQCaptureUnivButton(&dialog);
  button->resize(100, 24);
  button->awakeFromNib();
  const QImage without = pictureOf(*button);
  show(dialog);
  ASSERT_TRUE(button->hasFocus());
  EXPECT_NE(pictureOf(*button), without);
}

TEST_F(UnivButton, ShowsTheRingForEveryReasonButTheMouse) {
  show(button_);
  focus(button_, Qt::MouseFocusReason);
  const QImage without = pictureOf(button_);
  for (const auto reason : {Qt::TabFocusReason, Qt::BacktabFocusReason, Qt::ShortcutFocusReason, Qt::OtherFocusReason,
                            Qt::MenuBarFocusReason}) {
    focus(button_, reason);
    EXPECT_NE(pictureOf(button_), without) << reason;
  }
}

TEST_F(UnivButton, ShowsNoRingAfterAnInterruptionThatItHadNotBefore) {
  show(button_);
  focus(button_, Qt::MouseFocusReason);
  const QImage without = pictureOf(button_);
  QApplication::setActiveWindow(nullptr);
  QApplication::setActiveWindow(&button_);
  ASSERT_TRUE(button_.hasFocus());
  EXPECT_EQ(pictureOf(button_), without);
}

TEST_F(UnivButton, HasTheStateThatIsSetWhileItsChangeIsTold) {
  QObject::connect(&button_, &QPushButton::toggled, &button_, [this](bool on) {
    if (on) button_.setChecked(false);
  });
  button_.setState(true);
  deliver();
  EXPECT_FALSE(button_.isChecked());
  EXPECT_FALSE(button_.state());
}

TEST_F(UnivButton, TitledCaptureHasRoomForItsIcon) {
  button_.setText("Other");
  const int other =
      button_.sizeHint().width() - static_cast<int>(std::ceil(titleSize(helveticaFont(12), "Other").width()));
  button_.setText("&Capture");
  button_.resize(button_.sizeHint());
  const qreal width = titleSize(helveticaFont(12), "Capture").width();
  const qreal left = button_.width() / 2.0 - width / 2 - 15;
  EXPECT_GE(left, 6);
  EXPECT_LE(left + width, button_.width() - 18);
  EXPECT_NEAR(button_.width(), other + width + 30, 2);
  button_.setText("Stop the capture now");
  const int without = button_.sizeHint().width();
  button_.setAlternateTitle("Capture");
  EXPECT_EQ(button_.sizeHint().width(), without + 30);
}

TEST_F(UnivButton, CanBeOnForAssistiveProgramsOnlyWhereThatIsSeen) {
  button_.setText("Options");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button_);
  EXPECT_FALSE(accessible->state().checkable);
  button_.setChecked(true);
  EXPECT_TRUE(accessible->state().checkable);
  button_.setChecked(false);
  button_.setAlternateTitle("Close");
  EXPECT_TRUE(accessible->state().checkable);
}

TEST_F(UnivButton, TellsAssistiveProgramsItsShortcutAndNothingTwice) {
  button_.setText("&Options");
  button_.setToolTip("Options");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button_);
  EXPECT_EQ(accessible->text(QAccessible::Accelerator), button_.shortcut().toString(QKeySequence::NativeText));
  EXPECT_FALSE(accessible->text(QAccessible::Accelerator).isEmpty());
  EXPECT_EQ(accessible->text(QAccessible::Description), "");
  button_.setToolTip("Opens the options");
  EXPECT_EQ(accessible->text(QAccessible::Description), "Opens the options");
}

TEST_F(UnivButton, TellsOfEachOtherTitleThatItShows) {
  button_.setText("Capture");
  const auto told = [this](const auto& change) {
    const QSignalSpy titles(&button_, &ZQCaptureUnivButton::shownTitleChanged);
    change();
    return titles.count();
  };
  EXPECT_EQ(told([&] { button_.setChecked(true); }), 0);
  EXPECT_EQ(told([&] { button_.setAlternateTitle("Stop"); }), 1);
  EXPECT_EQ(told([&] { button_.setAlternateTitle("Stop"); }), 0);
  EXPECT_EQ(told([&] { button_.setChecked(false); }), 1);
  EXPECT_EQ(told([&] { button_.setAlternateTitle("End"); }), 0);
  EXPECT_EQ(told([&] {
              button_.setState(true);
              deliver();
            }),
            1);
}

}  // namespace
}  // namespace zq

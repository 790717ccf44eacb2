#include "controls/control_panel_button.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QEnterEvent>
#include <QSignalSpy>
#include <QTest>
#include <string>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::differenceOf;
using test::flat;
using test::isColorAt;
using test::pictureOf;

QColor panel(const std::string& name) {
  return flat(QString::fromStdString("controlPanel" + name));
}

class ControlPanelButton : public test::ControlsTest {
 protected:
  static void prepare(ZQAccurateControlPanelButton& button, int tag) {
    button.setTag(tag);
    button.awakeFromNib();
    button.resize(button.sizeHint());
  }

  static void moveIn(QWidget& button) {
    QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&button, &enter);
  }
};

TEST_F(ControlPanelButton, KeepsTheNamesThatTheInterfaceGives) {
  ZQAccurateControlPanelButton button;
  button.setTag(11);
  button.setAccessibleName("Play the tape");
  button.setToolTip("Plays the tape");
  button.awakeFromNib();
  EXPECT_EQ(button.accessibleName(), "Play the tape");
  EXPECT_EQ(button.toolTip(), "Plays the tape");
}

TEST_F(ControlPanelButton, LooksAsThePlatformsUntilItAwakes) {
  ZQAccurateControlPanelButton plain;
  plain.setTag(11);
  QPushButton qts;
  qts.setCheckable(true);
  plain.resize(60, 48);
  qts.resize(60, 48);
  moveIn(plain);
  moveIn(qts);
  EXPECT_EQ(pictureOf(plain), pictureOf(qts));
}

TEST_F(ControlPanelButton, KeepsStateAndWhomAClickTellsWhenItAwakes) {
  ZQAccurateControlPanelButton button;
  const QSignalSpy clicks(&button, &QPushButton::clicked);
  button.setChecked(true);
  button.setEnabled(false);
  button.awakeFromNib();
  EXPECT_TRUE(button.isChecked());
  EXPECT_TRUE(button.state());
  EXPECT_FALSE(button.isEnabled());
  EXPECT_TRUE(button.isFlat());
  button.setEnabled(true);
  button.click();
  EXPECT_EQ(clicks.count(), 1);
  EXPECT_TRUE(button.isChecked());
}

TEST_F(ControlPanelButton, LosesTitlesAndImagesButNotTheShortcutWhenItAwakes) {
  ZQAccurateControlPanelButton button;
  button.setTag(11);
  button.setText("&Go");
  button.setAlternateTitle("Other");
  button.setIcon(QIcon(QPixmap(2, 2)));
  button.setAlternateImage(QIcon(QPixmap(2, 2)));
  button.awakeFromNib();
  EXPECT_EQ(button.text(), "");
  EXPECT_EQ(button.alternateTitle(), "");
  EXPECT_TRUE(button.icon().isNull());
  EXPECT_TRUE(button.alternateImage().isNull());
  EXPECT_EQ(button.shortcut(), QKeySequence("Alt+G"));
}

TEST_F(ControlPanelButton, IsLitByTheControllersFromAnyThread) {
  ZQAccurateControlPanelButton button;
  prepare(button, 12);
  outlets::Button& outlet = button;
  onAnotherThread([&] { outlet.setState(true); });
  deliver();
  EXPECT_TRUE(isColorAt(pictureOf(button), 1, 24, panel("BGClicked")));
  onAnotherThread([&] { outlet.setState(false); });
  deliver();
  EXPECT_TRUE(isColorAt(pictureOf(button), 1, 24, panel("BG")));
}

TEST_F(ControlPanelButton, IsOperatedByMouseAndKeyAndShowsThePress) {
  ZQAccurateControlPanelButton stop;
  prepare(stop, 13);
  const QSignalSpy clicks(&stop, &QPushButton::clicked);
  show(stop);
  stop.clearFocus();
  QTest::mousePress(&stop, Qt::LeftButton);
  EXPECT_TRUE(isColorAt(pictureOf(stop), 1, 10, panel("BGClicked")));
  QTest::mouseRelease(&stop, Qt::LeftButton);
  EXPECT_TRUE(isColorAt(pictureOf(stop), 1, 10, panel("BG")));
  QTest::keyPress(&stop, Qt::Key_Space);
  EXPECT_TRUE(isColorAt(pictureOf(stop), 1, 10, panel("BGClicked")));
  QTest::keyRelease(&stop, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 2);
}

TEST_F(ControlPanelButton, ShowsARingForTheKeyboard) {
  ZQAccurateControlPanelButton play;
  prepare(play, 11);
  show(play);
  play.clearFocus();
  const QImage without = pictureOf(play);
  focus(play, Qt::TabFocusReason);
  EXPECT_EQ(differenceOf(without, pictureOf(play)), QRectF(0, 0, play.width(), play.height()));
}

TEST_F(ControlPanelButton, IsRenamedWithItsTagWhereItNamedItself) {
  ZQAccurateControlPanelButton button;
  button.setTag(11);
  button.setToolTip("Of the interface");
  EXPECT_EQ(button.accessibleName(), "");
  button.awakeFromNib();
  button.setTag(13);
  EXPECT_EQ(button.accessibleName(), "Stop");
  EXPECT_EQ(button.toolTip(), "Of the interface");
  button.setAccessibleName("Halt");
  button.setTag(12);
  EXPECT_EQ(button.accessibleName(), "Halt");
}

TEST_F(ControlPanelButton, CanBeOnForAssistiveProgramsWhereItsStateIsSeen) {
  ZQAccurateControlPanelButton button;
  prepare(button, 10);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button);
  ASSERT_NE(accessible, nullptr);
  for (const int tag : {10, 11, 12, 14}) {
    button.setTag(tag);
    EXPECT_TRUE(accessible->state().checkable) << tag;
  }
  for (const int tag : {13, 20, 24, 30, 34, 0}) {
    button.setTag(tag);
    EXPECT_FALSE(accessible->state().checkable) << tag;
  }
}

}  // namespace
}  // namespace zq

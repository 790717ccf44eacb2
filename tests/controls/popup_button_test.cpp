#include "controls/popup_button.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>
#include <string>

#include "controls/control_paint.h"
#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::differenceOf;
using test::flat;
using test::hasColor;
using test::isColorAt;
using test::pictureOf;

class PopupButton : public test::ControlsTest {
 protected:
  PopupButton() {
    popUp_.resize(120, 22);
    popUp_.awakeFromNib();
  }

  void addThree() {
    for (const char* title : {"One", "Two", "Three"}) outlet_.addItem(title, std::string("for ") + title);
  }
  QRectF titleBox() {
    const QImage with = pictureOf(popUp_, 2);
    const int selected = popUp_.currentIndex();
    popUp_.setCurrentIndex(-1);
    const QRectF box = differenceOf(with, pictureOf(popUp_, 2));
    popUp_.setCurrentIndex(selected);
    return box;
  }

  ZQAccuratePopupButton popUp_;
  outlets::PopUp& outlet_ = popUp_;
};

TEST_F(PopupButton, PaintsThreeSlicesOverItsWholeHeight) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(popUp_, scale);
    for (const qreal y : {0.5, 11.0, 21.5}) {
      EXPECT_TRUE(isColorAt(picture, 0.5, y, flat("popupButtonLeft")));
      EXPECT_TRUE(isColorAt(picture, 6.5, y, flat("popupButtonLeft")));
      EXPECT_TRUE(isColorAt(picture, 7.5, y, flat("popupButtonMiddle")));
      EXPECT_TRUE(isColorAt(picture, 104.5, y, flat("popupButtonMiddle")));
      EXPECT_TRUE(isColorAt(picture, 105.5, y, flat("popupButtonRight")));
      EXPECT_TRUE(isColorAt(picture, 119.5, y, flat("popupButtonRight")));
    }
  }
}

TEST_F(PopupButton, PaintsTheSelectedTitleInWhite) {
  addThree();
  popUp_.setCurrentIndex(2);
  const QRectF box = titleBox();
  EXPECT_NEAR(box.left(), 7, 2);
  EXPECT_LE(box.bottom(), 17);
  EXPECT_NEAR(box.width(), titleSize(helveticaFont(12), "Three").width(), 3);
  EXPECT_TRUE(hasColor(pictureOf(popUp_, 2), {7, 0, 98, 17}, Qt::white));
}

TEST_F(PopupButton, WithTagElevenPaintsItsTitleInGrey) {
  addThree();
  EXPECT_TRUE(popUp_.setProperty("tag", 11));
  EXPECT_FALSE(hasColor(pictureOf(popUp_, 2), {7, 0, 98, 17}, Qt::white));
  EXPECT_TRUE(hasColor(pictureOf(popUp_, 2), {7, 0, 98, 17}, QColor(128, 128, 128), 12));
  EXPECT_NEAR(titleBox().width(), titleSize(helveticaOrBoldSystemFont(12), "One").width(), 3);
}

TEST_F(PopupButton, UsesTheSystemFontWhereHelveticaIsMissing) {
  EXPECT_EQ(helveticaFont(12).pixelSize(), 12);
  if (QFontDatabase::hasFamily("Helvetica")) {
    EXPECT_EQ(helveticaFont(12).family(), "Helvetica");
    EXPECT_FALSE(helveticaOrBoldSystemFont(12).bold());
  } else {
    EXPECT_EQ(helveticaFont(12), systemFont(12));
    EXPECT_TRUE(helveticaOrBoldSystemFont(12).bold());
  }
}

TEST_F(PopupButton, PaintsTheSelectedItemsImageAndItsTitleBehind) {
  QImage half(16, 16, QImage::Format_RGB32);
  half.fill(Qt::green);
  for (int x = 0; x < 16; ++x) {
    for (int y = 0; y < 8; ++y) half.setPixelColor(x, y, Qt::red);
  }
  popUp_.addItem(QIcon(QPixmap::fromImage(half)), "Tape");
  popUp_.resize(120, 26);
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    // {7, 2, 16, 26 - 10}, upright.
    const QImage picture = pictureOf(popUp_, scale);
    EXPECT_TRUE(isColorAt(picture, 7.5, 2.5, Qt::red));
    EXPECT_TRUE(isColorAt(picture, 22.5, 2.5, Qt::red));
    EXPECT_TRUE(isColorAt(picture, 15, 17.5, Qt::green));
    EXPECT_TRUE(isColorAt(picture, 15, 18.5, flat("popupButtonMiddle")));
    EXPECT_TRUE(isColorAt(picture, 23.5, 5, flat("popupButtonMiddle")));
  }
  const QImage with = pictureOf(popUp_, 2);
  popUp_.setItemText(0, "");
  EXPECT_NEAR(differenceOf(with, pictureOf(popUp_, 2)).left(), 7 + 25, 2);
}

TEST_F(PopupButton, CutsALongTitleAtItsTail) {
  popUp_.addItem("A title that is far longer than the pop-up is wide");
  const QRectF box = titleBox();
  EXPECT_LE(box.right(), 105);
  EXPECT_GT(box.right(), 90);
}

TEST_F(PopupButton, TooNarrowForATitlePaintsNone) {
  addThree();
  popUp_.resize(20, 22);
  EXPECT_FALSE(hasColor(pictureOf(popUp_), {0, 0, 20, 22}, Qt::white));
}

TEST_F(PopupButton, KnowsWhatItsItemsStandFor) {
  addThree();
  EXPECT_EQ(outlet_.itemCount(), 3);
  EXPECT_EQ(outlet_.itemTitleAtIndex(1), "Two");
  EXPECT_EQ(std::any_cast<std::string>(outlet_.representedObjectAtIndex(1)), "for Two");
  EXPECT_EQ(outlet_.itemTitleAtIndex(3), "");
  EXPECT_EQ(outlet_.itemTitleAtIndex(-1), "");
  EXPECT_FALSE(outlet_.representedObjectAtIndex(3).has_value());
  EXPECT_FALSE(outlet_.representedObjectAtIndex(-1).has_value());
}

TEST_F(PopupButton, KeepsAnObjectWithItsItem) {
  addThree();
  popUp_.removeItem(0);
  EXPECT_EQ(std::any_cast<std::string>(outlet_.representedObjectAtIndex(0)), "for Two");
  popUp_.insertItem(0, "Of the interface file", 4);
  EXPECT_FALSE(outlet_.representedObjectAtIndex(0).has_value());
  EXPECT_EQ(std::any_cast<std::string>(outlet_.representedObjectAtIndex(1)), "for Two");
}

TEST_F(PopupButton, SelectsTheFirstItemOfAnEmptyOne) {
  EXPECT_EQ(outlet_.indexOfSelectedItem(), -1);
  addThree();
  EXPECT_EQ(outlet_.indexOfSelectedItem(), 0);
  outlet_.removeAllItems();
  EXPECT_EQ(outlet_.itemCount(), 0);
  EXPECT_EQ(outlet_.indexOfSelectedItem(), -1);
  popUp_.setPlaceholderText("Choose");
  outlet_.addItem("Again", {});
  EXPECT_EQ(outlet_.indexOfSelectedItem(), 0);
}

TEST_F(PopupButton, SelectsNoneOutOfRange) {
  addThree();
  outlet_.selectItemAtIndex(2);
  EXPECT_EQ(outlet_.indexOfSelectedItem(), 2);
  outlet_.selectItemAtIndex(3);
  EXPECT_EQ(outlet_.indexOfSelectedItem(), -1);
  outlet_.selectItemAtIndex(1);
  outlet_.selectItemAtIndex(-5);
  EXPECT_EQ(outlet_.indexOfSelectedItem(), -1);
}

TEST_F(PopupButton, SelectsTheItemThatANotificationNames) {
  addThree();
  popUp_.changeMenuItem({{"NSMenuItemIndex", 2}});
  EXPECT_EQ(popUp_.currentIndex(), 2);
  popUp_.changeMenuItem(1);
  EXPECT_EQ(popUp_.currentIndex(), 1);
  popUp_.changeMenuItem(QVariantMap{});
  EXPECT_EQ(popUp_.currentIndex(), 1);
  popUp_.changeMenuItem({{"NSMenuItemIndex", "none"}});
  EXPECT_EQ(popUp_.currentIndex(), 1);
}

TEST_F(PopupButton, SelectsAnItemThatIsChanged) {
  addThree();
  popUp_.setItemText(1, "Changed");
  EXPECT_EQ(popUp_.currentIndex(), 1);
  outlet_.addItem("Four", 4);  // one that comes is not one that changes
  EXPECT_EQ(popUp_.currentIndex(), 1);
}

TEST_F(PopupButton, DoesNotMindItsItemsBeforeItAwakes) {
  ZQAccuratePopupButton popUp;
  popUp.addItems({"One", "Two"});
  popUp.setItemText(1, "Changed");
  EXPECT_EQ(popUp.currentIndex(), 0);
}

TEST_F(PopupButton, IsOperatedByKeys) {
  addThree();
  const QSignalSpy choices(&popUp_, &QComboBox::activated);
  show(popUp_);
  QTest::keyClick(&popUp_, Qt::Key_Down);
  EXPECT_EQ(popUp_.currentIndex(), 1);
  QTest::keyClick(&popUp_, Qt::Key_End);
  EXPECT_EQ(popUp_.currentIndex(), 2);
  QTest::keyClicks(&popUp_, "o");
  EXPECT_EQ(popUp_.currentIndex(), 0);
  EXPECT_EQ(choices.count(), 3);
}

TEST_F(PopupButton, OpensItsMenuByTheMouse) {
  addThree();
  show(popUp_);
  QTest::mousePress(&popUp_, Qt::LeftButton, {}, {5, 10});
  EXPECT_TRUE(popUp_.view()->isVisible());
  popUp_.hidePopup();
}

TEST_F(PopupButton, ShowsARingForTheKeyboardOnly) {
  show(popUp_);
  focus(popUp_, Qt::MouseFocusReason);
  const QImage without = pictureOf(popUp_);
  focus(popUp_, Qt::TabFocusReason);
  EXPECT_EQ(differenceOf(without, pictureOf(popUp_)), QRectF(0, 0, 120, 22));
}

TEST_F(PopupButton, IsAComboBoxForAssistivePrograms) {
  addThree();
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&popUp_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::ComboBox);
  EXPECT_EQ(accessible->text(QAccessible::Value), "One");
}

TEST_F(PopupButton, IsAsWideAsItsWidestItemNeeds) {
  addThree();
  EXPECT_GE(popUp_.sizeHint().width(), 22 + titleSize(helveticaFont(12), "Three").width());
  EXPECT_EQ(popUp_.sizeHint().height(), 20);
  popUp_.resize(popUp_.sizeHint());
  popUp_.setCurrentIndex(2);
  EXPECT_NEAR(titleBox().width(), titleSize(helveticaFont(12), "Three").width(), 3);
  EXPECT_TRUE(popUp_.setProperty("alternateTitle", "Other"));
  EXPECT_EQ(popUp_.alternateTitle(), "Other");
}

TEST_F(PopupButton, IsNamedWithItsChoiceForAssistivePrograms) {
  popUp_.addItems({"None", "Custom..."});
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&popUp_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "None");
  popUp_.setAccessibleName("Compression");
  EXPECT_EQ(accessible->text(QAccessible::Name), "Compression: None");
  EXPECT_EQ(accessible->text(QAccessible::Value), "None");
  popUp_.setCurrentIndex(-1);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Compression");
}

TEST_F(PopupButton, HasItsMenuAsItsOnlyChildForAssistivePrograms) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&popUp_);
  ASSERT_NE(accessible, nullptr);
  ASSERT_EQ(accessible->childCount(), 1);
  ASSERT_NE(accessible->child(0), nullptr);
  EXPECT_EQ(accessible->child(0)->object(), popUp_.view());
  EXPECT_EQ(accessible->indexOfChild(accessible->child(0)), 0);
  EXPECT_EQ(accessible->child(1), nullptr);
}

TEST_F(PopupButton, IsOpenedAndClosedByAssistivePrograms) {
  addThree();
  show(popUp_);
  QAccessibleActionInterface* actions = QAccessible::queryAccessibleInterface(&popUp_)->actionInterface();
  ASSERT_NE(actions, nullptr);
  for (const QString& action :
       {QAccessibleActionInterface::showMenuAction(), QAccessibleActionInterface::pressAction()}) {
    EXPECT_TRUE(actions->actionNames().contains(action));
    actions->doAction(action);
    EXPECT_TRUE(popUp_.view()->isVisible());
    actions->doAction(action);
    EXPECT_FALSE(popUp_.view()->isVisible());
  }
  popUp_.setEnabled(false);
  EXPECT_FALSE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(popUp_.view()->isVisible());
}

TEST_F(PopupButton, DoesNotSelectAnItemWhoseTextAndImageStay) {
  addThree();
  popUp_.setItemData(2, "tip", Qt::ToolTipRole);
  popUp_.setItemData(2, 5, Qt::UserRole);
  EXPECT_EQ(popUp_.currentIndex(), 0);
  emit popUp_.model()->dataChanged({}, {});
  EXPECT_EQ(popUp_.currentIndex(), 0);
  popUp_.setItemIcon(2, QIcon(QPixmap(4, 4)));
  EXPECT_EQ(popUp_.currentIndex(), 2);
  const QModelIndex second = popUp_.model()->index(1, 0);
  emit popUp_.model()->dataChanged(second, second);  // anything may have changed
  EXPECT_EQ(popUp_.currentIndex(), 1);
}

TEST_F(PopupButton, TellsAllOfATitleThatIsCutInATip) {
  const auto tip = [this] {
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, {10, 10}, popUp_.mapToGlobal(QPoint(10, 10)));
    QApplication::sendEvent(&popUp_, &event);
    const QString text = QToolTip::isVisible() ? QToolTip::text() : QString();
    QToolTip::hideText();
    return text;
  };
  popUp_.addItems({"A title that is far longer than the pop-up is wide", "Short"});
  show(popUp_);
  EXPECT_EQ(tip(), "A title that is far longer than the pop-up is wide");
  popUp_.setToolTip("Compression of the movies");
  EXPECT_EQ(tip(), "Compression of the movies");
  popUp_.setToolTip({});
  popUp_.setCurrentIndex(1);
  deliver();
  EXPECT_NE(tip(), "Short");
}

TEST_F(PopupButton, GrowsWithItemsThatComeOnceItIsOnScreen) {
  QWidget window;
  auto* layout = new QHBoxLayout(&window);
  auto* popUp = new ZQAccuratePopupButton;
  layout->addWidget(popUp);
  layout->addStretch();
  window.resize(800, 60);
  popUp->addItems({"One"});
  popUp->awakeFromNib();
  show(window);
  const int before = popUp->width();
  popUp->addItems({"One that is a good deal longer"});
  deliver();
  EXPECT_GT(popUp->width(), before);
  EXPECT_EQ(popUp->width(), popUp->sizeHint().width());
}

TEST_F(PopupButton, WithoutTheFocusIsNotChangedByTheWheel) {
  QWidget window;
  auto* layout = new QHBoxLayout(&window);
  auto* other = new QLineEdit;
  auto* popUp = new ZQAccuratePopupButton;
  layout->addWidget(other);
  layout->addWidget(popUp);
  popUp->addItems({"One", "Two", "Three"});
  popUp->awakeFromNib();
  show(window);
  focus(*other, Qt::TabFocusReason);
  const auto turn = [popUp] {
    QWheelEvent wheel({10, 10}, popUp->mapToGlobal(QPointF(10, 10)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(popUp, &wheel);
    return wheel.isAccepted();
  };
  EXPECT_FALSE(turn());
  EXPECT_EQ(popUp->currentIndex(), 0);
  EXPECT_TRUE(other->hasFocus());
  focus(*popUp, Qt::TabFocusReason);
  EXPECT_TRUE(turn());
  EXPECT_EQ(popUp->currentIndex(), 1);
}

TEST_F(PopupButton, PaintsItsImageWithAllPixelsOfAFinePicture) {
  QImage stripes(32, 32, QImage::Format_RGB32);
  for (int x = 0; x < 32; ++x) {
    for (int y = 0; y < 32; ++y) stripes.setPixelColor(x, y, x % 2 == 0 ? Qt::red : Qt::green);
  }
  popUp_.addItem(QIcon(QPixmap::fromImage(stripes)), "Tape");
  popUp_.resize(120, 26);
  const QImage picture = pictureOf(popUp_, 2);
  EXPECT_TRUE(isColorAt(picture, 15, 10, Qt::red));
  EXPECT_TRUE(isColorAt(picture, 15.5, 10, Qt::green));
}

TEST_F(PopupButton, TooNarrowForItsCapsPaintsTheLeftOverTheRightOne) {
  popUp_.resize(15, 22);
  const QImage picture = pictureOf(popUp_);
  EXPECT_TRUE(isColorAt(picture, 3, 11, flat("popupButtonLeft")));
  EXPECT_TRUE(isColorAt(picture, 10, 11, flat("popupButtonRight")));
}

TEST_F(PopupButton, LooksTheSameWhenDisabled) {
  addThree();
  const QImage enabled = pictureOf(popUp_, 2);
  popUp_.setEnabled(false);
  EXPECT_EQ(pictureOf(popUp_, 2), enabled);
}

}  // namespace
}  // namespace zq

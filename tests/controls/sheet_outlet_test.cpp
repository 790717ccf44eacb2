#include "controls/sheet_outlet.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <memory>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

class SheetOutletTest : public test::ControlsTest {
 protected:
  SheetOutletTest() : dialog_(std::make_unique<QDialog>(&window_)), sheet_(*dialog_) { show(window_); }

  void begin() {
    sheet_.beginSheet([this] {
      ++ended_;
      wasOnScreen_ = dialog_ && dialog_->isVisible();
    });
  }

  QWidget window_;
  std::unique_ptr<QDialog> dialog_;
  SheetOutlet sheet_;
  int ended_ = 0;
  bool wasOnScreen_ = false;
};

TEST_F(SheetOutletTest, ShowsItsDialogForItsWindowWithoutWaiting) {
  begin();
  EXPECT_TRUE(dialog_->isVisible());
  EXPECT_EQ(dialog_->windowModality(), Qt::WindowModal);
  EXPECT_EQ(ended_, 0);
}

TEST_F(SheetOutletTest, EndsOnceWhileStillOnScreen) {
  begin();
  sheet_.endSheet();
  EXPECT_EQ(ended_, 1);
  EXPECT_TRUE(wasOnScreen_);
  EXPECT_TRUE(dialog_->isVisible());
  sheet_.endSheet();
  EXPECT_EQ(ended_, 1);
  sheet_.orderOut();
  EXPECT_FALSE(dialog_->isVisible());
  EXPECT_EQ(ended_, 1);
}

TEST_F(SheetOutletTest, CanBeTakenOffTheScreenWhenItEnds) {
  sheet_.beginSheet([this] {
    ++ended_;
    sheet_.orderOut();
  });
  sheet_.endSheet();
  EXPECT_FALSE(dialog_->isVisible());
  EXPECT_EQ(ended_, 1);
  begin();
  EXPECT_TRUE(dialog_->isVisible());
}

TEST_F(SheetOutletTest, EndsWhenTheUserClosesIt) {
  begin();
  EXPECT_FALSE(dialog_->close());
  EXPECT_EQ(ended_, 1);
  EXPECT_TRUE(wasOnScreen_);
}

TEST_F(SheetOutletTest, EndsByTheEscapeKey) {
  begin();
  QTest::keyClick(dialog_.get(), Qt::Key_Escape);
  EXPECT_EQ(ended_, 1);
  EXPECT_TRUE(wasOnScreen_);
}

TEST_F(SheetOutletTest, EndsByTheDialogsOwnButtons) {
  for (const bool accepted : {true, false}) {
    begin();
    if (accepted) {
      dialog_->accept();
    } else {
      dialog_->reject();
    }
  }
  EXPECT_EQ(ended_, 2);
}

TEST_F(SheetOutletTest, LetsADialogThatNobodyBeganCloseAsEver) {
  dialog_->show();
  EXPECT_TRUE(dialog_->close());
  EXPECT_FALSE(dialog_->isVisible());
  EXPECT_EQ(ended_, 0);
  sheet_.endSheet();
  sheet_.orderOut();
}

TEST_F(SheetOutletTest, OutlivesItsDialog) {
  begin();
  dialog_.reset();
  sheet_.endSheet();
  EXPECT_EQ(ended_, 1);
  sheet_.orderOut();
  begin();
  sheet_.endSheet();
  EXPECT_EQ(ended_, 2);
}

TEST_F(SheetOutletTest, EndsTheOneBeforeWhenItBeginsAgain) {
  int first = 0;
  sheet_.beginSheet([&] { ++first; });
  begin();
  EXPECT_EQ(first, 1);
  EXPECT_EQ(ended_, 0);
  EXPECT_TRUE(dialog_->isVisible());
  sheet_.endSheet();
  EXPECT_EQ(first, 1);
  EXPECT_EQ(ended_, 1);
}

}  // namespace
}  // namespace zq

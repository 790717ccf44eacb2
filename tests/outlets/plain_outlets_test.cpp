#include "outlets/plain_outlets.h"

#include <gtest/gtest.h>

#include "backends/time/real_runtime.h"

namespace zq::outlets {
namespace {

TEST(PlainOverlayTest, IsShownAndEmptyAtFirst) {
  backend::RealRuntime runtime;
  const PlainOverlay overlay(runtime);
  EXPECT_EQ(overlay.timecode(), nullTimecode);
  EXPECT_EQ(overlay.date(), nullptr);
  EXPECT_FALSE(overlay.isHidden());
}

TEST(PlainOverlayTest, RemembersWhatItWasTold) {
  backend::RealRuntime runtime;
  PlainOverlay overlay(runtime);
  const SMPTETime timecode{.mType = 1, .mHours = 1, .mMinutes = 2, .mSeconds = 3, .mFrames = 4};
  const DateValue date = std::make_shared<const CalendarDate>(2004, 7, 15, 13, 30, 45);
  overlay.setTimecode(timecode);
  overlay.setDate(date);
  overlay.setHidden(true);
  EXPECT_EQ(overlay.timecode(), timecode);
  EXPECT_EQ(overlay.date(), date);
  EXPECT_TRUE(overlay.isHidden());
}

TEST(PlainOverlayTest, MayBeReadWhileAnotherThreadWrites) {
  constexpr std::int16_t kFrames = 1000;
  backend::RealRuntime runtime;
  PlainOverlay overlay(runtime);
  const auto delivery = runtime.startThread("delivery", [&] {
    for (std::int16_t i = 1; i <= kFrames; ++i) {
      overlay.setTimecode(SMPTETime{.mSeconds = i, .mFrames = i});
      overlay.setDate(std::make_shared<const CalendarDate>(2004, 7, 15, 13, 30, 45));
    }
  });
  SMPTETime timecode;
  while (timecode.mFrames < kFrames) {
    timecode = overlay.timecode();
    EXPECT_EQ(timecode.mSeconds, timecode.mFrames);
    static_cast<void>(overlay.date());
  }
  delivery->join();
}

TEST(PlainPopUpTest, HasNoItemAndNoSelectionAtFirst) {
  const PlainPopUp popUp;
  EXPECT_EQ(popUp.itemCount(), 0);
  EXPECT_EQ(popUp.indexOfSelectedItem(), -1);
}

class PopUpOfThreeTest : public testing::Test {
 protected:
  PopUpOfThreeTest() {
    popUp_.addItem("none", std::any());
    popUp_.addItem("DV", std::string("dvc "));
    popUp_.addItem("seven", 7);
  }

  PlainPopUp popUp_;
};

TEST_F(PopUpOfThreeTest, HoldsTitlesAndRepresentedObjects) {
  EXPECT_EQ(popUp_.itemCount(), 3);
  EXPECT_EQ(popUp_.itemTitleAtIndex(1), "DV");
  EXPECT_FALSE(popUp_.representedObjectAtIndex(0).has_value());
  EXPECT_EQ(std::any_cast<std::string>(popUp_.representedObjectAtIndex(1)), "dvc ");
  EXPECT_EQ(std::any_cast<int>(popUp_.representedObjectAtIndex(2)), 7);
}

TEST_F(PopUpOfThreeTest, HasNothingOutOfRange) {
  for (const int index : {-1, 3}) {
    EXPECT_EQ(popUp_.itemTitleAtIndex(index), "");
    EXPECT_FALSE(popUp_.representedObjectAtIndex(index).has_value());
  }
}

TEST_F(PopUpOfThreeTest, SelectsTheFirstItemOfAll) {
  EXPECT_EQ(popUp_.indexOfSelectedItem(), 0);
}

TEST_F(PopUpOfThreeTest, SelectsAnItem) {
  popUp_.selectItemAtIndex(2);
  EXPECT_EQ(popUp_.indexOfSelectedItem(), 2);
}

TEST_F(PopUpOfThreeTest, SelectingOutOfRangeSelectsNone) {
  for (const int index : {-1, 3}) {
    popUp_.selectItemAtIndex(1);
    popUp_.selectItemAtIndex(index);
    EXPECT_EQ(popUp_.indexOfSelectedItem(), -1);
  }
}

TEST_F(PopUpOfThreeTest, AnAddedItemLeavesTheSelectionAlone) {
  popUp_.selectItemAtIndex(-1);
  popUp_.addItem("eight", 8);
  EXPECT_EQ(popUp_.indexOfSelectedItem(), -1);
}

TEST_F(PopUpOfThreeTest, RemovingAllItemsSelectsNone) {
  popUp_.removeAllItems();
  EXPECT_EQ(popUp_.itemCount(), 0);
  EXPECT_EQ(popUp_.indexOfSelectedItem(), -1);
}

TEST(PlainButtonTest, IsOffUntilSetOn) {
  PlainButton button;
  EXPECT_FALSE(button.state());
  button.setState(true);
  EXPECT_TRUE(button.state());
}

TEST(PlainPanelTest, IsHiddenUntilShown) {
  PlainPanel panel;
  EXPECT_FALSE(panel.isShown());
  panel.setShown(true);
  EXPECT_TRUE(panel.isShown());
}

}  // namespace
}  // namespace zq::outlets

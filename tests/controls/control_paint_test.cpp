#include "controls/control_paint.h"

#include <gtest/gtest.h>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

using ControlPaint = test::ControlsTest;

TEST_F(ControlPaint, ReadsATitleWithoutTheMarkOfItsShortcut) {
  EXPECT_EQ(withoutMnemonic("&Stop"), "Stop");
  EXPECT_EQ(withoutMnemonic("S&top"), "Stop");
  EXPECT_EQ(withoutMnemonic("Up && down"), "Up & down");
  EXPECT_EQ(withoutMnemonic("Stop&"), "Stop");
  EXPECT_EQ(withoutMnemonic("&"), "");
  EXPECT_EQ(withoutMnemonic(""), "");
}

TEST_F(ControlPaint, GivesAMarkNoRoom) {
  EXPECT_EQ(titleSize(systemFont(12), "&Stop"), titleSize(systemFont(12), "Stop"));
}

TEST_F(ControlPaint, TakesALevelOutOfRangeAsTheNearerEnd) {
  EXPECT_EQ(deviceWhite(1.0, 218), QColor::fromRgbF(1, 1, 1, 1));
  EXPECT_EQ(deviceWhite(-1, -3), QColor::fromRgbF(0, 0, 0, 0));
  EXPECT_EQ(grey().red(), 128);
}

}  // namespace
}  // namespace zq

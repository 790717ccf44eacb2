#include "controls/sharing_element.h"

#include <gtest/gtest.h>

#include "controls/control_paint.h"
#include "controls/controls_fixture.h"

namespace zq {
namespace {

using SharingElement = test::ControlsTest;

TEST_F(SharingElement, IsOpaqueWhiteForAnAlphaFarOutOfRange) {
  const auto text = ZQAccurateSharingElement::sharingAttributedStringWithString("Tape 12");
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(text->text, "Tape 12");
  EXPECT_EQ(text->font, helveticaFont(10));
  EXPECT_EQ(text->font.pixelSize(), 10);
  EXPECT_EQ(text->color, QColor::fromRgbF(1, 1, 1, 1));
}

TEST_F(SharingElement, IsNothingForNoString) {
  EXPECT_FALSE(ZQAccurateSharingElement::sharingAttributedStringWithString({}).has_value());
  EXPECT_TRUE(ZQAccurateSharingElement::sharingAttributedStringWithString("").has_value());
}

}  // namespace
}  // namespace zq

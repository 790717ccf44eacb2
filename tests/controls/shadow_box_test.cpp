#include "controls/shadow_box.h"

#include <gtest/gtest.h>

#include <QAccessible>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::flat;
using test::isColorAt;
using test::pictureOf;

using ShadowBox = test::ControlsTest;

TEST_F(ShadowBox, PaintsItsPictureIntoItsBounds) {
  ZQAccurateShadowBox box;
  box.resize(60, 40);
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(box, scale);
    EXPECT_TRUE(isColorAt(picture, 0.5, 0.5, flat("univBoxShadow")));
    EXPECT_TRUE(isColorAt(picture, 59.5, 39.5, flat("univBoxShadow")));
  }
}

TEST_F(ShadowBox, TellsItsTitleWithoutPaintingIt) {
  ZQAccurateShadowBox box;
  box.resize(60, 40);
  const QImage without = pictureOf(box);
  box.setTitle("Folder");
  EXPECT_EQ(pictureOf(box), without);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&box);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Grouping);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Folder");
}

}  // namespace
}  // namespace zq

#include "controls/separator_barre.h"

#include <gtest/gtest.h>

#include <QAccessible>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::isColorAt;
using test::pictureOf;

class SeparatorBarre : public test::ControlsTest {
 protected:
  // Red on the left, green on the right.
  SeparatorBarre() {
    QImage image(20, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (int x = 10; x < 20; ++x) {
      for (int y = 0; y < 4; ++y) image.setPixelColor(x, y, Qt::green);
    }
    replacePicture("separatorBarreInRecapture", image);
    bar_.resize(80, 10);
  }

  ZQRecaptureSeparatorBarre bar_;
};

TEST_F(SeparatorBarre, PaintsItsPictureIntoWhatIsRedrawn) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(bar_, scale);
    EXPECT_TRUE(isColorAt(picture, 0.5, 0.5, Qt::red));
    EXPECT_TRUE(isColorAt(picture, 30, 9.5, Qt::red));
    EXPECT_TRUE(isColorAt(picture, 50, 0.5, Qt::green));
    EXPECT_TRUE(isColorAt(picture, 79.5, 9.5, Qt::green));
  }
}

TEST_F(SeparatorBarre, SqueezesTheWholePictureIntoAPartThatIsRedrawn) {
  QImage picture(80, 10, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::blue);
  bar_.render(&picture, {40, 0}, QRegion(40, 0, 40, 10), QWidget::DrawChildren);
  EXPECT_TRUE(isColorAt(picture, 39, 5, Qt::blue));
  EXPECT_TRUE(isColorAt(picture, 41, 5, Qt::red));
  EXPECT_TRUE(isColorAt(picture, 50, 5, Qt::red));
  EXPECT_TRUE(isColorAt(picture, 70, 5, Qt::green));
}

TEST_F(SeparatorBarre, IsASeparatorForAssistivePrograms) {
  ZQRecaptureSeparatorBarre bar;
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&bar);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Separator);
}

}  // namespace
}  // namespace zq

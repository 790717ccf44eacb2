#include <gtest/gtest.h>

#include <QImage>
#include <QSize>
#include <QString>

#include "skin/skin.h"
#include "skin/skin_fixture.h"

namespace zq::test {
namespace {

class SkinCache : public SkinTest {
 protected:
  static constexpr QSize kSize = QSize(100, 50);
  static constexpr qsizetype kBytes = qsizetype{100} * 50 * 4;
  const QString name = QStringLiteral("timelineMiddle");
};

TEST_F(SkinCache, ARedrawIsNotRenderedAnew) {
  const QImage first = skin.rendered(name, {6000, 100});
  EXPECT_EQ(skin.cachedBytes(), 6000 * 100 * 4);
  EXPECT_EQ(skin.rendered(name, {6000, 100}).cacheKey(), first.cacheKey()) << "the same pixels, not equal ones";
  EXPECT_EQ(skin.cachedBytes(), 6000 * 100 * 4);
}

TEST_F(SkinCache, EachSizeAndEachPictureIsItsOwn) {
  EXPECT_EQ(skin.rendered(name, kSize).size(), kSize);
  EXPECT_EQ(skin.rendered(name, {50, 100}).size(), QSize(50, 100));
  EXPECT_EQ(skin.rendered(QStringLiteral("timelineShadow"), kSize).size(), kSize);
  EXPECT_EQ(skin.cachedBytes(), 3 * kBytes);
}

TEST_F(SkinCache, KeepsNoMoreThanItsLimit) {
  skin.setCacheLimit(4 * kBytes);
  for (int i = 0; i < 10; ++i) skin.rendered(name, kSize + QSize(0, -i));
  EXPECT_LE(skin.cachedBytes(), 4 * kBytes);
  EXPECT_GE(skin.cachedBytes(), 3 * kBytes);
}

TEST_F(SkinCache, APictureLargerThanTheLimitIsDrawnButNotKept) {
  skin.setCacheLimit(kBytes - 1);
  EXPECT_EQ(skin.rendered(name, kSize).size(), kSize);
  EXPECT_EQ(skin.cachedBytes(), 0);
}

TEST_F(SkinCache, HoldsThirtyTwoMegabytesAtMost) {
  for (int i = 0; i < 12; ++i) skin.rendered(name, QSize(1024, 1024 - i));
  EXPECT_LE(skin.cachedBytes(), 32 << 20);
}

TEST_F(SkinCache, IsDroppedWithTheFolder) {
  skin.rendered(name, kSize);
  useFolder();
  EXPECT_EQ(skin.cachedBytes(), 0);
  skin.rendered(name, kSize);
  ASSERT_TRUE(skin.setFolder(QString()).ok());
  EXPECT_EQ(skin.cachedBytes(), 0);
}

TEST_F(SkinCache, OfAPictureThatIsNowhereHoldsNothing) {
  EXPECT_TRUE(skin.rendered(QStringLiteral("noSuchPicture"), kSize).isNull());
  EXPECT_EQ(skin.cachedBytes(), 0);
}

}  // namespace
}  // namespace zq::test

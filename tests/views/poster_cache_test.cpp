#include "views/poster_cache.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

/// Of a poster at one pixel a point.
constexpr qsizetype kPosterBytes = qsizetype{60} * 40 * 4;

class PosterCacheTest : public QtTest {
 protected:
  PosterCacheTest() { cache_.setLog(&log_); }

  LineLog log_;
  PosterCache cache_;
};

TEST_F(PosterCacheTest, DecodesToAtMostAPostersPixels) {
  const auto poster = flatPoster(Qt::green, 720, 576);
  const QImage once = cache_.picture(poster, 1, "a");
  EXPECT_EQ(once.size(), QSize(60, 40));
  EXPECT_EQ(once.pixelColor(30, 20), QColor(Qt::green));
  EXPECT_EQ(cache_.picture(poster, 2, "a").size(), QSize(120, 80));
  EXPECT_EQ(cache_.picture(poster, 1.25, "a").size(), QSize(75, 50));
}

TEST_F(PosterCacheTest, DoesNotBlowSmallPicturesUp) {
  EXPECT_EQ(cache_.picture(flatPoster(Qt::green, 16, 300), 1, "a").size(), QSize(16, 40));
}

TEST_F(PosterCacheTest, ReadsJpegToo) {
  QImage picture(320, 240, QImage::Format_RGB32);
  picture.fill(Qt::blue);
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "JPEG");
  const QByteArray& bytes = buffer.data();
  const auto poster = std::make_shared<const platform::Image>(platform::Image{{bytes.begin(), bytes.end()}});
  const QImage read = cache_.picture(poster, 1, "a");
  EXPECT_EQ(read.size(), QSize(60, 40));
  EXPECT_TRUE(isNear(read.pixelColor(30, 20), Qt::blue));
}

TEST_F(PosterCacheTest, KeepsWhatWasDrawnLastWithinItsBytes) {
  PosterCache small(3 * kPosterBytes);
  std::vector<platform::ImageValue> posters;
  for (int i = 0; i < 5; ++i) posters.push_back(flatPoster(QColor(10 * i, 0, 0)));
  std::vector<qint64> keys;
  for (const auto& poster : posters) {
    keys.push_back(small.picture(poster, 1, "a").cacheKey());
    EXPECT_LE(small.cachedBytes(), 3 * kPosterBytes);
  }
  EXPECT_EQ(small.cachedBytes(), 3 * kPosterBytes);
  EXPECT_EQ(small.picture(posters[4], 1, "a").cacheKey(), keys[4]) << "the very same pixels";
  EXPECT_NE(small.picture(posters[0], 1, "a").cacheKey(), keys[0]) << "decoded again";
  EXPECT_EQ(small.picture(posters[0], 1, "a").pixelColor(1, 1), QColor(0, 0, 0));
  EXPECT_EQ(small.cachedBytes(), 3 * kPosterBytes);
}

TEST_F(PosterCacheTest, ShowsPicturesThatAreTooLargeToKeep) {
  PosterCache tiny(10);
  EXPECT_EQ(tiny.picture(flatPoster(Qt::green), 1, "a").pixelColor(3, 3), QColor(Qt::green));
  EXPECT_EQ(tiny.cachedBytes(), 0);
}

TEST_F(PosterCacheTest, KeepsNoImageAlive) {
  auto poster = flatPoster(Qt::green);
  auto broken = brokenPoster();
  const std::weak_ptr<const platform::Image> gone[] = {poster, broken};
  cache_.picture(poster, 1, "a");
  cache_.picture(broken, 1, "a");
  poster.reset();
  broken.reset();
  for (const auto& image : gone) EXPECT_TRUE(image.expired());
}

// Two images, one after the other, in the same place.
TEST_F(PosterCacheTest, TakesANewImageForANewOneWhereverItLies) {
  std::optional<platform::Image> place;
  const auto put = [&place](const platform::ImageValue& image) {
    place.emplace(*image);
    return platform::ImageValue(&*place, [](const platform::Image*) {});
  };
  auto first = put(flatPoster(Qt::green));
  EXPECT_EQ(cache_.picture(first, 1, "a").pixelColor(3, 3), QColor(Qt::green));
  first.reset();
  auto second = put(flatPoster(Qt::blue));
  EXPECT_EQ(cache_.picture(second, 1, "a").pixelColor(3, 3), QColor(Qt::blue));
  second.reset();
  auto broken = put(brokenPoster());
  EXPECT_TRUE(cache_.picture(broken, 1, "a").isNull());
  broken.reset();
  const auto last = put(flatPoster(Qt::red));
  EXPECT_EQ(cache_.picture(last, 1, "a").pixelColor(3, 3), QColor(Qt::red));
}

TEST_F(PosterCacheTest, HasNothingForNoImageAndSaysNothing) {
  EXPECT_TRUE(cache_.picture(nullptr, 1, "a").isNull());
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(PosterCacheTest, TellsOnceOfAnImageThatCannotBeDecoded) {
  const auto broken = brokenPoster();
  const auto empty = std::make_shared<const platform::Image>();
  const auto cut = std::make_shared<platform::Image>(*flatPoster(Qt::green));
  cut->encoded.resize(40);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(cache_.picture(broken, 1 + i, "Beach").isNull());
    EXPECT_TRUE(cache_.picture(empty, 1, "Town").isNull());
    EXPECT_TRUE(cache_.picture(cut, 1, "Hills").isNull());
  }
  ASSERT_EQ(log_.lines.size(), 3U);
  EXPECT_EQ(log_.lines[0].rfind("The poster image of clip \"Beach\" cannot be shown: ", 0), 0U) << log_.lines[0];
}

TEST_F(PosterCacheTest, RemembersManyBrokenImagesThatLiveAndForgetsThoseThatAreGone) {
  std::vector<platform::ImageValue> living;
  for (int i = 0; i < 300; ++i) {
    living.push_back(brokenPoster());
    cache_.picture(living.back(), 1, "a");
    cache_.picture(brokenPoster(), 1, "a");
  }
  EXPECT_EQ(log_.lines.size(), 600U);
  for (const auto& image : living) cache_.picture(image, 1, "a");
  EXPECT_EQ(log_.lines.size(), 600U);
}

TEST_F(PosterCacheTest, WorksWithoutALogAndWithAnyScale) {
  cache_.setLog(nullptr);
  EXPECT_TRUE(cache_.picture(brokenPoster(), 1, "a").isNull());
  const auto poster = flatPoster(Qt::green, 5000, 10);
  EXPECT_EQ(cache_.picture(poster, 0, "a").width(), 60);
  EXPECT_EQ(cache_.picture(poster, -3, "a").width(), 60);
  EXPECT_EQ(cache_.picture(poster, 1e9, "a").width(), 480);
  EXPECT_EQ(cache_.picture(poster, std::numeric_limits<qreal>::quiet_NaN(), "a").width(), 60);
}

}  // namespace
}  // namespace zq::test

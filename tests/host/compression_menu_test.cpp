#include "host/compression_menu.h"

#include <gtest/gtest.h>

namespace zq::host {
namespace {

const CompressionMenu& menu() {
  static const CompressionMenu held(
      {{"Small Film", "small", "a", {"mp4"}, 1}, {"Large Film", "large", "b", {"mov"}, 1}});
  return held;
}

TEST(CompressionMenu, CountsAsThePopUpDoes) {
  EXPECT_EQ(menu().indexOf("none"), 0);
  EXPECT_EQ(menu().indexOf("small"), 1);
  EXPECT_EQ(menu().indexOf("large"), 2);
  EXPECT_EQ(menu().indexOf("custom"), 3);
  EXPECT_EQ(menu().custom(), 3);
}

TEST(CompressionMenu, TakesNamesAndIdentifiersInAnyCase) {
  EXPECT_EQ(menu().indexOf("small FILM"), 1);
  EXPECT_EQ(menu().indexOf("LARGE"), 2);
  EXPECT_EQ(menu().indexOf("None"), 0);
  EXPECT_EQ(menu().indexOf("CUSTOM"), 3);
}

TEST(CompressionMenu, KnowsNoPartOfANameAndNoNumber) {
  for (const char* word : {"", "smal", "small film ", "1", "0"}) EXPECT_EQ(menu().indexOf(word), std::nullopt) << word;
}

TEST(CompressionMenu, NamesEveryChoice) {
  EXPECT_EQ(menu().nameAt(0), "None");
  EXPECT_EQ(menu().nameAt(2), "Large Film");
  EXPECT_EQ(menu().identifierAt(2), "large");
  EXPECT_EQ(menu().nameAt(3), "Custom");
  EXPECT_EQ(menu().nameAt(4), "");
  EXPECT_EQ(menu().identifiers(), "none, small, large, custom");
}

TEST(CompressionMenu, HoldsItsChoicesOnly) {
  EXPECT_TRUE(menu().holds(0));
  EXPECT_TRUE(menu().holds(3));
  EXPECT_FALSE(menu().holds(4));
  EXPECT_FALSE(menu().holds(-1));
  EXPECT_EQ(menu().presetAt(0), nullptr);
  EXPECT_EQ(menu().presetAt(3), nullptr);
  EXPECT_EQ(menu().presetAt(1)->identifier, "small");
}

TEST(CompressionMenu, WithoutEncodersThereAreNoneAndCustom) {
  const CompressionMenu empty({});
  EXPECT_EQ(empty.indexOf("custom"), 1);
  EXPECT_EQ(empty.identifiers(), "none, custom");
}

}  // namespace
}  // namespace zq::host

#include "platform/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

namespace zq::platform {
namespace {

class StoredSettings final : public Settings {
 public:
  std::optional<SettingValue> objectForKey(const std::string& key) const override {
    const auto found = objects_.find(key);
    return found == objects_.end() ? std::nullopt : std::optional(found->second);
  }
  void setObjectForKey(const std::string& key, SettingValue value) override {
    objects_.insert_or_assign(key, std::move(value));
  }
  void removeObjectForKey(const std::string& key) override { objects_.erase(key); }
  Observation observe(std::vector<std::string> /*keys*/, std::function<void(const std::string&)> /*changed*/) override {
    return nullptr;
  }

 private:
  std::map<std::string, SettingValue> objects_;
};

class SettingsTest : public testing::Test {
 protected:
  StoredSettings& with(SettingValue value) {
    settings_.setObjectForKey("key", std::move(value));
    return settings_;
  }
  StoredSettings& withText(const char* text) { return with(std::string(text)); }

  StoredSettings settings_;
};

TEST_F(SettingsTest, WithoutAnObjectEverythingIsNothing) {
  EXPECT_FALSE(settings_.boolForKey("key"));
  EXPECT_EQ(settings_.integerForKey("key"), 0);
  EXPECT_EQ(settings_.floatForKey("key"), 0.0F);
  EXPECT_EQ(settings_.stringForKey("key"), "");
}

TEST_F(SettingsTest, GivesBackWhatWasSet) {
  settings_.setBoolForKey("bool", true);
  settings_.setIntegerForKey("integer", -5);
  settings_.setFloatForKey("float", 1.5F);
  EXPECT_TRUE(settings_.boolForKey("bool"));
  EXPECT_EQ(settings_.integerForKey("integer"), -5);
  EXPECT_EQ(settings_.floatForKey("float"), 1.5F);
  EXPECT_EQ(withText("text").stringForKey("key"), "text");
}

TEST_F(SettingsTest, ATextIsTrueWhenItBeginsAsYesTrueOrANumberDoes) {
  for (const char* text : {"YES", "yes", "true", "T", "1", "9 lives"})
    EXPECT_TRUE(withText(text).boolForKey("key")) << text;
  for (const char* text : {"", "NO", "false", "0", "on"}) EXPECT_FALSE(withText(text).boolForKey("key")) << text;
}

TEST_F(SettingsTest, ANumberIsTrueUnlessItIsZero) {
  EXPECT_TRUE(with(std::int64_t{-1}).boolForKey("key"));
  EXPECT_FALSE(with(std::int64_t{0}).boolForKey("key"));
  EXPECT_TRUE(with(0.5).boolForKey("key"));
}

TEST_F(SettingsTest, ATextIsTheNumberThatItBeginsWith) {
  EXPECT_EQ(withText("42 frames").integerForKey("key"), 42);
  EXPECT_EQ(withText("-7.9").integerForKey("key"), -7);
  EXPECT_EQ(withText("frames").integerForKey("key"), 0);
  EXPECT_EQ(withText("2.25").floatForKey("key"), 2.25F);
}

TEST_F(SettingsTest, NumbersOfOtherKindsAreConverted) {
  EXPECT_EQ(with(true).integerForKey("key"), 1);
  EXPECT_EQ(with(2.9).integerForKey("key"), 2);
  EXPECT_EQ(with(-2.9).integerForKey("key"), -2);
  EXPECT_EQ(with(std::int64_t{3}).floatForKey("key"), 3.0F);
}

TEST_F(SettingsTest, AnIntegerOutOfRangeIsTheNearestThatFits) {
  EXPECT_EQ(with(std::int64_t{1} << 40).integerForKey("key"), std::numeric_limits<int>::max());
  EXPECT_EQ(with(-1e300).integerForKey("key"), std::numeric_limits<int>::min());
  EXPECT_EQ(with(std::numeric_limits<double>::infinity()).integerForKey("key"), std::numeric_limits<int>::max());
}

TEST_F(SettingsTest, NotANumberIsZero) {
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(with(notANumber).integerForKey("key"), 0);
  EXPECT_EQ(with(notANumber).floatForKey("key"), 0.0F);
  EXPECT_FALSE(with(notANumber).boolForKey("key"));
}

TEST_F(SettingsTest, OnlyATextIsAString) {
  EXPECT_EQ(with(true).stringForKey("key"), "");
  EXPECT_EQ(with(std::int64_t{5}).stringForKey("key"), "");
}

TEST_F(SettingsTest, BytesAreNoNumber) {
  with(std::vector<std::uint8_t>{1, 2, 3});
  EXPECT_FALSE(settings_.boolForKey("key"));
  EXPECT_EQ(settings_.integerForKey("key"), 0);
  EXPECT_EQ(settings_.floatForKey("key"), 0.0F);
  EXPECT_EQ(settings_.stringForKey("key"), "");
}

}  // namespace
}  // namespace zq::platform

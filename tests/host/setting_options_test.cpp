#include "host/setting_options.h"

#include <gtest/gtest.h>

namespace zq::host {
namespace {

platform::SettingValue valueOf(const std::string& text) {
  const auto change = parseSetting(text);
  EXPECT_TRUE(change.ok()) << text;
  return change.ok() ? change.value().value : platform::SettingValue();
}

TEST(SettingOptions, BooleansTakeTheUsualWords) {
  for (const char* yes : {"true", "yes", "on", "1"}) {
    EXPECT_EQ(valueOf(std::string("detectScene=") + yes), platform::SettingValue(true)) << yes;
  }
  for (const char* no : {"false", "no", "off", "0"}) {
    EXPECT_EQ(valueOf(std::string("detectScene=") + no), platform::SettingValue(false)) << no;
  }
}

TEST(SettingOptions, NumbersKeepTheirKind) {
  EXPECT_EQ(valueOf("sampleInterval=4"), platform::SettingValue(std::int64_t{4}));
  EXPECT_EQ(valueOf("movieVolume=0.25"), platform::SettingValue(0.25));
}

TEST(SettingOptions, RefusesWhatASettingDoesNotTake) {
  for (const char* wrong :
       {"detectScene", "detectScene=", "detectScene=maybe", "sampleInterval=5", "sampleInterval=-1",
        "sampleInterval=2x", "sampleInterval=", "nbDropFrame=1.5", "detectEndTapeSecond=0", "actionAfterRecord=3",
        "movieVolume=2", "movieVolume=nan", "movieVolume=", "=1", "colour=1"}) {
    const auto change = parseSetting(wrong);
    ASSERT_FALSE(change.ok()) << wrong;
    EXPECT_FALSE(change.error().informative.empty()) << "says what would be right: " << wrong;
  }
}

TEST(SettingOptions, TheHelpNamesEveryKey) {
  for (const std::string& key : settingKeys()) EXPECT_NE(settingsHelp().find(key), std::string::npos) << key;
}

}  // namespace
}  // namespace zq::host

// The live settings: their defaults, and what changing one by hand does.

#include "capture/capture_settings.h"

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using platform::SettingValue;

class ClassInitialisation : public testing::Test {
 protected:
  backend::VirtualRuntime runtime_;
  backend::MemorySettings settings_{runtime_};
};

TEST_F(ClassInitialisation, WritesTheDefaultsIntoTheStore) {
  ZQACController::initialize(settings_);
  const std::map<std::string, SettingValue> expected{{"detectScene", true},
                                                     {"nbDropFrame", std::int64_t{0}},
                                                     {"detectEndTape", false},
                                                     {"detectEndTapeSecond", std::int64_t{1}},
                                                     {"actionAfterRecord", std::int64_t{2}},
                                                     {"frameSampling", true},
                                                     {"sampleInterval", std::int64_t{1}},
                                                     {"captureMovie", true},
                                                     {"captureMovieCompression", std::int64_t{0}},
                                                     {"fitSizeTag", std::int64_t{2}}};
  for (const auto& [key, value] : expected) EXPECT_EQ(settings_.objectForKey(key), value) << key;
}

TEST_F(ClassInitialisation, WritesNoDefaultForVolumeCompressionDataAndTheOldFormat) {
  ZQACController::initialize(settings_);
  for (const char* key : {"movieVolume", "captureMovieCompressionData", "captureFormat"}) {
    EXPECT_EQ(settings_.objectForKey(key), std::nullopt) << key;
  }
}

TEST_F(ClassInitialisation, LeavesWhatIsStored) {
  settings_.setBoolForKey("detectScene", false);
  settings_.setIntegerForKey("nbDropFrame", 7);
  settings_.setObjectForKey("sampleInterval", std::string("odd"));
  settings_.setIntegerForKey("actionAfterRecord", 0);
  ZQACController::initialize(settings_);
  EXPECT_EQ(settings_.objectForKey("detectScene"), SettingValue(false));
  EXPECT_EQ(settings_.objectForKey("nbDropFrame"), SettingValue(std::int64_t{7}));
  EXPECT_EQ(settings_.objectForKey("sampleInterval"), SettingValue(std::string("odd")));
  EXPECT_EQ(settings_.objectForKey("actionAfterRecord"), SettingValue(std::int64_t{0}));
}

TEST_F(ClassInitialisation, WritesOnlyTheKeysThatAreAbsent) {
  settings_.setIntegerForKey("nbDropFrame", 7);
  std::vector<std::string> written;
  const auto observation =
      settings_.observe({"nbDropFrame", "detectScene"}, [&](const std::string& key) { written.push_back(key); });
  ZQACController::initialize(settings_);
  EXPECT_EQ(written, std::vector<std::string>{"detectScene"});
}

TEST_F(ClassInitialisation, MayBeDoneAgain) {
  ZQACController::initialize(settings_);
  settings_.setIntegerForKey("detectEndTapeSecond", 9);
  ZQACController::initialize(settings_);
  EXPECT_EQ(settings_.integerForKey("detectEndTapeSecond"), 9);
}

class ChangedSetting : public CaptureTest, public testing::WithParamInterface<const char*> {
 protected:
  ChangedSetting() {
    configurationPopUp_.addItem("-", {});
    configurationPopUp_.addItem("Holidays", {});
    configurationPopUp_.selectItemAtIndex(1);
  }
};

INSTANTIATE_TEST_SUITE_P(Keys, ChangedSetting,
                         testing::Values("detectScene", "nbDropFrame", "detectEndTape", "detectEndTapeSecond",
                                         "actionAfterRecord", "frameSampling", "sampleInterval", "captureMovie",
                                         "captureMovieCompression", "fitSizeTag", "captureMovieCompressionData"));

TEST_P(ChangedSetting, SelectsTheFirstConfiguration) {
  settings_.setIntegerForKey(GetParam(), 1);
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 0);
}

TEST_P(ChangedSetting, NoLongerDoesSoWithTheControllerGone) {
  controller_.reset();
  settings_.setIntegerForKey(GetParam(), 1);
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 1);
}

class UnwatchedSetting : public ChangedSetting {};

INSTANTIATE_TEST_SUITE_P(Keys, UnwatchedSetting, testing::Values("movieVolume", "captureFormat", "someOther"));

TEST_P(UnwatchedSetting, LeavesTheConfiguration) {
  settings_.setIntegerForKey(GetParam(), 1);
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 1);
}

class CaptureVolume : public CaptureTest {};

TEST_F(CaptureVolume, IsAHalfWhenNoneIsStored) {
  EXPECT_FLOAT_EQ(controller_->captureVolume(), 0.5F);
  EXPECT_FLOAT_EQ(platform_.parts.audioPreview->volume(), 0.5F);
  EXPECT_FLOAT_EQ(settings_.floatForKey("movieVolume"), 0.5F);
}

TEST_F(CaptureVolume, IsTheStoredOne) {
  controller_.reset();
  settings_.setFloatForKey("movieVolume", 0.25F);
  makeController();
  EXPECT_FLOAT_EQ(controller_->captureVolume(), 0.25F);
}

TEST_F(CaptureVolume, OfZeroIsKept) {
  controller_.reset();
  settings_.setFloatForKey("movieVolume", 0.0F);
  makeController();
  EXPECT_FLOAT_EQ(controller_->captureVolume(), 0.0F);
}

TEST_F(CaptureVolume, IsHeardAndStored) {
  controller_->setCaptureVolume(0.75F);
  EXPECT_FLOAT_EQ(controller_->audioPreviewOutput().volume(), 0.75F);
  EXPECT_FLOAT_EQ(settings_.floatForKey("movieVolume"), 0.75F);
}

TEST_F(CaptureVolume, IsWhatTheOutputHasNotWhatIsStored) {
  settings_.setFloatForKey("movieVolume", 0.9F);
  EXPECT_FLOAT_EQ(controller_->captureVolume(), 0.5F);
}

}  // namespace
}  // namespace zq::test

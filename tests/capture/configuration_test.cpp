// Named configurations: applied to the live settings, saved from them, deleted by name.

#include "capture/configuration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/compression_options.h"
#include "support/capture_fixture.h"

namespace zq {
namespace {

using platform::SettingValue;
using test::CompressionData;
using testing::ElementsAre;
using testing::IsEmpty;

class Configurations : public test::CaptureTest {
 protected:
  Configurations() {
    delegate_.operations.accontrollerSaveConfiguration = [this](ZQACController&, const Configuration& configuration) {
      saved_ = configuration;
    };
    delegate_.operations.accontrollerDeleteConfigurationName = [this](ZQACController&, const std::string& name) {
      deleted_.push_back(name);
    };
  }
  void apply(Configuration configuration) {
    controller_->setAllConfiguration({std::move(configuration)});
    controller_->selectConfigurationAtIndex(1);
  }
  Configuration save() {
    controller_->saveCurrentConfiguration();
    return saved_;
  }
  SettingValue live(const char* key) const { return settings_.objectForKey(key).value_or(SettingValue("absent")); }
  static SettingValue number(int value) { return std::int64_t{value}; }

  Configuration saved_;
  Lines deleted_;
};

TEST_F(Configurations, FillThePopUpBehindAnItemForUnnamedOptions) {
  controller_->setAllConfiguration({{{"optionsName", "Films"}}, {{"optionsName", "Family"}}});
  ASSERT_EQ(configurationPopUp_.itemCount(), 3);
  EXPECT_EQ(configurationPopUp_.itemTitleAtIndex(0), "Unnamed options");
  EXPECT_EQ(configurationPopUp_.itemTitleAtIndex(1), "Films");
  EXPECT_EQ(configurationPopUp_.itemTitleAtIndex(2), "Family");
  EXPECT_EQ(controller_->allConfiguration().size(), 2U);
}

TEST_F(Configurations, WriteEachOptionInItsLiveKind) {
  apply({{"detectScenes", number(0)},
         {"nbDropFrame", number(3)},
         {"detectEndTape", number(1)},
         {"detectEndTapeSecond", number(9)},
         {"actionAfterRecord", number(1)},
         {"grabSamples", number(0)},
         {"samplingIntervalInSecs", number(10)},
         {"grabMovie", number(0)}});
  EXPECT_EQ(live("detectScene"), SettingValue(false));
  EXPECT_EQ(live("nbDropFrame"), number(3));
  EXPECT_EQ(live("detectEndTape"), SettingValue(true));
  EXPECT_EQ(live("detectEndTapeSecond"), number(9));
  EXPECT_EQ(live("actionAfterRecord"), number(1));
  EXPECT_EQ(live("frameSampling"), SettingValue(false));
  EXPECT_EQ(live("sampleInterval"), number(3));
  EXPECT_EQ(live("captureMovie"), SettingValue(false));
}

TEST_F(Configurations, DoNotKnowTheLiveKeysThatAreNamedOtherwise) {
  apply({{"detectScene", number(0)}, {"frameSampling", number(0)}, {"captureMovie", number(0)}});
  EXPECT_EQ(live("detectScene"), SettingValue(true));
  EXPECT_EQ(live("frameSampling"), SettingValue(true));
  EXPECT_EQ(live("captureMovie"), SettingValue(true));
}

TEST_F(Configurations, WithANameOnlyChangeNothingButApplyTheCompression) {
  selectDevice(platform::AVCTransportControls{0, 0});
  Lines changed;
  const auto observation = settings_.observe(
      {"detectScene", "nbDropFrame", "detectEndTape", "detectEndTapeSecond", "actionAfterRecord", "frameSampling",
       "sampleInterval", "captureMovie", "captureMovieCompression", "fitSizeTag", "captureMovieCompressionData"},
      [&](const std::string& key) { changed.push_back(key); });
  apply({{"optionsName", "Nothing"}});
  EXPECT_THAT(changed, IsEmpty());
  EXPECT_THAT(linesOf({"session"}), ElementsAre("session: stop", "session: start"));
}

TEST_F(Configurations, KeepTheIntervalForSecondsThatAreInNoTable) {
  apply({{"samplingIntervalInSecs", number(3)}});
  EXPECT_EQ(live("sampleInterval"), number(1));
}

TEST_F(Configurations, EachIntervalOfTheTableComesBackFromItsIndex) {
  const std::vector<int> seconds{1, 2, 5, 10, 20};
  for (std::size_t index = 0; index < seconds.size(); ++index) {
    apply({{"samplingIntervalInSecs", number(seconds[index])}});
    EXPECT_EQ(live("sampleInterval"), number(static_cast<int>(index)));
    EXPECT_EQ(save().at("samplingIntervalInSecs"), number(seconds[index]));
  }
}

TEST_F(Configurations, TheSizeTagGoesThroughTheBooleanSetter) {
  for (const int tag : {1, 2, 3, 4, -1, 7, 0x101}) {
    apply({{"fitSizeTag", number(tag)}});
    EXPECT_EQ(live("fitSizeTag"), SettingValue(true)) << tag;
    EXPECT_EQ(settings_.integerForKey("fitSizeTag"), 1) << tag;
  }
  for (const int tag : {0, 256, 512}) {
    apply({{"fitSizeTag", number(tag)}});
    EXPECT_EQ(settings_.integerForKey("fitSizeTag"), 0) << tag;
  }
}

TEST_F(Configurations, WhetherTheEndIsWatchedForIsTakenByItsWholeValue) {
  apply({{"detectEndTape", number(256)}});
  EXPECT_EQ(live("detectEndTape"), SettingValue(true));
}

TEST_F(Configurations, AreWrittenOptionByOptionInOneOrder) {
  compression_.script.chosen = {8};
  Lines changed;
  const auto observation = settings_.observe(
      {"detectScene", "nbDropFrame", "detectEndTape", "detectEndTapeSecond", "actionAfterRecord", "frameSampling",
       "sampleInterval", "captureMovie", "captureMovieCompression", "fitSizeTag", "captureMovieCompressionData"},
      [&](const std::string& key) { changed.push_back(key); });
  apply({{"detectScenes", number(0)},
         {"nbDropFrame", number(3)},
         {"detectEndTape", number(1)},
         {"detectEndTapeSecond", number(9)},
         {"actionAfterRecord", number(1)},
         {"grabSamples", number(0)},
         {"samplingIntervalInSecs", number(10)},
         {"grabMovie", number(0)},
         {"captureMovieCompression", number(2)},
         {"fitSizeTag", number(1)},
         {"captureMovieCompressionData", CompressionData{4}}});
  EXPECT_THAT(changed, ElementsAre("detectScene", "nbDropFrame", "detectEndTape", "detectEndTapeSecond",
                                   "actionAfterRecord", "frameSampling", "sampleInterval", "captureMovie",
                                   "captureMovieCompression", "fitSizeTag", "captureMovieCompressionData"));
}

TEST_F(Configurations, WhetherMoviesAreCapturedGoesThroughItToo) {
  apply({{"grabMovie", number(256)}});
  EXPECT_EQ(live("captureMovie"), SettingValue(false));
  apply({{"grabMovie", number(2)}});
  EXPECT_EQ(live("captureMovie"), SettingValue(true));
}

TEST_F(Configurations, CustomIsChosenBeforeItsDataIsThereSoTheDialogComesFirst) {
  compression_.script.chosen = {8};
  apply({{"captureMovieCompression", number(3)}, {"captureMovieCompressionData", CompressionData{4, 5, 6}}});
  EXPECT_EQ(compression_.dialogs, 1);
  EXPECT_EQ(dynamic_cast<test::FakeSessionOptions&>(*compression_.made->session).madeFrom, (CompressionData{4, 5, 6}));
}

TEST_F(Configurations, TheCompressionIsChosenByItsIndex) {
  apply({{"captureMovieCompression", number(2)}});
  EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 2);
  EXPECT_EQ(controller_->videoCompressionOptions()->localizedDisplayName(), "preset editing");
  EXPECT_EQ(live("captureMovieCompression"), number(2));
}

TEST_F(Configurations, ACompressionThatIsNotHereMeansAsReceived) {
  apply({{"captureMovieCompression", number(40)}});
  EXPECT_FALSE(controller_->isCompressed());
  EXPECT_EQ(log_.messages(LogLevel::warning).size(), 1U);
  EXPECT_EQ(live("captureMovieCompression"), number(40));
}

// An index that is none here stays stored until somebody chooses.
TEST_F(Configurations, ChoosingAsReceivedReplacesACompressionThatIsNotHere) {
  apply({{"captureMovieCompression", number(40)}});
  apply({{"captureMovieCompression", number(0)}});
  EXPECT_EQ(live("captureMovieCompression"), number(0));
  apply({{"captureMovieCompression", number(40)}});
  controller_->buildVideoCompressionOptions();
  EXPECT_EQ(live("captureMovieCompression"), number(40)) << "building the list is no choice";
}

TEST_F(Configurations, CustomDataIsCopiedAsItIs) {
  apply({{"captureMovieCompressionData", CompressionData{4, 5, 6}}});
  EXPECT_EQ(live("captureMovieCompressionData"), SettingValue(CompressionData{4, 5, 6}));
  apply({{"captureMovieCompressionData", number(7)}});
  EXPECT_EQ(live("captureMovieCompressionData"), number(7));
}

TEST_F(Configurations, TheCompressionIsAppliedWithSizeAndDataOfTheConfiguration) {
  settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{1});
  apply({{"captureMovieCompression", number(3)},
         {"fitSizeTag", number(4)},
         {"captureMovieCompressionData", CompressionData{4, 5, 6}}});
  EXPECT_EQ(compression_.made->width, 320) << "tag 1 is what every tag comes back as";
  EXPECT_EQ(dynamic_cast<test::FakeSessionOptions&>(*compression_.made->session).madeFrom, (CompressionData{4, 5, 6}));
}

TEST_F(Configurations, OldFormats0And1AreAsReceivedWhateverElseTheySay) {
  for (const int format : {0, 1}) {
    apply({{"captureMovieCompression", number(2)}, {"captureFormat", number(format)}});
    EXPECT_FALSE(controller_->isCompressed()) << format;
    EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 0) << format;
  }
}

TEST_F(Configurations, OtherOldFormatsAreCustomWithoutDataEvenWhenTheyCarryIt) {
  compression_.script.chosen = {8};
  apply({{"captureMovieCompressionData", CompressionData{4, 5, 6}}, {"captureFormat", number(2)}});
  EXPECT_TRUE(controller_->isCustomVideoCompression());
  EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 3);
  EXPECT_EQ(compression_.dialogs, 1) << "there was nothing stored to go on with";
  EXPECT_NE(compression_.shownInDialog, (CompressionData{4, 5, 6}));
  EXPECT_EQ(live("captureMovieCompressionData"), SettingValue(CompressionData{8}));
}

TEST_F(Configurations, OtherOldFormatsRemoveTheDataAlsoWhenTheDialogIsCancelled) {
  compression_.script.dialogResult = 1;
  apply({{"captureMovieCompressionData", CompressionData{4, 5, 6}}, {"captureFormat", number(2)}});
  EXPECT_EQ(settings_.objectForKey(ZQACCaptureCompressionData), std::nullopt);
  EXPECT_EQ(compression_.dialogs, 2) << "once for the choice, and again when all is applied";
}

TEST_F(Configurations, AnOldFormatBelow0IsOneOfTheOthers) {
  compression_.script.dialogResult = 1;
  apply({{"captureMovieCompressionData", CompressionData{4}}, {"captureFormat", number(-1)}});
  EXPECT_EQ(settings_.objectForKey(ZQACCaptureCompressionData), std::nullopt);
  EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 3);
}

TEST_F(Configurations, OldFormats0And1KeepTheCustomData) {
  apply({{"captureMovieCompressionData", CompressionData{4}}, {"captureFormat", number(0)}});
  EXPECT_EQ(live("captureMovieCompressionData"), SettingValue(CompressionData{4}));
}

TEST_F(Configurations, AnItemThatIsNotThereChangesNothing) {
  controller_->setAllConfiguration({{{"detectScenes", number(0)}}});
  controller_->selectConfigurationAtIndex(7);
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), -1);
  EXPECT_EQ(live("detectScene"), SettingValue(true));
}

TEST_F(Configurations, TheSelectedOneIsDeleted) {
  controller_->setAllConfiguration({{{"optionsName", "Films"}}, {{"optionsName", "Family"}}});
  controller_->selectConfigurationAtIndex(2);
  controller_->deleteCurrentConfiguration();
  EXPECT_THAT(deleted_, ElementsAre("Family"));
}

TEST_F(Configurations, TheUnnamedItemIsDeletedByNoName) {
  controller_->setAllConfiguration({});
  controller_->selectConfigurationAtIndex(0);
  controller_->deleteCurrentConfiguration();
  EXPECT_THAT(deleted_, ElementsAre(""));
}

TEST_F(Configurations, StaySelectedWhenTheyAreApplied) {
  apply({{"detectScenes", number(0)},
         {"samplingIntervalInSecs", number(10)},
         {"captureMovieCompression", number(3)},
         {"fitSizeTag", number(0)}});
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 1);
}

TEST_F(Configurations, AnOptionThatIsEditedByHandSelectsTheUnnamedItem) {
  for (const char* key : {"detectScene", "nbDropFrame", "detectEndTape", "detectEndTapeSecond", "actionAfterRecord",
                          "frameSampling", "sampleInterval", "captureMovie", "captureMovieCompression", "fitSizeTag"}) {
    apply({{"optionsName", "Films"}});
    ASSERT_EQ(configurationPopUp_.indexOfSelectedItem(), 1);
    settings_.setIntegerForKey(key, 0);
    EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 0) << key;
  }
  apply({{"optionsName", "Films"}});
  settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{1});
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 0);
}

TEST_F(Configurations, TheVolumeIsNoOptionOfThem) {
  apply({{"optionsName", "Films"}});
  controller_->setCaptureVolume(0.25F);
  EXPECT_EQ(configurationPopUp_.indexOfSelectedItem(), 1);
}

TEST_F(Configurations, AreSavedUnderTheirOwnKeysWithoutAName) {
  settings_.setBoolForKey("detectScene", false);
  settings_.setBoolForKey("frameSampling", false);
  settings_.setBoolForKey("captureMovie", false);
  settings_.setIntegerForKey("sampleInterval", 4);
  settings_.setIntegerForKey("fitSizeTag", 4);
  EXPECT_EQ(save(), (Configuration{{"detectScenes", false},
                                   {"nbDropFrame", number(0)},
                                   {"detectEndTape", false},
                                   {"detectEndTapeSecond", number(1)},
                                   {"actionAfterRecord", number(2)},
                                   {"grabSamples", false},
                                   {"samplingIntervalInSecs", number(20)},
                                   {"grabMovie", false},
                                   {"captureMovieCompression", number(0)},
                                   {"fitSizeTag", number(4)}}));
}

TEST_F(Configurations, AreSavedWithoutAnOptionThatIsNotStored) {
  settings_.removeObjectForKey("detectEndTape");
  settings_.removeObjectForKey("nbDropFrame");
  const Configuration saved = save();
  EXPECT_FALSE(saved.contains("detectEndTape"));
  EXPECT_FALSE(saved.contains("nbDropFrame"));
}

TEST_F(Configurations, AreSavedWithTheCustomDataWhenThereIsSome) {
  settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{3});
  EXPECT_EQ(save().at("captureMovieCompressionData"), SettingValue(CompressionData{3}));
}

TEST_F(Configurations, AppliedSavedAndAppliedAgainAreTheSame) {
  settings_.setBoolForKey("detectScene", false);
  settings_.setIntegerForKey("sampleInterval", 3);
  settings_.setBoolForKey("fitSizeTag", true);
  const Configuration first = save();
  ZQACController::initialize(settings_);
  settings_.setBoolForKey("detectScene", true);
  settings_.setIntegerForKey("sampleInterval", 0);
  apply(first);
  EXPECT_EQ(save(), first);
}

TEST_F(Configurations, AreDeletedByTheNameOfTheSelectedItem) {
  apply({{"optionsName", "Films"}});
  controller_->deleteCurrentConfiguration();
  EXPECT_THAT(deleted_, ElementsAre("Films"));
}

TEST_F(Configurations, ADelegateThatOnlyDeletesIsNeverAskedTo) {
  delegate_.operations.accontrollerSaveConfiguration = nullptr;
  apply({{"optionsName", "Films"}});
  controller_->deleteCurrentConfiguration();
  EXPECT_THAT(deleted_, IsEmpty());
}

TEST_F(Configurations, NobodyIsAskedWithoutADelegateOrItsAnswer) {
  delegate_.operations.accontrollerDeleteConfigurationName = nullptr;
  controller_->deleteCurrentConfiguration();
  controller_->setDelegate(nullptr);
  controller_->saveCurrentConfiguration();
  controller_->deleteCurrentConfiguration();
  EXPECT_THAT(saved_, IsEmpty());
}

TEST_F(Configurations, WithoutAPopUpNothingIsApplied) {
  controller_.reset();
  platform_.parts = {};
  outlets_.configurationPopUp = nullptr;
  makeController();
  apply({{"detectScenes", number(0)}});
  EXPECT_EQ(live("detectScene"), SettingValue(true));
}

}  // namespace
}  // namespace zq

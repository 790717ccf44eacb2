// Which compression the controller offers, and how the choice reaches the movie file output.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/compression_options.h"
#include "support/capture_fixture.h"

namespace zq {
namespace {

using test::CompressionData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CompressionChoice : public test::CaptureTest {
 protected:
  /// As a user picks it: the pop-up first, then the action that hands over what the item stands for.
  void choose(int index) {
    compressionPopUp_.selectItemAtIndex(index);
    const auto object = compressionPopUp_.representedObjectAtIndex(index);
    controller_->setVideoCompressionOptions(std::any_cast<CompressionValue>(object));
  }
  std::vector<std::string> titles() const {
    std::vector<std::string> titles;
    for (int i = 0; i < compressionPopUp_.itemCount(); ++i) titles.push_back(compressionPopUp_.itemTitleAtIndex(i));
    return titles;
  }
  CompressionValue applied() { return movieFileOutput().compression[platform::QTMediaTypeVideo]; }
  int storedIndex() const { return settings_.integerForKey(ZQACCaptureCompression); }
  void storeCustomData() { settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{1, 2}); }

  static constexpr int kSharing = 1;
  static constexpr int kCustom = 3;
};

TEST_F(CompressionChoice, StartsWithNoneAndEndsWithCustomThePresetsBetween) {
  EXPECT_THAT(titles(), ElementsAre("None", "preset sharing", "preset editing", "Custom..."));
  EXPECT_THAT(controller_->allVideoCompressionOptions(), SizeIs(4));
  EXPECT_EQ(controller_->allVideoCompressionOptions().front(), QTNoCompressionOptions::noCompressionOptions());
  EXPECT_EQ(controller_->allVideoCompressionOptions().back(), QTCustomCompressionOptions::customCompressionOptions());
}

TEST_F(CompressionChoice, WithoutPresetsTheTwoAreLeft) {
  compression_.identifiers.clear();
  controller_->buildVideoCompressionOptions();
  EXPECT_THAT(titles(), ElementsAre("None", "Custom..."));
}

TEST_F(CompressionChoice, TitlesAreInTheUsersLanguage) {
  strings_.texts["None"] = "Ohne";
  controller_->buildVideoCompressionOptions();
  EXPECT_EQ(titles().front(), "Ohne");
}

TEST_F(CompressionChoice, BuildingTheListAnnouncesItBeforeAndAfter) {
  Lines announced;
  const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
    announced.push_back((change == KeyChange::willChange ? "will " : "did ") + key);
  });
  controller_->buildVideoCompressionOptions();
  EXPECT_THAT(announced, ElementsAre("will allVideoCompressionOptions", "did allVideoCompressionOptions"));
}

TEST_F(CompressionChoice, TheStoredOneIsChosenAtTheStart) {
  settings_.setIntegerForKey(ZQACCaptureCompression, 2);
  controller_.reset();
  platform_.parts = {};
  makeController();
  EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 2);
  EXPECT_EQ(controller_->videoCompressionOptions()->localizedDisplayName(), "preset editing");
  EXPECT_EQ(applied(), controller_->videoCompressionOptions());
}

TEST_F(CompressionChoice, AStoredIndexThatIsNoneMeansAsReceivedAndIsTold) {
  for (const int index : {-1, 4, 99}) {
    settings_.setIntegerForKey(ZQACCaptureCompression, index);
    controller_->buildVideoCompressionOptions();
    EXPECT_FALSE(controller_->isCompressed());
    EXPECT_EQ(compressionPopUp_.indexOfSelectedItem(), 0);
    EXPECT_EQ(storedIndex(), index) << "the encoder may be back another day";
  }
  EXPECT_THAT(log_.messages(LogLevel::warning), SizeIs(3));
}

TEST_F(CompressionChoice, WithoutAPopUpTheStoredOneIsChosenAsWell) {
  outlets_.compressionPopUp = nullptr;
  settings_.setIntegerForKey(ZQACCaptureCompression, 2);
  controller_.reset();
  platform_.parts = {};
  makeController();
  EXPECT_EQ(controller_->videoCompressionOptions()->localizedDisplayName(), "preset editing");
  EXPECT_EQ(storedIndex(), 2);
}

TEST_F(CompressionChoice, APresetGoesToTheOutputItself) {
  choose(kSharing);
  EXPECT_EQ(applied(), controller_->videoCompressionOptions());
  EXPECT_TRUE(controller_->isCompressed());
  EXPECT_FALSE(controller_->isCustomVideoCompression());
  EXPECT_EQ(storedIndex(), kSharing);
}

TEST_F(CompressionChoice, NoneTakesTheOptionsOffTheOutput) {
  choose(kSharing);
  choose(0);
  EXPECT_EQ(applied(), nullptr);
  EXPECT_EQ(storedIndex(), 0);
}

TEST_F(CompressionChoice, TheOtherFileOutputAndTheSoundNeverGetOptions) {
  choose(kSharing);
  EXPECT_THAT(fileOutput().compression, IsEmpty());
  EXPECT_FALSE(movieFileOutput().compression.contains(platform::QTMediaTypeSound));
}

TEST_F(CompressionChoice, TheSameOptionsAgainDoNothing) {
  choose(kSharing);
  settings_.setIntegerForKey(ZQACCaptureCompression, 17);
  journal_.clear();
  choose(kSharing);
  EXPECT_EQ(storedIndex(), 17);
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(CompressionChoice, StopsTheRunningSessionAndStartsItAgain) {
  selectDevice(platform::AVCTransportControls{0, 0});
  ASSERT_TRUE(platform_.parts.running);
  choose(kSharing);
  EXPECT_THAT(linesOf({"session", "compression"}),
              ElementsAre("session: stop", "compression: vide preset sharing", "session: start"));
}

TEST_F(CompressionChoice, AStoredIndexThatIsNoneStaysStoredAtTheStart) {
  settings_.setIntegerForKey(ZQACCaptureCompression, 9);
  controller_.reset();
  platform_.parts = {};
  makeController();
  EXPECT_FALSE(controller_->isCompressed());
  EXPECT_EQ(storedIndex(), 9);
}

TEST_F(CompressionChoice, AStoppedSessionWithAnInputIsStarted) {
  selectDevice(platform::AVCTransportControls{0, 0});
  controller_->stopDevice();
  ASSERT_FALSE(platform_.parts.running);
  journal_.clear();
  choose(kSharing);
  EXPECT_THAT(linesOf({"session", "compression"}), ElementsAre("compression: vide preset sharing", "session: start"));
}

TEST_F(CompressionChoice, CustomThatFailsIsAppliedWithoutASessionAndTold) {
  storeCustomData();
  compression_.script.copyError = -4;
  choose(kCustom);
  ASSERT_NE(applied(), nullptr);
  EXPECT_EQ(compression_.made->session, nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("SCCopyCompressionSessionOptions() failed with error -4"));
}

TEST_F(CompressionChoice, StoredDataOfNoBytesIsDataAndNoDialogComes) {
  settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{});
  choose(kCustom);
  EXPECT_EQ(compression_.dialogs, 0);
}

TEST_F(CompressionChoice, WithoutAnInputTheSessionStaysStopped) {
  choose(kSharing);
  EXPECT_FALSE(platform_.parts.running);
}

TEST_F(CompressionChoice, CustomTheFirstTimeShowsTheDialogAndStoresWhatWasChosen) {
  compression_.script.chosen = {7};
  choose(kCustom);
  EXPECT_EQ(compression_.dialogs, 1);
  EXPECT_EQ(settings_.objectForKey(ZQACCaptureCompressionData), platform::SettingValue(CompressionData{7}));
  EXPECT_TRUE(controller_->isCustomVideoCompression());
  EXPECT_EQ(applied(), compression_.made);
}

TEST_F(CompressionChoice, CustomLaterLoadsAndStoresWithoutADialog) {
  choose(kCustom);
  const auto first = compression_.made;
  int stores = 0;
  const auto observation = settings_.observe({ZQACCaptureCompressionData}, [&](const std::string&) { ++stores; });
  controller_->updateVideoCompression();
  EXPECT_EQ(compression_.dialogs, 1);
  EXPECT_EQ(stores, 1);
  EXPECT_NE(compression_.made, first);
}

TEST_F(CompressionChoice, CustomHasTheStoredSize) {
  storeCustomData();
  settings_.setIntegerForKey(ZQACCaptureCompressionSize, 4);
  choose(kCustom);
  EXPECT_EQ(compression_.made->width, 1980);
  EXPECT_EQ(compression_.made->height, 1080);
  settings_.setIntegerForKey(ZQACCaptureCompressionSize, 7);
  controller_->updateVideoCompression();
  EXPECT_EQ(compression_.made->width, 0);
  EXPECT_EQ(compression_.made->height, 0);
}

TEST_F(CompressionChoice, CustomThatWasCancelledIsAppliedWithoutASession) {
  compression_.script.dialogResult = 1;
  choose(kCustom);
  ASSERT_NE(applied(), nullptr);
  EXPECT_EQ(compression_.made->session, nullptr);
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(CompressionChoice, ChangingCustomShowsTheDialogWithTheStoredSettings) {
  storeCustomData();
  choose(kCustom);
  ASSERT_EQ(compression_.dialogs, 0);
  compression_.script.chosen = {5, 5};
  controller_->changeCustomCompression();
  EXPECT_EQ(compression_.dialogs, 1);
  EXPECT_EQ(compression_.shownInDialog, (CompressionData{1, 2}));
  EXPECT_EQ(dynamic_cast<test::FakeSessionOptions&>(*compression_.made->session).madeFrom, (CompressionData{5, 5}));
}

TEST_F(CompressionChoice, AChangeAnnouncesWhetherItIsCustom) {
  Lines announced;
  const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
    if (change == KeyChange::didChange) announced.push_back(key);
  });
  choose(kSharing);
  EXPECT_THAT(announced, testing::UnorderedElementsAre("videoCompressionOptions", "customVideoCompression"));
}

}  // namespace
}  // namespace zq

// Compression, size, options sheet and movie folder of the recapture controller.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/compression_options.h"
#include "capture/settings_keys.h"
#include "outlets/plain_outlets.h"
#include "support/recapture_fixture.h"

namespace zq {
namespace {

using test::CompressionData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FakeOpenPanel final : public outlets::OpenPanel {
 public:
  int runModal() override { return answer; }
  std::string filename() const override { return "/movies"; }
  int answer = outlets::kOKButton;
};

class RecaptureOptions : public test::RecaptureTest {
 protected:
  RecaptureOptions() {
    outlets_.compressionOptionsPopup = &popUp_;
    outlets_.customChangeButton = &changeButton_;
    outlets_.optionsWindow = &sheet_;
    outlets_.pathPanel = &panel_;
    makeAnew();
  }
  void makeAnew() {
    controller_.reset();
    platform_.parts = {};
    makeController();
    journal_.clear();
  }
  void choose(int index) {
    popUp_.selectItemAtIndex(index);
    controller_->setVideoCompressionOptions(std::any_cast<CompressionValue>(popUp_.representedObjectAtIndex(index)));
  }
  CompressionValue applied() { return movieFileOutput().compression[platform::QTMediaTypeVideo]; }
  Lines announced(const std::function<void()>& operation) {
    Lines lines;
    const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
      lines.push_back((change == KeyChange::willChange ? "will " : "did ") + key);
    });
    operation();
    return lines;
  }
  void listPresets(int count) {
    compression_.identifiers.clear();
    for (int i = 0; i < count; ++i) compression_.identifiers.push_back(std::to_string(i));
    controller_->buildVideoCompressionOptions();
  }

  static constexpr int kCustom = 3;
  outlets::PlainPopUp popUp_;
  outlets::PlainButton changeButton_;
  outlets::PlainSheet sheet_;
  FakeOpenPanel panel_;
};

TEST_F(RecaptureOptions, StartWithNoneWhateverIsStoredForCapture) {
  settings_.setIntegerForKey(ZQACCaptureCompression, 2);
  makeAnew();
  EXPECT_EQ(popUp_.indexOfSelectedItem(), 0);
  EXPECT_EQ(controller_->formatName(), "No compression");
  EXPECT_EQ(popUp_.itemTitleAtIndex(1), "preset sharing");
  EXPECT_EQ(popUp_.itemTitleAtIndex(kCustom), "Custom...");
}

TEST_F(RecaptureOptions, AChoiceIsNotStoredForCapture) {
  choose(1);
  EXPECT_EQ(settings_.objectForKey(ZQACCaptureCompression), std::nullopt);
}

TEST_F(RecaptureOptions, AtMost255PresetsAreListed) {
  listPresets(255);
  EXPECT_THAT(controller_->allVideoCompressionOptions(), SizeIs(257));
}

TEST_F(RecaptureOptions, TheNumberOfPresetsIsOneByte) {
  listPresets(256);
  EXPECT_THAT(controller_->allVideoCompressionOptions(), SizeIs(2));
  listPresets(300);
  EXPECT_THAT(controller_->allVideoCompressionOptions(), SizeIs(300 - 256 + 2));
}

TEST_F(RecaptureOptions, APresetGoesToTheMovieOutputOnly) {
  choose(1);
  EXPECT_EQ(applied(), controller_->videoCompressionOptions());
  EXPECT_THAT(movieFileOutputAlter().compression, IsEmpty());
  EXPECT_EQ(controller_->formatName(), "preset sharing");
}

TEST_F(RecaptureOptions, AChoiceStopsTheSessionAndStartsItAgain) {
  selectDevice(kStopped);
  choose(1);
  EXPECT_THAT(journal_.linesOf({"session", "compression"}),
              ElementsAre("session: stop", "compression: vide preset sharing", "session: start"));
}

TEST_F(RecaptureOptions, NoneTakesTheOptionsOffTheOutput) {
  choose(1);
  choose(0);
  EXPECT_EQ(applied(), nullptr);
  EXPECT_EQ(controller_->formatName(), "No compression");
}

TEST_F(RecaptureOptions, EachUpdateAnnouncesWhetherItIsCustom) {
  EXPECT_THAT(announced([this] { choose(1); }),
              ElementsAre("will isCustomVideoCompression", "did isCustomVideoCompression"));
}

TEST_F(RecaptureOptions, CustomSharesTheSettingsOfCapture) {
  settings_.setObjectForKey(ZQACCaptureCompressionData, CompressionData{1, 2});
  settings_.setObjectForKey(ZQACRecaptureCompressionData, CompressionData{3});
  choose(kCustom);
  EXPECT_EQ(compression_.dialogs, 0);
  EXPECT_EQ(dynamic_cast<test::FakeSessionOptions&>(*compression_.made->session).madeFrom, (CompressionData{1, 2}));
  EXPECT_TRUE(controller_->isCustomVideoCompression());
  EXPECT_EQ(controller_->formatName(), "Custom...");
}

TEST_F(RecaptureOptions, ChangingCustomShowsTheDialogAndStoresForCaptureToo) {
  choose(kCustom);
  compression_.script.chosen = {6};
  controller_->changeCustomCompression();
  EXPECT_EQ(settings_.objectForKey(ZQACCaptureCompressionData), platform::SettingValue(CompressionData{6}));
  EXPECT_EQ(settings_.objectForKey(ZQACRecaptureCompressionData), std::nullopt);
}

TEST_F(RecaptureOptions, CustomSwitchesTheChangeButtonOff) {
  changeButton_.setState(true);
  choose(1);
  EXPECT_TRUE(changeButton_.state());
  choose(kCustom);
  EXPECT_FALSE(changeButton_.state());
}

TEST_F(RecaptureOptions, TheSizeTagGivesTheSizeOfCustomPictures) {
  choose(kCustom);
  EXPECT_EQ(compression_.made->width, 160) << "tag 0 at first";
  controller_->setFitToSizeTag(4);
  EXPECT_EQ(controller_->fitToSizeTag(), 4);
  EXPECT_EQ(compression_.made->width, 1980);
  EXPECT_EQ(compression_.made->height, 1080);
  controller_->setFitToSizeTag(7);
  EXPECT_EQ(compression_.made->width, 0);
  EXPECT_EQ(compression_.made->height, 0);
}

TEST_F(RecaptureOptions, ASizeTagRestartsTheSessionWhateverTheChoice) {
  selectDevice(kStopped);
  controller_->setFitToSizeTag(-1);
  EXPECT_EQ(controller_->fitToSizeTag(), -1);
  EXPECT_THAT(journal_.linesOf({"session"}), ElementsAre("session: stop", "session: start"));
}

TEST_F(RecaptureOptions, FollowTheKeyOfItsOwnSettings) {
  EXPECT_THAT(announced([this] { settings_.setObjectForKey(ZQACRecaptureCompressionData, CompressionData{1}); }),
              ElementsAre("will recaptureMovieCompressionData", "did recaptureMovieCompressionData"));
}

TEST_F(RecaptureOptions, WithCompressionTheOtherOutputsFramesAreFollowed) {
  choose(1);
  const test::FrameRecipe recipe = [] {
    test::FrameRecipe frame;
    frame.timecode = test::timecodeAtFrame(frame.system, 5);
    frame.date = test::dateAt(1);
    return frame;
  }();
  movieFileOutput().deliver(test::bufferOf(recipe));
  EXPECT_TRUE(controller_->currentTimecode() == SMPTETime());
  movieFileOutputAlter().deliver(test::bufferOf(recipe));
  EXPECT_EQ(controller_->currentTimecode().mFrames, 5);
}

TEST_F(RecaptureOptions, TheSheetComesAndGoesAndTellsTheFormat) {
  controller_->options();
  EXPECT_TRUE(sheet_.isOnScreen());
  const auto observation = controller_->keys().addObserver(
      [this](const std::string&, KeyChange) { EXPECT_FALSE(sheet_.isOnScreen()) << "it goes before the news"; });
  EXPECT_THAT(announced([this] { controller_->optionsDone(); }), ElementsAre("will formatName", "did formatName"));
  EXPECT_FALSE(sheet_.isOnScreen());
}

TEST_F(RecaptureOptions, ASheetThatOutlivesTheControllerTellsNobody) {
  controller_->options();
  controller_.reset();
  sheet_.endSheet();
  EXPECT_TRUE(sheet_.isOnScreen());
}

TEST_F(RecaptureOptions, AChosenFolderIsWhereMoviesGo) {
  controller_->changePath();
  EXPECT_EQ(controller_->moviePath(), "/movies");
}

TEST_F(RecaptureOptions, ACancelledPanelLeavesTheFolder) {
  controller_->setMoviePath("/before");
  panel_.answer = 0;
  controller_->changePath();
  EXPECT_EQ(controller_->moviePath(), "/before");
}

TEST_F(RecaptureOptions, WithoutOutletsTheirOperationsDoNothing) {
  outlets_.optionsWindow = nullptr;
  outlets_.pathPanel = nullptr;
  outlets_.compressionOptionsPopup = nullptr;
  outlets_.customChangeButton = nullptr;
  makeAnew();
  controller_->options();
  controller_->optionsDone();
  controller_->changePath();
  controller_->setVideoCompressionOptions(QTCustomCompressionOptions::customCompressionOptions());
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_NE(applied(), nullptr);
}

}  // namespace
}  // namespace zq

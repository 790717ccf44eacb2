#include "capture/custom_compression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "capture/settings_keys.h"
#include "support/capture_recorders.h"
#include "support/compression_fakes.h"

namespace zq {
namespace {

using platform::fourCharCode;
using test::CompressionData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class CustomCompressions : public testing::Test {
 protected:
  using SessionOptions = std::shared_ptr<platform::ICMCompressionSessionOptions>;

  SessionOptions ask(const std::optional<CompressionData>& data, const std::string& name,
                     const std::string& mediaType = platform::QTMediaTypeVideo) {
    return custom_.userOptionsFrameRateAtomDataAutosaveNameMediaType(&codecType_, &frameRate_, data, name, mediaType);
  }
  CompressionData stored(const std::string& name) const {
    const auto value = settings_.objectForKey(name);
    return value ? std::get<CompressionData>(*value) : CompressionData();
  }
  static CompressionData madeFrom(const SessionOptions& options) {
    return dynamic_cast<const test::FakeSessionOptions&>(*options).madeFrom;
  }

  const CompressionData given_{1, 2, 3};
  const CompressionData chosen_{9, 9};
  backend::VirtualRuntime runtime_;
  backend::MemorySettings settings_{runtime_};
  test::CaptureLog log_;
  test::FakeCompression platform_;
  CustomCompression custom_{platform_, settings_, log_};
  platform::FourCharCode codecType_ = 0;
  double frameRate_ = 0;
};

TEST_F(CustomCompressions, PicturesAndSoundOpenTheirComponents) {
  EXPECT_NE(ask(given_, ""), nullptr);
  EXPECT_NE(ask(given_, "", platform::QTMediaTypeSound), nullptr);
  EXPECT_THAT(platform_.opened, ElementsAre(Pair(fourCharCode("scdi"), fourCharCode("imag")),
                                            Pair(fourCharCode("scdi"), fourCharCode("audi"))));
  EXPECT_EQ(platform_.openNow, 0);
}

TEST_F(CustomCompressions, AnotherMediaTypeIsRefusedWithoutOpeningAComponent) {
  EXPECT_EQ(ask(given_, "key", "muxx"), nullptr);
  EXPECT_THAT(platform_.opened, IsEmpty());
  EXPECT_THAT(log_.messages(), ElementsAre("Invalid mediaType muxx. Aborting."));
}

TEST_F(CustomCompressions, AComponentThatDoesNotOpenIsLogged) {
  platform_.script.opens = false;
  EXPECT_EQ(ask(given_, "key"), nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("Compression component opening failed"));
}

TEST_F(CustomCompressions, EncodingThroughASessionIsAllowedFirst) {
  ask(given_, "");
  EXPECT_THAT(platform_.infos, ElementsAre(Pair(fourCharCode("pref"), 256)));
}

TEST_F(CustomCompressions, GivenSettingsAreUsedWithoutADialogAndStored) {
  const SessionOptions options = ask(given_, "key");
  ASSERT_NE(options, nullptr);
  EXPECT_EQ(madeFrom(options), given_);
  EXPECT_EQ(platform_.dialogs, 0);
  EXPECT_EQ(stored("key"), given_);
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(CustomCompressions, GivenSettingsGoBeforeStoredOnes) {
  settings_.setObjectForKey("key", chosen_);
  EXPECT_EQ(madeFrom(ask(given_, "key")), given_);
}

TEST_F(CustomCompressions, StoredSettingsAreShownInTheDialogAndWhatIsChosenIsStored) {
  settings_.setObjectForKey("key", given_);
  platform_.script.chosen = chosen_;
  const SessionOptions options = ask(std::nullopt, "key");
  EXPECT_EQ(platform_.dialogs, 1);
  EXPECT_EQ(platform_.shownInDialog, given_);
  EXPECT_EQ(madeFrom(options), chosen_);
  EXPECT_EQ(stored("key"), chosen_);
}

TEST_F(CustomCompressions, WithoutANameNothingIsLoadedOrStored) {
  settings_.setObjectForKey("", given_);
  platform_.script.chosen = chosen_;
  EXPECT_EQ(madeFrom(ask(std::nullopt, "")), chosen_);
  EXPECT_NE(platform_.shownInDialog, given_);
  EXPECT_EQ(stored(""), given_);
}

TEST_F(CustomCompressions, ACancelledDialogIsSilentAndLeavesTheStoredSettings) {
  settings_.setObjectForKey("key", given_);
  platform_.script.chosen = chosen_;
  platform_.script.dialogResult = 1;
  EXPECT_EQ(ask(std::nullopt, "key"), nullptr);
  EXPECT_EQ(stored("key"), given_);
  EXPECT_THAT(log_.messages(), IsEmpty());
  EXPECT_EQ(platform_.openNow, 0);
}

TEST_F(CustomCompressions, AFailedDialogIsLoggedAsARequestForSequences) {
  platform_.script.dialogResult = -50;
  EXPECT_EQ(ask(std::nullopt, "key"), nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("SCRequestSequenceSettings() failed with error -50"));
  EXPECT_EQ(settings_.objectForKey("key"), std::nullopt);
}

TEST_F(CustomCompressions, SettingsThatCannotBeLoadedAreLoggedAndTheRestGoesOn) {
  platform_.script.loadError = -2;
  EXPECT_NE(ask(given_, "key"), nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("SCSetSettingsFromAtomContainer() failed with error -2"));
  EXPECT_NE(stored("key"), given_) << "the component's own settings are stored";
}

TEST_F(CustomCompressions, SettingsThatCannotBeSavedAreLoggedWithTheSameTextAndTheRestGoesOn) {
  platform_.script.saveError = -3;
  EXPECT_NE(ask(given_, "key"), nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("SCSetSettingsFromAtomContainer() failed with error -3"));
  EXPECT_EQ(settings_.objectForKey("key"), std::nullopt);
}

TEST_F(CustomCompressions, OptionsThatCannotBeCopiedAreLoggedAfterTheSettingsWereStored) {
  platform_.script.copyError = -4;
  EXPECT_EQ(ask(given_, "key"), nullptr);
  EXPECT_THAT(log_.messages(), ElementsAre("SCCopyCompressionSessionOptions() failed with error -4"));
  EXPECT_EQ(stored("key"), given_);
  EXPECT_EQ(codecType_, 0U);
  EXPECT_EQ(platform_.openNow, 0);
}

TEST_F(CustomCompressions, CodecAndFrameRateAreReadOutOfFixedPoint) {
  platform_.script.codecType = fourCharCode("apcn");
  platform_.script.frameRate = (29 << 16) + (1 << 15);
  ask(given_, "");
  EXPECT_EQ(codecType_, fourCharCode("apcn"));
  EXPECT_EQ(frameRate_, 29.5);
}

TEST_F(CustomCompressions, ReadOutsThatNobodyWantsAreLeftOut) {
  EXPECT_NE(custom_.userOptionsFrameRateAtomDataAutosaveNameMediaType(nullptr, nullptr, given_, "", "vide"), nullptr);
}

TEST_F(CustomCompressions, TheSessionOptionsGetTheirPropertySwitchedOff) {
  const SessionOptions options = ask(given_, "");
  EXPECT_THAT(dynamic_cast<const test::FakeSessionOptions&>(*options).properties,
              ElementsAre(Pair(Pair(fourCharCode("icso"), fourCharCode("imps")), CompressionData(4, 0))));
}

TEST_F(CustomCompressions, DataOfAnotherKindUnderTheNameCountsAsNone) {
  settings_.setObjectForKey("key", std::string("text"));
  EXPECT_NE(ask(std::nullopt, "key"), nullptr);
  EXPECT_EQ(platform_.dialogs, 1);
}

TEST_F(CustomCompressions, TheOptionsHaveCodecSizeAndSession) {
  settings_.setObjectForKey(ZQACCaptureCompressionData, given_);
  const auto options = custom_.options(3);
  ASSERT_EQ(options, platform_.made);
  EXPECT_EQ(platform_.made->codecType, fourCharCode("avc1"));
  EXPECT_EQ(platform_.made->sizeMode, 0);
  EXPECT_EQ(platform_.made->width, 1280);
  EXPECT_EQ(platform_.made->height, 720);
  EXPECT_EQ(madeFrom(platform_.made->session), given_);
}

TEST_F(CustomCompressions, WithoutSessionOptionsTheOptionsAreMadeAllTheSame) {
  platform_.script.dialogResult = 1;
  EXPECT_NE(custom_.options(0), nullptr);
  EXPECT_EQ(platform_.made->session, nullptr);
  EXPECT_EQ(platform_.made->codecType, 0U);
}

TEST(FitSizes, AreThoseOfTheirTags) {
  EXPECT_EQ(fitSize(0), (FrameSize{160, 120}));
  EXPECT_EQ(fitSize(1), (FrameSize{320, 240}));
  EXPECT_EQ(fitSize(2), (FrameSize{640, 480}));
  EXPECT_EQ(fitSize(3), (FrameSize{1280, 720}));
}

TEST(FitSizes, TheLargestIs1980Wide) {
  EXPECT_EQ(fitSize(4), (FrameSize{1980, 1080}));
}

TEST(FitSizes, OtherTagsHaveNone) {
  for (const int tag : {-1, 5, 7, 1000}) EXPECT_EQ(fitSize(tag), (FrameSize{0, 0})) << tag;
}

}  // namespace
}  // namespace zq

#include "backends/media/compression_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/media/compression_data.h"
#include "backends/media/compression_text.h"
#include "backends/media/encoder_check.h"
#include "backends/media/movie_compression.h"
#include "backends/media/movie_writer_factory.h"
#include "support/dv_recording_log.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using platform::fourCharCode;
using platform::StandardCompressionSubType;
using platform::StandardCompressionSubTypeAudio;
using platform::StandardCompressionType;
using test::DVRecordingLog;
using test::ScratchFolder;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::uint8_t> dataOf(const std::vector<std::string>& texts) {
  const auto settings = settingsFromTexts(texts);
  if (!settings.ok()) throw std::runtime_error(settings.error().text());
  return compressionData(settings.value());
}

class Compressions : public testing::Test {
 protected:
  std::unique_ptr<platform::StandardCompression> openImage(AskForCompression ask = {}) {
    return CompressionPlatform(log_, std::move(ask))
        .openDefaultComponent(StandardCompressionType, StandardCompressionSubType);
  }
  std::shared_ptr<platform::ICMCompressionSessionOptions> sessionOf(const std::vector<std::string>& texts) {
    const auto component = openImage();
    EXPECT_EQ(component->setSettingsFromAtomContainer(dataOf(texts)), 0);
    std::shared_ptr<platform::ICMCompressionSessionOptions> session;
    EXPECT_EQ(component->copyCompressionSessionOptions(session), 0);
    return session;
  }

  DVRecordingLog log_;
  CompressionPlatform platform_{log_};
};

TEST_F(Compressions, AreThoseThatThisMachineHasEncodersFor) {
  EXPECT_THAT(platform_.compressionOptionsIdentifiersForMediaType(platform::QTMediaTypeVideo),
              ElementsAre("h264", "h265", "prores", "ffv1", "ffv1-pcm", "mjpeg", "av1"));
  EXPECT_THAT(platform_.compressionOptionsIdentifiersForMediaType(platform::QTMediaTypeSound), IsEmpty());
  EXPECT_THAT(platform_.compressionOptionsIdentifiersForMediaType(""), IsEmpty());
}

TEST_F(Compressions, AreTheSameObjectEachTime) {
  const auto first = platform_.compressionOptionsWithIdentifier("h264");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->localizedDisplayName(), "H.264");
  EXPECT_EQ(platform_.compressionOptionsWithIdentifier("h264"), first);
  EXPECT_NE(platform_.compressionOptionsWithIdentifier("h265"), first);
}

TEST_F(Compressions, AreNothingForAnIdentifierThatIsNotListed) {
  for (const char* identifier : {"", "H264", "none", "custom"}) {
    EXPECT_EQ(platform_.compressionOptionsWithIdentifier(identifier), nullptr);
  }
}

TEST(EncodersHere, NamesAnEncoderThatIsNotThere) {
  CompressionCodec codec = *codecWithKey("h264");
  codec.key = "missing";
  codec.encoder = "libnothing";
  const Status result = checkEncoders(CompressionSettings(codec));
  ASSERT_FALSE(result.ok());
  EXPECT_THAT(result.error().text(), AllOf(HasSubstr("libnothing"), HasSubstr("Install")));
}

// The standard compression service.

TEST_F(Compressions, HaveAComponentForPicturesAndOneForSound) {
  EXPECT_NE(platform_.openDefaultComponent(StandardCompressionType, StandardCompressionSubType), nullptr);
  EXPECT_NE(platform_.openDefaultComponent(StandardCompressionType, StandardCompressionSubTypeAudio), nullptr);
  EXPECT_EQ(platform_.openDefaultComponent(StandardCompressionType, fourCharCode("text")), nullptr);
  EXPECT_EQ(platform_.openDefaultComponent(fourCharCode("imco"), StandardCompressionSubType), nullptr);
}

TEST_F(Compressions, OfTheUserAreThoseThatWereSet) {
  const auto component = openImage();
  EXPECT_EQ(component->setInfo(platform::scPreferenceFlagsType, platform::scAllowEncodingWithCompressionSession), 0);
  EXPECT_NE(component->setInfo(fourCharCode("none"), 0), 0);
  const auto data = dataOf({"codec=h265", "frameRate=29.97", "quality=30"});
  EXPECT_EQ(component->setSettingsFromAtomContainer(data), 0);
  EXPECT_EQ(component->requestImageSettings(), 0);
  std::vector<std::uint8_t> stored;
  EXPECT_EQ(component->getSettingsAsAtomContainer(stored), 0);
  EXPECT_EQ(stored, data);
  EXPECT_EQ(component->spatialSettings().codecType, fourCharCode("hvc1"));
  EXPECT_EQ(component->temporalSettings().frameRate, 30000 * 65536LL / 1001);
  EXPECT_THAT(log_.lines, IsEmpty());
}

TEST_F(Compressions, OfEachCodecHaveItsCode) {
  const std::map<std::string, platform::FourCharCode> codes{
      {"h264", fourCharCode("avc1")}, {"h265", fourCharCode("hvc1")},  {"prores", fourCharCode("apcn")},
      {"ffv1", fourCharCode("FFV1")}, {"mjpeg", fourCharCode("jpeg")}, {"av1", fourCharCode("av01")}};
  for (const auto& [codec, code] : codes) {
    const auto component = openImage();
    EXPECT_EQ(component->setSettingsFromAtomContainer(dataOf({"codec=" + codec})), 0);
    EXPECT_EQ(component->spatialSettings().codecType, code) << codec;
    EXPECT_EQ(component->temporalSettings().frameRate, 0);
  }
}

TEST_F(Compressions, ChangeAsTheDialogSays) {
  const auto component = openImage([](CompressionSettings& settings) {
    settings.quality = 33;
    return 0;
  });
  EXPECT_EQ(component->requestImageSettings(), 0);
  std::vector<std::uint8_t> stored;
  component->getSettingsAsAtomContainer(stored);
  EXPECT_EQ(stored, dataOf({"quality=33"}));
}

TEST_F(Compressions, StayWhenTheDialogIsCancelledOrFails) {
  for (const std::int32_t answer : {platform::scUserCancelled, -108}) {
    const auto component = openImage([answer](CompressionSettings& settings) {
      settings.quality = 33;
      return answer;
    });
    EXPECT_EQ(component->requestImageSettings(), answer);
    std::vector<std::uint8_t> stored;
    component->getSettingsAsAtomContainer(stored);
    EXPECT_EQ(stored, dataOf({}));
  }
}

TEST_F(Compressions, StayAndSayWhyWhenStoredOnesCannotBeRead) {
  const auto component = openImage();
  const std::string_view newer = R"({"format":"deckhand-compression","version":9,"settings":{}})";
  EXPECT_LT(
      component->setSettingsFromAtomContainer({reinterpret_cast<const std::uint8_t*>(newer.data()), newer.size()}), 0);
  EXPECT_LT(component->setSettingsFromAtomContainer({}), 0);
  ASSERT_THAT(log_.lines, SizeIs(2));
  EXPECT_THAT(log_.lines[0].message, HasSubstr("later version"));
  EXPECT_THAT(log_.lines[1].message, HasSubstr("damaged"));
  EXPECT_EQ(component->spatialSettings().codecType, fourCharCode("avc1"));
}

TEST_F(Compressions, ThatCannotBeReadAreNotReplacedUntilTheUserHasChosen) {
  const auto component = openImage();
  const std::vector<std::uint8_t> damaged{'{', 'x'};
  EXPECT_NE(component->setSettingsFromAtomContainer(damaged), 0);
  std::vector<std::uint8_t> data;
  EXPECT_NE(component->getSettingsAsAtomContainer(data), 0);
  EXPECT_TRUE(data.empty());
  EXPECT_EQ(component->requestImageSettings(), 0);
  EXPECT_EQ(component->getSettingsAsAtomContainer(data), 0);
  EXPECT_FALSE(data.empty());
}

TEST_F(Compressions, OfSoundAskNothing) {
  const auto sound = platform_.openDefaultComponent(StandardCompressionType, StandardCompressionSubTypeAudio);
  EXPECT_LT(sound->requestImageSettings(), 0);
  std::shared_ptr<platform::ICMCompressionSessionOptions> session;
  EXPECT_LT(sound->copyCompressionSessionOptions(session), 0);
  EXPECT_EQ(session, nullptr);
}

TEST_F(Compressions, TakeTheOnePropertyThatTheyKnow) {
  const auto session = sessionOf({});
  const std::vector<std::uint8_t> value(4);
  EXPECT_EQ(session->setProperty(fourCharCode("icso"), fourCharCode("imps"), value), 0);
  EXPECT_LT(session->setProperty(fourCharCode("icso"), fourCharCode("imps"), std::span(value).first(3)), 0);
  EXPECT_LT(session->setProperty(fourCharCode("icso"), fourCharCode("othr"), value), 0);
  EXPECT_LT(session->setProperty(fourCharCode("othr"), fourCharCode("imps"), value), 0);
}

// Own settings as a choice.

TEST_F(Compressions, OfOwnSettingsHaveTheSizeThatWasAskedFor) {
  const auto options = platform_.videoCompressionOptions(fourCharCode("avc1"), 0, 1980, 1080, sessionOf({"sound=pcm"}));
  const auto* compression = dynamic_cast<const MovieCompression*>(options.get());
  ASSERT_NE(compression, nullptr);
  EXPECT_TRUE(compression->size() == (PictureSize{1980, 1080}));
  EXPECT_THAT(compression->containers(), ElementsAre("mov", "mkv"));
  EXPECT_THAT(log_.lines, IsEmpty());
}

TEST_F(Compressions, OfOwnSettingsCannotHaveEverySize) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{
           {0, 480}, {640, 0}, {-640, 480}, {641, 480}, {640, 481}, {2, 2}, {99998, 480}}) {
    EXPECT_EQ(platform_.videoCompressionOptions(fourCharCode("avc1"), 0, width, height, sessionOf({})), nullptr);
    ASSERT_FALSE(log_.lines.empty());
    EXPECT_THAT(log_.lines.back().message, HasSubstr(std::to_string(width) + " x " + std::to_string(height)));
  }
}

TEST_F(Compressions, OfOwnSettingsSayWhenTheyAreForAnotherCodec) {
  EXPECT_NE(platform_.videoCompressionOptions(fourCharCode("apcn"), 0, 0, 0, sessionOf({})), nullptr);
  ASSERT_THAT(log_.lines, SizeIs(1));
  EXPECT_THAT(log_.lines[0].message, AllOf(HasSubstr("'apcn'"), HasSubstr("h264")));
}

TEST_F(Compressions, WithoutSessionOptionsWriteAsReceivedAndSaySo) {
  const ScratchFolder folder;
  const auto options = platform_.videoCompressionOptions(fourCharCode("avc1"), 0, 640, 480, nullptr);
  ASSERT_NE(options, nullptr);
  EXPECT_TRUE(MovieWriterFactory(&log_).create(folder.file("a.dv"), options).ok());
  ASSERT_THAT(log_.lines, SizeIs(1));
  EXPECT_EQ(log_.lines[0].level, LogLevel::warning);
  EXPECT_THAT(log_.lines[0].message, AllOf(HasSubstr(folder.file("a.dv")), HasSubstr("as received")));
  EXPECT_FALSE(MovieWriterFactory(&log_).create(folder.file("a.mp4"), options).ok());
}

}  // namespace
}  // namespace zq::media

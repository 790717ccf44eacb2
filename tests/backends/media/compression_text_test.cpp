#include "backends/media/compression_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/media/compression_data.h"

namespace zq::media {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

std::string errorOf(const std::vector<std::string>& texts) {
  const auto settings = settingsFromTexts(texts);
  return settings.ok() ? "" : settings.error().text();
}

std::vector<std::uint8_t> bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

std::string dataErrorOf(std::string_view text) {
  const auto settings = readCompressionData(bytesOf(text));
  return settings.ok() ? "" : settings.error().text();
}

TEST(CompressionText, SaysNothingForTheStandardSettingsOfH264) {
  const auto settings = settingsFromTexts({});
  ASSERT_TRUE(settings.ok());
  EXPECT_THAT(textsOf(settings.value()), ElementsAre("codec=h264", "quality=20", "speed=medium", "scan=deinterlace",
                                                     "frameRate=0", "sound=aac", "keyframes=100"));
}

TEST(CompressionText, LeavesOutWhatTheCodecHasNoChoiceOf) {
  const auto settings = settingsFromTexts({"codec=ffv1"});
  ASSERT_TRUE(settings.ok());
  EXPECT_THAT(textsOf(settings.value()), ElementsAre("codec=ffv1", "scan=keep", "frameRate=0", "sound=flac"));
}

TEST(CompressionText, TakesEachKeyInAnyOrder) {
  const std::vector<std::string> texts{"codec=h265", "quality=30",      "speed=slow", "scan=deinterlace",
                                       "sound=pcm",  "frameRate=29.97", "keyframes=7"};
  const auto settings = settingsFromTexts({texts.rbegin(), texts.rend()});
  ASSERT_TRUE(settings.ok()) << settings.error().text();
  EXPECT_EQ(settings.value().codec, codecWithKey("h265"));
  EXPECT_EQ(settings.value().quality, 30);
  EXPECT_EQ(settings.value().speed, "slow");
  EXPECT_EQ(settings.value().sound, SoundCodec::pcm);
  EXPECT_EQ(settings.value().frameRate, (FrameRate{30000, 1001}));
  EXPECT_EQ(settings.value().keyframes, 7);
}

TEST(CompressionText, NamesTheKeysWhenOneDoesNotExist) {
  for (const char* text : {"colour=red", "quality", "", "=", "Quality=3", "codec"}) {
    EXPECT_THAT(errorOf({text}), AllOf(HasSubstr("\"" + std::string(text) + "\""), HasSubstr("keyframes"))) << text;
  }
}

TEST(CompressionText, NamesWhatIsAllowedWhenAValueIsNot) {
  EXPECT_THAT(errorOf({"codec=divx"}), AllOf(HasSubstr("codec=divx"), HasSubstr("h264, h265, prores")));
  EXPECT_THAT(errorOf({"quality=52"}), AllOf(HasSubstr("quality=52"), HasSubstr("from 0 to 51")));
  EXPECT_THAT(errorOf({"quality=-1"}), HasSubstr("from 0 to 51"));
  EXPECT_THAT(errorOf({"quality=20x"}), HasSubstr("from 0 to 51"));
  EXPECT_THAT(errorOf({"quality="}), HasSubstr("from 0 to 51"));
  EXPECT_THAT(errorOf({"quality=99999999999999999999"}), HasSubstr("from 0 to 51"));
  EXPECT_THAT(errorOf({"codec=prores", "quality=4"}), HasSubstr("from 0 to 3"));
  EXPECT_THAT(errorOf({"codec=ffv1", "quality=1"}), HasSubstr("it is 0 and no other"));
  EXPECT_THAT(errorOf({"speed=warp"}), HasSubstr("ultrafast"));
  EXPECT_THAT(errorOf({"codec=prores", "speed=fast"}), HasSubstr("Leave it out"));
  EXPECT_THAT(errorOf({"scan=progressive"}), HasSubstr("keep or deinterlace"));
  EXPECT_THAT(errorOf({"sound=mp3"}), HasSubstr("aac, pcm or flac"));
  EXPECT_THAT(errorOf({"frameRate=61"}), HasSubstr("59.94"));
  EXPECT_THAT(errorOf({"frameRate=-5"}), HasSubstr("59.94"));
  EXPECT_THAT(errorOf({"keyframes=0"}), HasSubstr("from 1 to 1000"));
}

TEST(CompressionText, RefusesWhatDoesNotGoTogether) {
  EXPECT_THAT(errorOf({"codec=h265", "scan=keep"}), HasSubstr("h264, prores or ffv1"));
  EXPECT_THAT(errorOf({"codec=prores", "frameRate=25"}), HasSubstr("scan=deinterlace"));
  EXPECT_THAT(errorOf({"codec=prores", "sound=flac"}), AllOf(HasSubstr("sound=flac"), HasSubstr("aac, pcm")));
  EXPECT_THAT(errorOf({"quality=1", "quality=1"}), HasSubstr("twice"));
}

TEST(CompressionText, HelpNamesEveryKeyAndCodec) {
  const std::string help = "\n" + compressionTextHelp();
  for (const char* key : {"codec", "quality", "speed", "scan", "frameRate", "sound", "keyframes"}) {
    EXPECT_THAT(help, HasSubstr("\n  " + std::string(key))) << key;
  }
  for (const CompressionCodec& codec : compressionCodecs()) EXPECT_THAT(help, HasSubstr(codec.key));
}

TEST(CompressionData, HoldsTheSettingsOfEachCodec) {
  for (const CompressionCodec& codec : compressionCodecs()) {
    CompressionSettings settings(codec);
    settings.scan = Scan::deinterlace;
    settings.frameRate = {24000, 1001};
    settings.quality = codec.quality.least;
    const auto read = readCompressionData(compressionData(settings));
    ASSERT_TRUE(read.ok()) << read.error().text();
    EXPECT_TRUE(read.value() == settings) << codec.key;
  }
}

TEST(CompressionData, WithoutLaterKeysHasTheirStandardValues) {
  const auto read =
      readCompressionData(bytesOf(R"({"format":"deckhand-compression","version":1,"settings":{"codec":"av1"}})"));
  ASSERT_TRUE(read.ok()) << read.error().text();
  EXPECT_TRUE(read.value() == CompressionSettings(*codecWithKey("av1")));
}

TEST(CompressionData, OfALaterVersionSaysSo) {
  EXPECT_THAT(dataErrorOf(R"({"format":"deckhand-compression","version":2,"settings":{"hue":"3"}})"),
              AllOf(HasSubstr("later version"), HasSubstr("Update")));
}

TEST(CompressionData, ThatIsCutOffAnywhereIsRefused) {
  const std::vector<std::uint8_t> data = compressionData(CompressionSettings(compressionCodecs().front()));
  for (std::size_t size = 0; size < data.size(); ++size) {
    EXPECT_FALSE(readCompressionData(std::span(data).first(size)).ok()) << size;
  }
}

TEST(CompressionData, WithAnyByteChangedIsReadOrRefusedAndNeverOutOfRange) {
  const std::vector<std::uint8_t> data = compressionData(CompressionSettings(compressionCodecs().front()));
  for (std::size_t i = 0; i < data.size(); ++i) {
    for (const int mask : {0x01, 0x04, 0x20, 0x80}) {
      std::vector<std::uint8_t> damaged = data;
      damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ mask);
      const auto read = readCompressionData(damaged);
      if (!read.ok()) continue;
      EXPECT_TRUE(read.value().codec->quality.contains(read.value().quality));
      EXPECT_TRUE(read.value().codec->keyframes.contains(read.value().keyframes));
    }
  }
}

TEST(CompressionData, OfAnotherKindIsRefused) {
  for (const char* text : {"", "[]", "null", "17", "{}", R"({"format":"deckhand-compression"})",
                           R"({"format":"deckhand-compression","version":"1","settings":{}})",
                           R"({"format":"deckhand-compression","version":0,"settings":{}})",
                           R"({"format":"deckhand-compression","version":-1,"settings":{}})",
                           R"({"format":"deckhand-compression","version":1})",
                           R"({"format":"deckhand-compression","version":1,"settings":[]})",
                           R"({"format":"deckhand-compression","version":1,"settings":{"quality":20}})",
                           R"({"format":"deckhand-compression","version":1,"settings":{"quality":"99"}})",
                           R"({"format":"deckhand-compression","version":1,"settings":{"hue":"3"}})",
                           R"({"format":"other","version":1,"settings":{}})"}) {
    EXPECT_THAT(dataErrorOf(text), AllOf(HasSubstr("cannot be read"), HasSubstr("Choose the settings anew"))) << text;
  }
  EXPECT_FALSE(readCompressionData(std::vector<std::uint8_t>(100000, '[')).ok());
}

}  // namespace
}  // namespace zq::media

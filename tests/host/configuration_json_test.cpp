#include "host/configuration_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zq::host {
namespace {

using platform::SettingValue;

StoredConfiguration archive() {
  return {{{"optionsName", std::string("archive")},
           {"detectScenes", true},
           {"nbDropFrame", std::int64_t{5}},
           {"detectEndTape", false},
           {"detectEndTapeSecond", std::int64_t{3}},
           {"actionAfterRecord", std::int64_t{1}},
           {"grabSamples", true},
           {"samplingIntervalInSecs", std::int64_t{10}},
           {"grabMovie", true},
           {"captureMovieCompression", std::int64_t{2}},
           {"fitSizeTag", std::int64_t{4}},
           {"captureMovieCompressionData", std::vector<std::uint8_t>{0, 1, 255}}},
          "large"};
}

std::string documentWith(const std::string& members) {
  return R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "a")" + members + "}]}";
}

std::string refusalOf(const std::string& text) {
  const auto read = readConfigurations(text, "list.json");
  return read.ok() ? "" : read.error().text();
}

TEST(ConfigurationJson, HoldsEveryValueWithItsKind) {
  StoredConfiguration older{{{"optionsName", std::string("older")}, {"captureFormat", std::int64_t{7}}}, ""};
  const auto read = readConfigurations(configurationsJson({archive(), older}).dump(), "list.json");
  ASSERT_TRUE(read.ok()) << read.error().text();
  ASSERT_EQ(read.value().size(), 2U);
  EXPECT_EQ(read.value()[0].values, archive().values);
  EXPECT_EQ(read.value()[0].preset, "large");
  EXPECT_EQ(read.value()[1].values, older.values);
  EXPECT_EQ(read.value()[1].preset, "");
}

TEST(ConfigurationJson, WritesDataAsBase64AndTheNameFirst) {
  const std::string text = configurationJson(archive()).dump();
  EXPECT_TRUE(text.starts_with(R"({"optionsName":"archive","detectScenes":true)")) << text;
  EXPECT_NE(text.find(R"("captureMovieCompressionData":"AAH/")"), std::string::npos) << text;
}

TEST(ConfigurationJson, ANewerVersionIsRefusedWhole) {
  const std::string newer = R"({"deckhandConfigurations": 2, "configurations": []})";
  EXPECT_EQ(refusalOf(newer),
            "list.json cannot be read. It is of a newer Deckhand than this one. Nothing of it was taken, and nothing "
            "changed.");
}

TEST(ConfigurationJson, RefusesWhatIsNoListOfConfigurations) {
  for (const char* wrong :
       {"", "{", "[]", "null", "7", "{}", R"({"deckhandConfigurations": 1})", R"({"configurations": []})",
        R"({"deckhandConfigurations": 0, "configurations": []})",
        R"({"deckhandConfigurations": "1", "configurations": []})",
        R"({"deckhandConfigurations": 1, "configurations": {}})",
        R"({"deckhandConfigurations": 1, "configurations": [7]})",
        R"({"deckhandConfigurations": 1, "configurations": [{}]})",
        R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": " "}]})",
        R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "a\nb"}]})",
        R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "a"}, {"optionsName": "a"}]})"}) {
    EXPECT_NE(refusalOf(wrong), "") << wrong;
  }
}

TEST(ConfigurationJson, RefusesWhatAnOptionDoesNotTake) {
  EXPECT_EQ(refusalOf(documentWith("")), "") << "the others are wrong for what they add";
  for (const char* wrong :
       {R"(, "detectScenes": 1)", R"(, "detectScenes": null)", R"(, "nbDropFrame": -1)", R"(, "nbDropFrame": 1.5)",
        R"(, "detectEndTapeSecond": 0)", R"(, "actionAfterRecord": 3)", R"(, "samplingIntervalInSecs": 3)",
        R"(, "captureMovieCompression": -1)", R"(, "captureMovieCompression": 99999999999999999999)",
        R"(, "fitSizeTag": 6)", R"(, "captureMovieCompressionData": "A")", R"(, "captureMovieCompressionData": [])",
        R"(, "colour": "blue")", R"(, "preset": 4)"}) {
    EXPECT_NE(refusalOf(documentWith(wrong)), "") << wrong;
  }
}

TEST(ConfigurationJson, SaysWhatIsWrongAndWhere) {
  EXPECT_NE(refusalOf(documentWith(R"(, "colour": "blue")")).find("configuration 1: colour is no option"),
            std::string::npos)
      << refusalOf(documentWith(R"(, "colour": "blue")"));
}

TEST(ConfigurationNames, AreOfCharactersThatCanBeSeen) {
  for (const char* right : {"archive", "web 2", "Größe", "日本", "a/b", "\xC2\xA0x"}) {
    EXPECT_TRUE(checkConfigurationName(right).ok()) << right;
  }
  for (const char* wrong : {"", " ", "   ", "a\tb", "a\nb", "\x1b[31m", "\x7f", "a\xC2\x85", "\xff", "\xC3"}) {
    EXPECT_FALSE(checkConfigurationName(wrong).ok()) << wrong;
  }
}

}  // namespace
}  // namespace zq::host

// Named configurations, as a user keeps them.

#include <gtest/gtest.h>

#include "support/compression_program.h"

namespace zq::test {
namespace {

class ConfigProgram : public CompressionProgram {
 protected:
  /// The names that are stored, in their order.
  Words names() const {
    const ProgramResult result = config({"list", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    Words found;
    const json list = json::parse(result.out, nullptr, false);
    for (const json& held : list.at("configurations")) found.push_back(held.at("name"));
    return found;
  }
  json shown(const std::string& name) const {
    return json::parse(config({"show", name, "--json"}).out, nullptr, false);
  }
  void save(const std::string& name, const Words& more = {}) const {
    Words words{"save", name};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramResult result = config(words);
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
  void expectRefused(const ProgramResult& result, int exitCode, const std::string& message, const Words& left) const {
    CompressionProgram::expectRefused(result, exitCode, message);
    EXPECT_EQ(names(), left);
  }
};

TEST_F(ConfigProgram, ThereAreNoneAtFirst) {
  EXPECT_EQ(names(), Words{});
  EXPECT_EQ(config({"list"}).out, "name  compression\n");
}

TEST_F(ConfigProgram, KeepsTheSettingsUnderANameInTheOrderOfSaving) {
  save("web", {"--compression", "h264", "--set", "sampleInterval=4"});
  save("archive");
  EXPECT_EQ(names(), (Words{"web", "archive"}));
  json web = shown("web");
  EXPECT_EQ(web.at("optionsName"), "web");
  EXPECT_EQ(web.at("samplingIntervalInSecs"), 20);
  EXPECT_EQ(web.at("detectScenes"), true);
  EXPECT_EQ(web.at("preset"), "h264");
  EXPECT_EQ(shown("archive").at("preset"), "none");
  EXPECT_EQ(config({"list"}).out, "name     compression\nweb      H.264\narchive  None\n");
}

TEST_F(ConfigProgram, SavingChangesNoSetting) {
  save("web", {"--compression", "custom", "--custom", "codec=mjpeg", "--size", "tape", "--set", "nbDropFrame=3"});
  for (const char* line : {"captureMovieCompression=0", "fitSizeTag=2", "nbDropFrame=0"}) {
    EXPECT_NE(settings().find(line), std::string::npos) << settings();
  }
  EXPECT_EQ(settings().find("captureMovieCompressionData=@"), std::string::npos) << settings();
}

TEST_F(ConfigProgram, StartsFromTheStoredSettings) {
  writeSettings("nbDropFrame=7\nactionAfterRecord=1\n");
  save("a", {"--set", "actionAfterRecord=0"});
  EXPECT_EQ(shown("a").at("nbDropFrame"), 7);
  EXPECT_EQ(shown("a").at("actionAfterRecord"), 0);
}

TEST_F(ConfigProgram, ShowsAllThatAConfigurationSays) {
  save("web", {"--compression", "custom", "--custom", "codec=mjpeg", "--size", "1280x720"});
  const std::string text = config({"show", "web"}).out;
  for (const char* line :
       {"optionsName              web\n", "compression              Custom\n", "custom                   codec=mjpeg\n",
        "fitSizeTag               3 (1280x720; 320x240 when the configuration is used)\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << text;
  }
}

TEST_F(ConfigProgram, ACaptureGoesByItForThatRun) {
  makeTape();
  save("web", {"--compression", "custom", "--custom", "codec=mjpeg", "--size", "320x240", "--set", "sampleInterval=0"});
  const std::string before = settings();
  EXPECT_EQ(capture({"--config", "web"}).exitCode, 0);
  EXPECT_EQ(settings(), before);
  EXPECT_EQ(report().at("configuration"), "web");
  EXPECT_EQ(report().at("settings").at("sampleInterval"), 0);
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T13-30-45.mov"), "mjpeg,320,240,50");
}

TEST_F(ConfigProgram, ASavedSizeComesBackAsZeroOrOneAndTheCommandLineComesAfterIt) {
  makeTape();
  save("web", {"--compression", "custom", "--custom", "codec=mjpeg", "--size", "1280x720"});
  EXPECT_EQ(shown("web").at("fitSizeTag"), 3);
  EXPECT_EQ(capture({"--config", "web"}).exitCode, 0);
  EXPECT_EQ(report().at("settings").at("fitSizeTag"), 1);
  std::filesystem::remove_all(folder / "clips");
  EXPECT_EQ(capture({"--config", "web", "--set", "fitSizeTag=0"}).exitCode, 0);
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T13-30-45.mov"), "mjpeg,160,120,50");
  std::filesystem::remove_all(folder / "clips");
  EXPECT_EQ(capture({"--config", "web", "--size", "tape"}).exitCode, 0);
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T13-30-45.mov"), "mjpeg,720,576,50");
}

TEST_F(ConfigProgram, AnExportIsImportedWhereNothingIs) {
  save("web", {"--compression", "custom", "--custom", "codec=mjpeg"});
  save("archive");
  save("other");
  const std::string file = folder / "list.json";
  EXPECT_EQ(config({"export", file, "archive", "web"}).exitCode, 0);
  const json web = shown("web");
  for (const char* name : {"web", "archive", "other"}) EXPECT_EQ(config({"delete", name}).exitCode, 0);
  EXPECT_EQ(names(), Words{});
  EXPECT_EQ(config({"import", file}).out, "2 configurations imported: archive, web\n");
  EXPECT_EQ(names(), (Words{"archive", "web"}));
  EXPECT_EQ(shown("web"), web);
}

TEST_F(ConfigProgram, ReplacesOnlyWhereThatIsAskedFor) {
  save("a");
  save("b");
  expectRefused(config({"save", "a", "--set", "nbDropFrame=5"}), 1, "There is a configuration \"a\" already",
                {"a", "b"});
  EXPECT_EQ(shown("a").at("nbDropFrame"), 0);
  save("a", {"--set", "nbDropFrame=5", "--replace"});
  EXPECT_EQ(shown("a").at("nbDropFrame"), 5);
  EXPECT_EQ(names(), (Words{"a", "b"}));
  EXPECT_EQ(config({"export", folder / "list.json", "a"}).exitCode, 0);
  save("a", {"--replace"});
  expectRefused(config({"import", folder / "list.json"}), 1, "already, and it was not touched", {"a", "b"});
  EXPECT_EQ(shown("a").at("nbDropFrame"), 0);
  EXPECT_EQ(config({"import", folder / "list.json", "--replace"}).exitCode, 0);
  EXPECT_EQ(shown("a").at("nbDropFrame"), 5);
}

TEST_F(ConfigProgram, RefusesNamesThatThereAreNot) {
  save("a");
  for (const char* action : {"show", "delete"}) {
    expectRefused(config({action, "b"}), 1, "There is no configuration \"b\". Stored are: a.", {"a"});
  }
  expectRefused(config({"export", folder / "list.json", "a", "b"}), 1, "There is no configuration \"b\"", {"a"});
  EXPECT_FALSE(std::filesystem::exists(folder / "list.json"));
}

TEST_F(ConfigProgram, RefusesNamesThatAreNone) {
  for (const char* name : {"", " ", "a\nb", "\x1b[2J", "\xff"}) {
    const ProgramResult result = config({"save", name});
    EXPECT_EQ(result.exitCode, 2) << name;
    EXPECT_EQ(names(), Words{});
  }
}

TEST_F(ConfigProgram, RefusesWhatASettingDoesNotTake) {
  expectRefused(config({"save", "a", "--set", "nbDropFrame=many"}), 2, "a whole number", {});
  expectRefused(config({"save", "a", "--compression", "betamax"}), 2, "There is no compression", {});
  expectRefused(config({"save", "a", "--custom", "codec=h264"}), 2, "--compression custom only", {});
}

TEST_F(ConfigProgram, SaysThatTheVolumeIsNotKept) {
  expectRefused(config({"save", "a", "--set", "movieVolume=0.5"}), 2, "a configuration does not keep the volume", {});
}

// It wins over the other keys, and means settings that are to be chosen anew.
TEST_F(ConfigProgram, ShowsWhatAnOldKeyMeans) {
  writeText(folder / "list.json", R"({"deckhandConfigurations": 1, "configurations":
      [{"optionsName": "own", "captureFormat": 7}, {"optionsName": "dv", "captureFormat": 1}]})");
  EXPECT_EQ(config({"import", folder / "list.json"}).exitCode, 0);
  EXPECT_NE(config({"show", "own"}).out.find("compression              Custom"), std::string::npos);
  EXPECT_NE(config({"show", "dv"}).out.find("compression              None"), std::string::npos);
}

TEST_F(ConfigProgram, AnExportWritesOverNothing) {
  save("a");
  writeText(folder / "mine.json", "mine");
  expectRefused(config({"export", folder / "mine.json"}), 1, "exists already and was not touched", {"a"});
  EXPECT_EQ(readText(folder / "mine.json"), "mine");
}

TEST_F(ConfigProgram, AnImportThatIsDamagedOrNewerIsRefusedWhole) {
  save("a");
  const std::string file = folder / "list.json";
  for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
           {"", "It is not JSON, or damaged"},
           {R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "b"}, {)",
            "It is not JSON, or damaged"},
           {R"({"deckhandConfigurations": 2, "configurations": [{"optionsName": "b"}]})", "a newer Deckhand"},
           {R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "b"}, {"optionsName": ""}]})",
            "configuration 2"},
           {R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "b", "nbDropFrame": "x"}]})",
            "nbDropFrame"},
           {R"({"deckhandConfigurations": 1, "configurations":
               [{"optionsName": "b", "captureMovieCompressionData": "AAAA"}]})",
            "the settings of custom compression in \"b\" cannot be read"}}) {
    writeText(file, text);
    expectRefused(config({"import", file, "--replace"}), 1, message, {"a"});
  }
  expectRefused(config({"import", folder / "none.json"}), 1, "There is no file", {"a"});
  expectRefused(config({"import", folder.path()}), 1, "is not a file of configurations", {"a"});
}

TEST_F(ConfigProgram, StoredConfigurationsThatCannotBeReadAreNotWrittenOver) {
  const std::string line = R"(configurations="{\"deckhandConfigurations\":1,\"configu")";
  writeSettings(line + "\n");
  writeText(folder / "list.json", R"({"deckhandConfigurations": 1, "configurations": [{"optionsName": "b"}]})");
  for (const Words& action : {Words{"list"}, Words{"show", "a"}, Words{"save", "a"}, Words{"delete", "a"},
                              Words{"export", folder / "out.json"}, Words{"import", folder / "list.json"}}) {
    CompressionProgram::expectRefused(config(action), 1, "in Deckhand/deckhand.ini, cannot be read");
    EXPECT_NE(settings().find(line), std::string::npos) << settings();
  }
}

}  // namespace
}  // namespace zq::test

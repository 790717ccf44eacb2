// What a run goes by: stored settings, a configuration, the command line; and what is refused.

#include "host/run_settings.h"

#include <gtest/gtest.h>

#include "capture/capture_settings.h"
#include "host/configuration_store.h"
#include "host/exit_codes.h"
#include "support/backend_module_fake.h"

namespace zq::host {
namespace {

using Data = std::vector<std::uint8_t>;

class RunSettingsTest : public ::testing::Test {
 protected:
  RunSettingsTest() { CaptureSettings::registerDefaults(stored); }

  /// The settings when they are right, a test failure otherwise.
  RunSettings& lay(const CompressionWords& words = {}, const std::vector<std::string>& sets = {}) {
    const auto refusal = tryToLay(words, sets);
    EXPECT_FALSE(refusal) << refusal->error.text();
    return *run;
  }
  std::optional<Refusal> tryToLay(const CompressionWords& words, const std::vector<std::string>& sets = {},
                                  RunSettings::Start start = RunSettings::Start::stored) {
    const auto changes = parseSettings(sets);
    EXPECT_TRUE(changes.ok());
    run = std::make_unique<RunSettings>(runtime, stored, module);
    return run->lay(start, words, changes.value());
  }
  void expectRefused(int exitCode, const std::string& message, const CompressionWords& words,
                     const std::vector<std::string>& sets = {}) {
    const auto refusal = tryToLay(words, sets);
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->exitCode, exitCode) << refusal->error.text();
    EXPECT_NE(refusal->error.text().find(message), std::string::npos) << refusal->error.text();
  }
  void keep(const StoredConfiguration& configuration) {
    ASSERT_TRUE(ConfigurationStore(stored, module).replaceAll({configuration}).ok());
  }
  int live(const char* key) { return run->live().integerForKey(key); }

  backend::RealRuntime runtime;
  backend::MemorySettings stored{runtime};
  test::FakeBackendModule module;
  std::unique_ptr<RunSettings> run;
};

TEST_F(RunSettingsTest, MoviesAreAsReceivedUntilSomethingElseIsChosen) {
  EXPECT_FALSE(lay().compression().isCompressed());
  EXPECT_EQ(run->extensionFor("").value(), "mov");
  EXPECT_EQ(run->extensionFor("dv").value(), "dv");
}

TEST_F(RunSettingsTest, APresetBringsItsContainers) {
  const RunCompression& chosen = lay({"", "small film", {}, ""}).compression();
  EXPECT_EQ(chosen.name, "Small Film");
  EXPECT_EQ(chosen.identifier, "small");
  EXPECT_EQ(chosen.index, 1);
  EXPECT_EQ(live("captureMovieCompression"), 1);
  EXPECT_EQ(run->extensionFor("").value(), "mp4");
  EXPECT_EQ(run->extensionFor("mov").value(), "mov");
}

TEST_F(RunSettingsTest, AFormatThatTheMoviesCannotGoInIsRefused) {
  lay({"", "small", {}, ""});
  EXPECT_EQ(run->extensionFor("avi").error().text(),
            "--format avi cannot hold movies compressed with Small Film. Fitting: mp4, mov.");
  lay();
  EXPECT_EQ(run->extensionFor("mp4").error().text(),
            "--format mp4 cannot hold movies as received, without compression. Fitting: mov, avi, mkv, dv.");
}

TEST_F(RunSettingsTest, TheStoredSettingsMayChooseACompression) {
  stored.setIntegerForKey("captureMovieCompression", 2);
  const RunCompression& chosen = lay().compression();
  EXPECT_EQ(chosen.name, "Large Film");
  EXPECT_EQ(chosen.picturesPerFrame, 2);
}

TEST_F(RunSettingsTest, ARunThatStartsUncompressedLeavesTheStoredChoiceAlone) {
  stored.setIntegerForKey("captureMovieCompression", 2);
  ASSERT_FALSE(tryToLay({}, {}, RunSettings::Start::uncompressed));
  EXPECT_FALSE(run->compression().isCompressed());
  ASSERT_FALSE(tryToLay({"", "small", {}, ""}, {}, RunSettings::Start::uncompressed));
  EXPECT_EQ(run->compression().name, "Small Film");
}

TEST_F(RunSettingsTest, TheCommandLineComesAfterTheConfigurationAndThatAfterTheStoredSettings) {
  stored.setIntegerForKey("nbDropFrame", 1);
  stored.setIntegerForKey("actionAfterRecord", 1);
  keep({{{"optionsName", std::string("a")},
         {"nbDropFrame", std::int64_t{2}},
         {"samplingIntervalInSecs", std::int64_t{20}},
         {"captureMovieCompression", std::int64_t{1}}},
        ""});
  lay({"a", "", {}, ""}, {"sampleInterval=1"});
  EXPECT_EQ(live("actionAfterRecord"), 1);
  EXPECT_EQ(live("nbDropFrame"), 2);
  EXPECT_EQ(live("sampleInterval"), 1);
  EXPECT_EQ(run->compression().name, "Small Film");
  lay({"a", "none", {}, ""});
  EXPECT_EQ(live("sampleInterval"), 4);
  EXPECT_FALSE(run->compression().isCompressed());
}

TEST_F(RunSettingsTest, NothingThatIsStoredChanges) {
  keep({{{"optionsName", std::string("a")},
         {"nbDropFrame", std::int64_t{2}},
         {"captureMovieCompression", std::int64_t{3}},
         {"captureMovieCompressionData", Data{'7'}}},
        "custom"});
  lay({"a", "custom", {"level=9"}, "tape"}, {"detectScene=false"});
  run->live().setObjectForKey("captureMovieCompressionData", Data{'1'});
  EXPECT_EQ(stored.integerForKey("nbDropFrame"), 0);
  EXPECT_EQ(stored.integerForKey("captureMovieCompression"), 0);
  EXPECT_EQ(stored.integerForKey("fitSizeTag"), 2);
  EXPECT_TRUE(stored.boolForKey("detectScene"));
  EXPECT_EQ(stored.objectForKey("captureMovieCompressionData"), std::nullopt);
}

// The controller writes the size of a configuration as a yes or no.
TEST_F(RunSettingsTest, AConfigurationsSizeComesBackAsZeroOrOneUnlessTheCommandLineNamesOne) {
  keep({{{"optionsName", std::string("a")},
         {"captureMovieCompression", std::int64_t{3}},
         {"fitSizeTag", std::int64_t{4}},
         {"captureMovieCompressionData", Data{'7'}}},
        "custom"});
  EXPECT_EQ(lay({"a", "", {}, ""}).compression().sizeTag, 1);
  EXPECT_EQ(run->live().objectForKey("fitSizeTag"), platform::SettingValue(std::int64_t{1}));
  EXPECT_EQ(lay({"a", "", {}, ""}, {"fitSizeTag=4"}).compression().sizeTag, 4);
  EXPECT_EQ(lay({"a", "", {}, "1280x720"}).compression().sizeTag, 3);
  EXPECT_EQ(lay({"a", "", {}, "tape"}).compression().sizeTag, 5);
}

TEST_F(RunSettingsTest, AConfigurationFollowsItsPresetWhereTheNumbersDiffer) {
  keep({{{"optionsName", std::string("a")}, {"captureMovieCompression", std::int64_t{1}}}, "large"});
  EXPECT_EQ(lay({"a", "", {}, ""}).compression().name, "Large Film");
}

TEST_F(RunSettingsTest, AConfigurationWhosePresetThisMachineLacksIsRefused) {
  keep({{{"optionsName", std::string("a")}, {"captureMovieCompression", std::int64_t{1}}}, "huge"});
  expectRefused(kExitFailed, "\"huge\", which this machine cannot", {"a", "", {}, ""});
}

TEST_F(RunSettingsTest, AnOlderConfigurationIsAsReceivedOrOwnSettingsAfresh) {
  stored.setObjectForKey("captureMovieCompressionData", Data{'7'});
  for (const int format : {0, 1}) {
    keep({{{"optionsName", std::string("a")},
           {"captureMovieCompression", std::int64_t{2}},
           {"captureFormat", std::int64_t{format}}},
          ""});
    EXPECT_FALSE(lay({"a", "", {}, ""}).compression().isCompressed()) << format;
  }
  keep({{{"optionsName", std::string("a")}, {"captureFormat", std::int64_t{2}}}, ""});
  EXPECT_EQ(lay({"a", "", {}, ""}).compression().customSettings, std::vector<std::string>{"level=5"});
}

TEST_F(RunSettingsTest, CustomSettingsAreThoseOfTheCommandLineOrTheStoredOnesOrTheCodecsOwn) {
  EXPECT_EQ(lay({"", "custom", {}, ""}).compression().customSettings, std::vector<std::string>{"level=5"});
  EXPECT_EQ(run->live().objectForKey("captureMovieCompressionData"), platform::SettingValue(Data{'5'}));
  stored.setObjectForKey("captureMovieCompressionData", Data{'7'});
  EXPECT_EQ(lay({"", "custom", {}, ""}).compression().customSettings, std::vector<std::string>{"level=7"});
  EXPECT_EQ(lay({"", "Custom", {"level=9"}, ""}).compression().customSettings, std::vector<std::string>{"level=9"});
  EXPECT_EQ(run->compression().containers, (std::vector<std::string>{"mkv", "mov"}));
  EXPECT_EQ(run->compression().picturesPerFrame, 2);
}

TEST_F(RunSettingsTest, StoredCustomSettingsThatCannotBeReadAreRefusedAndKept) {
  for (const platform::SettingValue& damaged :
       {platform::SettingValue(Data{1, 2, 3}), platform::SettingValue(std::string("7"))}) {
    stored.setObjectForKey("captureMovieCompressionData", damaged);
    expectRefused(kExitFailed, "stay as they are", {"", "custom", {}, ""});
    EXPECT_EQ(stored.objectForKey("captureMovieCompressionData"), damaged);
    lay({"", "custom", {"level=1"}, ""});
    lay({"", "small", {}, ""});
    EXPECT_EQ(stored.objectForKey("captureMovieCompressionData"), damaged);
  }
}

TEST_F(RunSettingsTest, RefusesWhatThereIsNot) {
  expectRefused(kExitUsage, "There is no compression \"tiny\". This machine has: none, small, large, custom",
                {"", "tiny", {}, ""});
  expectRefused(kExitFailed, "There is no configuration \"b\"", {"b", "", {}, ""});
  expectRefused(kExitUsage, "no setting colour=blue", {"", "custom", {"colour=blue"}, ""});
  expectRefused(kExitUsage, "It takes 0 to 3", {}, {"captureMovieCompression=4"});
  expectRefused(kExitUsage, "custom compression only", {"", "small", {}, "tape"});
  stored.setIntegerForKey("captureMovieCompression", 4);
  expectRefused(kExitFailed, "this machine has no such compression", {});
  lay({"", "none", {}, ""});
}

TEST_F(RunSettingsTest, AWrongStoredValueDoesNotMatterWhereTheCommandLineGivesAnother) {
  stored.setObjectForKey("nbDropFrame", std::string("many"));
  expectRefused(kExitFailed, "nbDropFrame: \"many\"", {});
  lay({}, {"nbDropFrame=2"});
  EXPECT_EQ(live("nbDropFrame"), 2);
}

TEST(CompressionWordsTest, CustomSettingsGoWithCustomCompressionOnly) {
  EXPECT_TRUE(checkWords({"", "CUSTOM", {"level=1"}, ""}).ok());
  EXPECT_FALSE(checkWords({"", "", {"level=1"}, ""}).ok());
  EXPECT_FALSE(checkWords({"", "small", {"level=1"}, ""}).ok());
}

TEST(CompressionWordsTest, SizesAreThoseOfTheTable) {
  for (const char* right : {"", "0", "5", "tape", "160x120", "1980x1080"}) {
    EXPECT_TRUE(checkWords({"", "custom", {}, right}).ok()) << right;
  }
  for (const char* wrong : {"6", "-1", "640", "640x481", "640X480", "1920x1080", "big"}) {
    EXPECT_FALSE(checkWords({"", "custom", {}, wrong}).ok()) << wrong;
  }
}

}  // namespace
}  // namespace zq::host

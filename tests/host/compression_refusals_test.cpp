// Compression on bad input: one clear message, a non-zero exit status, and nothing lost or written over.

#include <gtest/gtest.h>

#include "support/compression_program.h"

namespace zq::test {
namespace {

class CompressionRefusals : public CompressionProgram {
 protected:
  void SetUp() override { makeTape(); }
};

TEST_F(CompressionRefusals, APresetThatThereIsNot) {
  expectRefused(capture({"--compression", "betamax"}), 2, "There is no compression \"betamax\"");
}

TEST_F(CompressionRefusals, AConfigurationThatThereIsNot) {
  expectRefused(capture({"--config", "archive"}), 1, "There is no configuration \"archive\"");
}

TEST_F(CompressionRefusals, CustomSettingsWithoutCustomCompression) {
  expectRefused(capture({"--custom", "codec=h264"}), 2, "It goes with --compression custom only");
  expectRefused(capture({"--custom", "codec=h264", "--compression", "h264"}), 2, "--compression custom only");
}

TEST_F(CompressionRefusals, ACustomKeyOrValueThatThereIsNot) {
  expectRefused(capture({"--compression", "custom", "--custom", "colour=blue"}), 2, "\"colour=blue\"");
  expectRefused(capture({"--compression", "custom", "--custom", "codec=betamax"}), 2, "codec=betamax");
  expectRefused(capture({"--compression", "custom", "--custom", "quality"}), 2, "\"quality\"");
}

TEST_F(CompressionRefusals, AContainerThatCannotHoldTheMovies) {
  expectRefused(capture({"--compression", "ffv1", "--format", "mp4"}), 2,
                "--format mp4 cannot hold movies compressed with FFV1");
  expectRefused(capture({"--compression", "h264", "--format", "dv"}), 2, "Fitting: mp4, mov, mkv.");
  expectRefused(capture({"--format", "mp4"}), 2, "Fitting: mov, avi, mkv, dv.");
}

TEST_F(CompressionRefusals, ASizeThatThereIsNotOrThatIsOfNoUse) {
  expectRefused(capture({"--compression", "custom", "--size", "1920x1080"}), 2, "There are 160x120 (0)");
  expectRefused(capture({"--compression", "h264", "--size", "320x240"}), 2, "custom compression only");
}

TEST_F(CompressionRefusals, ANumberThatIsNoPresets) {
  expectRefused(capture({"--set", "captureMovieCompression=99"}), 2, "as deckhand presets numbers them");
  writeSettings("captureMovieCompression=99\n");
  expectRefused(capture(), 1, "this machine has no such compression");
}

TEST_F(CompressionRefusals, StoredCustomSettingsThatAreDamagedOrNewerStayAsTheyAre) {
  const std::string newer =
      R"~(captureMovieCompressionData="@ByteArray({\"format\":\"deckhand-compression\",\"version\":9,\"settings\":{}})")~";
  for (const std::string& line : {std::string("captureMovieCompressionData=@ByteArray(\\0\\x1\\x2)"),
                                  std::string("captureMovieCompressionData=blue"), newer}) {
    writeSettings(line + "\n");
    expectRefused(capture({"--compression", "custom"}), 1, "cannot be used, and stay as they are");
    EXPECT_NE(settings().find(line), std::string::npos) << settings();
    const ProgramResult recapture =
        runDeckhand(folder, {"recapture", "--device", "tape:" + tapePath(), "--catalogue", folder / "none.db", "--tape",
                             "t", "--output", folder / "clips", "--compression", "custom"});
    expectRefused(recapture, 1, "cannot be used, and stay as they are");
  }
  EXPECT_EQ(capture({"--compression", "none"}).exitCode, 0) << "what is not used does not matter";
  EXPECT_NE(settings().find(newer), std::string::npos) << settings();
}

TEST_F(CompressionRefusals, RecaptureRefusesTheSameWords) {
  const auto recapture = [&](const Words& more) {
    Words words{"recapture", "--device", "tape:" + tapePath(), "--catalogue",   folder / "none.db",
                "--tape",    "t",        "--output",           folder / "clips"};
    words.insert(words.end(), more.begin(), more.end());
    return runDeckhand(folder, words);
  };
  expectRefused(recapture({"--compression", "betamax"}), 2, "There is no compression \"betamax\"");
  expectRefused(recapture({"--config", "archive"}), 1, "There is no configuration \"archive\"");
  expectRefused(recapture({"--custom", "codec=h264"}), 2, "--compression custom only");
  expectRefused(recapture({"--compression", "ffv1", "--format", "mp4"}), 2, "Fitting: mkv.");
}

}  // namespace
}  // namespace zq::test

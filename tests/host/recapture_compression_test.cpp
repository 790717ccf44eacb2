// Compressed recaptures, as a user runs them.

#include <gtest/gtest.h>

#include "support/compression_program.h"

namespace zq::test {
namespace {

class RecaptureCompression : public CompressionProgram {
 protected:
  /// Three scenes of 6, 4 and 5 seconds, captured into the catalogue as "holiday" and all marked.
  void captureHoliday() {
    const ProgramResult made =
        runDeckhand(folder, {"make-tape", tapePath(), "--scene", "2004-07-15T13:30:45,6,00:00:00:00", "--scene",
                             "2004-07-15T14:00:00,4,00:00:00:00", "--scene", "2004-07-16T09:00:00,5,00:00:00:00"});
    ASSERT_EQ(made.exitCode, 0) << made.err;
    ASSERT_EQ(capture({"--catalogue", folder / "tapes.db", "--tape", "holiday"}).exitCode, 0);
    ASSERT_EQ(run("mark", {"--tape", "holiday", "--all"}).exitCode, 0);
  }
  json recapture(Words more, int exitCode = 0) const {
    Words words{"recapture", "--device", "tape:" + tapePath(), "--catalogue",    folder / "tapes.db",
                "--tape",    "holiday",  "--output",           folder / "again", "--json"};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramResult result = runDeckhand(folder, words);
    EXPECT_EQ(result.exitCode, exitCode) << result.err << result.out;
    return json::parse(result.out, nullptr, false);
  }
};

TEST_F(RecaptureCompression, LosslessMoviesHoldThePicturesFromTheStartUpToTheOneBeforeTheEnd) {
  captureHoliday();
  const json report = recapture({"--compression", "ffv1"});
  EXPECT_EQ(report.at("recaptured"), 3) << report.dump(2);
  EXPECT_EQ(report.at("format"), "mkv");
  const Words tape = picturesOf(tapePath());
  EXPECT_EQ(picturesOf(folder / "again/2004-07-15T13-30-45.mkv"), part(tape, 0, 149));
  EXPECT_EQ(picturesOf(folder / "again/2004-07-15T14-00-00.mkv"), part(tape, 150, 99));
  EXPECT_EQ(picturesOf(folder / "again/2004-07-16T09-00-00.mkv"), part(tape, 250, 124));
}

TEST_F(RecaptureCompression, FilesAndAliasesHaveTheExtensionOfThePreset) {
  captureHoliday();
  const json report = recapture({"--compression", "H.264"});
  const json clip = report.at("clips").at(1);
  EXPECT_EQ(clip.at("status"), "recaptured") << report.dump(2);
  EXPECT_EQ(clip.at("moviePath"), "2004-07-15T14-00-00.mp4");
  EXPECT_EQ(clip.at("recapturePath"), "2.mp4");
  EXPECT_EQ(clip.at("movieFrames"), 99);
  EXPECT_EQ(report.at("compression"), "H.264");
  EXPECT_TRUE(std::filesystem::equivalent(folder / "again/2.mp4", folder / "again/2004-07-15T14-00-00.mp4"));
  EXPECT_EQ(videoOf(folder / "again/2.mp4"), "h264,720,576,198");
  EXPECT_EQ(clipsOf("holiday").at(1).at("recapturedPath"), folder / "again/2004-07-15T14-00-00.mp4");
}

TEST_F(RecaptureCompression, CustomSettingsAndAConfigurationAreTheRunsOnly) {
  captureHoliday();
  ASSERT_EQ(
      config({"save", "small", "--compression", "custom", "--custom", "codec=mjpeg", "--size", "320x240"}).exitCode, 0);
  const std::string before = settings();
  const json report = recapture({"--config", "small"});
  EXPECT_EQ(report.at("recaptured"), 3) << report.dump(2);
  EXPECT_EQ(report.at("customCompression").at(0), "codec=mjpeg");
  EXPECT_EQ(report.at("pictureSize"), "320x240");
  EXPECT_EQ(report.at("configuration"), "small");
  EXPECT_EQ(videoOf(folder / "again/2004-07-15T14-00-00.mov"), "mjpeg,320,240,198");
  EXPECT_EQ(settings(), before);
}

TEST_F(RecaptureCompression, StartsUncompressedWhateverIsStoredForCaptures) {
  captureHoliday();
  writeSettings("captureMovieCompression=1\n");
  const json report = recapture({});
  EXPECT_EQ(report.at("recaptured"), 3) << report.dump(2);
  EXPECT_FALSE(report.contains("compression"));
  EXPECT_EQ(report.at("clips").at(0).at("moviePath"), "2004-07-15T13-30-45.mov");
  EXPECT_EQ(report.at("clips").at(0).at("recapturePath"), "1.mov");
}

TEST_F(RecaptureCompression, OfACompressedCaptureIsAsGood) {
  const ProgramResult made = runDeckhand(
      folder, {"make-tape", tapePath(), "--scene", "2004-07-15T13:30:45,6", "--scene", "2004-07-15T14:00:00,4"});
  ASSERT_EQ(made.exitCode, 0) << made.err;
  ASSERT_EQ(capture({"--catalogue", folder / "tapes.db", "--tape", "holiday", "--compression", "mjpeg"}).exitCode, 0);
  ASSERT_EQ(run("mark", {"--clip", "2"}).exitCode, 0);
  const json report = recapture({});
  EXPECT_EQ(report.at("recaptured"), 1) << report.dump(2);
}

}  // namespace
}  // namespace zq::test

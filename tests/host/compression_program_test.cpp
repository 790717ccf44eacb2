// Compressed captures, as a user runs them.

#include "support/compression_program.h"

#include <gtest/gtest.h>

namespace zq::test {
namespace {

TEST_F(CompressionProgram, ListsThePresetsOfThisMachine) {
  const ProgramResult table = runDeckhand(folder, {"presets"});
  EXPECT_EQ(table.exitCode, 0) << table.err;
  const json presets = json::parse(runDeckhand(folder, {"presets", "--json"}).out).at("presets");
  ASSERT_GE(presets.size(), 3U);
  for (const json& preset : presets) {
    EXPECT_EQ(preset.size(), 4U) << preset;
    for (const char* key : {"name", "identifier", "codec", "container"}) {
      const auto text = preset.at(key).get<std::string>();
      EXPECT_NE(text, "") << preset;
      EXPECT_NE(table.out.find(text), std::string::npos) << text;
    }
  }
}

/// A compression, the extension of its movies, and what another program finds in the first.
struct Way {
  const char* compression;
  const char* extension;
  const char* video;
};

class CompressionWays : public CompressionProgram, public ::testing::WithParamInterface<Way> {};

TEST_P(CompressionWays, EachFrameOfTheTapeIsInTheMovie) {
  const auto& [compression, extension, video] = GetParam();
  makeTape();
  const ProgramResult result = capture({"--compression", compression});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const json whole = report();
  EXPECT_EQ(whole.at("format"), extension);
  EXPECT_EQ(whole.at("frames"), (json{{"delivered", 50}, {"recorded", 50}, {"dropped", 0}}));
  ASSERT_EQ(whole.at("clips").size(), 2U);
  EXPECT_EQ(whole.at("clips").at(0).at("movieFrames"), 25);
  EXPECT_EQ(whole.at("clips").at(0).at("moviePath"), std::string("2004-07-15T13-30-45.") + extension);
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T13-30-45." + extension), video);
  EXPECT_EQ(std::filesystem::file_size(folder / "clips/2004-07-15T13-30-45.thumbnails.dv") % 144000, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Each, CompressionWays,
    ::testing::Values(Way{"h.264", "mp4", "h264,720,576,50"}, Way{"PRORES 422", "mov", "prores,720,576,25"},
                      Way{"ffv1", "mkv", "ffv1,720,576,25"}, Way{"mjpeg", "mov", "mjpeg,720,576,50"}),
    [](const auto& instance) { return std::string(instance.param.extension) + "_" + std::to_string(instance.index); });

TEST_F(CompressionProgram, LosslessMoviesHoldThePicturesOfTheTapeInBothSystems) {
  for (const char* system : {"pal", "ntsc"}) {
    makeTape(system);
    std::filesystem::remove_all(folder / "clips");
    const ProgramResult result = capture({"--compression", "ffv1"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const Words tape = picturesOf(tapePath());
    const Words first = picturesOf(folder / "clips/2004-07-15T13-30-45.mkv");
    EXPECT_EQ(first, part(tape, 0, tape.size() / 2)) << system;
    EXPECT_EQ(picturesOf(folder / "clips/2004-07-15T14-00-00.mkv"), part(tape, tape.size() / 2, tape.size() / 2))
        << system;
  }
}

TEST_F(CompressionProgram, TheReportSaysHowMoviesWereCompressed) {
  makeTape();
  capture({"--compression", "custom", "--custom", "codec=ffv1", "--custom", "sound=pcm", "--size", "tape"});
  const json whole = report();
  EXPECT_EQ(whole.at("compression"), "Custom");
  EXPECT_EQ(whole.at("customCompression"), (json{"codec=ffv1", "scan=keep", "frameRate=0", "sound=pcm"}));
  EXPECT_EQ(whole.at("settings").at("fitSizeTag"), 5);
}

TEST_F(CompressionProgram, AReportOfMoviesAsReceivedSaysNothingOfCompression) {
  makeTape();
  capture({"--compression", "NONE"});
  EXPECT_FALSE(report().contains("compression"));
  EXPECT_EQ(report().at("format"), "mov");
}

TEST_F(CompressionProgram, CustomPicturesHaveTheSizeThatWasAskedFor) {
  makeTape();
  const ProgramResult result =
      capture({"--compression", "custom", "--custom", "codec=mjpeg", "--size", "320x240", "--format", "avi"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T13-30-45.avi"), "mjpeg,320,240,50");
}

TEST_F(CompressionProgram, AFrameRateOfTheUsersOwnKeepsTheNumberOfFramesOfTheTape) {
  makeTape();
  const ProgramResult result =
      capture({"--compression", "custom", "--custom", "codec=mjpeg", "--custom", "frameRate=10"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(report().at("clips").at(0).at("movieFrames"), 25);
}

TEST_F(CompressionProgram, TheStoredChoiceIsUsedAndTheCommandLineComesBeforeIt) {
  makeTape();
  const json presets = json::parse(runDeckhand(folder, {"presets", "--json"}).out).at("presets");
  int number = 1;
  while (presets.at(static_cast<std::size_t>(number - 1)).at("identifier") != "ffv1") ++number;
  const std::string setting = "captureMovieCompression=" + std::to_string(number);
  writeSettings(setting + "\n");
  EXPECT_EQ(capture().exitCode, 0);
  EXPECT_EQ(report().at("compression"), presets.at(static_cast<std::size_t>(number - 1)).at("name"));
  std::filesystem::remove_all(folder / "clips");
  EXPECT_EQ(capture({"--compression", "none"}).exitCode, 0);
  EXPECT_FALSE(report().contains("compression"));
  EXPECT_NE(settings().find(setting), std::string::npos) << "a run changes nothing that is stored";
  std::filesystem::remove_all(folder / "clips");
  EXPECT_EQ(capture({"--set", "captureMovieCompression=0"}).exitCode, 0);
  EXPECT_FALSE(report().contains("compression"));
}

TEST_F(CompressionProgram, ARunWithOwnSettingsStoresNone) {
  makeTape();
  EXPECT_EQ(capture({"--compression", "custom", "--custom", "codec=mjpeg"}).exitCode, 0);
  EXPECT_EQ(settings().find("captureMovieCompressionData"), std::string::npos) << settings();
}

TEST_F(CompressionProgram, ATapeThatChangesItsSystemGoesOnInAnotherCompressedMovie) {
  const std::string rest = folder / "rest.dv";
  ASSERT_EQ(runDeckhand(folder, {"make-tape", rest, "--system", "ntsc", "--scene", "2004-07-15T14:00:01,1,00:00:02:00"})
                .exitCode,
            0);
  makeTape();
  writeText(tapePath(), readText(tapePath()) + readText(rest));
  const ProgramResult result = capture({"--compression", "mjpeg"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const json clip = report().at("clips").at(1);
  EXPECT_EQ(clip.at("movieFrames"), 55);
  ASSERT_EQ(clip.at("movieContinuations").size(), 1U) << clip;
  EXPECT_EQ(videoOf(folder / "clips/2004-07-15T14-00-00-part2.mov"), "mjpeg,720,480,60");
}

TEST_F(CompressionProgram, TheCatalogueIsToldOfCompressedMovies) {
  makeTape();
  EXPECT_EQ(capture({"--compression", "h264", "--catalogue", folder / "tapes.db", "--tape", "t"}).exitCode, 0);
  EXPECT_EQ(clipsOf("t").at(0).at("moviePath"), folder / "clips/2004-07-15T13-30-45.mp4");
  EXPECT_EQ(clipsOf("t").at(0).at("movieFrames"), 25);
}

TEST_F(CompressionProgram, AtTheDecksPaceEveryFrameIsThereOrCounted) {
  makeTape();
  const ProgramResult result = capture({"--compression", "mjpeg", "--real-time"});
  EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 3) << result.err;
  const json frames = report().at("frames");
  EXPECT_EQ(frames.at("recorded").get<int>() + frames.at("dropped").get<int>(), frames.at("delivered").get<int>());
  EXPECT_EQ(result.exitCode == 3, frames.at("dropped") != 0 || report().contains("findings")) << result.err;
}

}  // namespace
}  // namespace zq::test

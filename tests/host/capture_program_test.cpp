// The capture command on good tapes, as a user runs it.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "support/program.h"
#include "support/tape_script.h"

namespace zq::test {
namespace {

using nlohmann::json;

const StampDateTime kFirst{2004, 7, 15, 13, 30, 45};
const StampDateTime kLater{2004, 7, 15, 14, 0, 0};
const StampDateTime kEarlier{2003, 1, 1, 9, 0, 0};

class CaptureProgram : public ::testing::Test {
 protected:
  ProgramResult capture(const std::vector<ScriptFrame>& frames, std::vector<std::string> more = {}) {
    writeTape(folder / "tape.dv", frames);
    std::vector<std::string> words{"capture", "--device", "tape:" + folder / "tape.dv", "--output", folder / "clips"};
    words.insert(words.end(), more.begin(), more.end());
    return runDeckhand(folder, words);
  }
  json report() const { return json::parse(readText(folder / "clips/session.json")); }
  std::string clipFile(const json& clip, const char* key) const {
    return readText(folder / ("clips/" + clip.at(key).get<std::string>()));
  }
  std::vector<std::string> filesOfClips() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "clips")) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  /// The picture packets of a movie, one after the other, as another program reads them.
  std::string picturesIn(const std::string& movie) {
    const RunningProgram reader(folder, {"ffmpeg", "-v", "error", "-nostdin", "-y", "-i", movie, "-map", "0:v", "-c",
                                         "copy", "-f", "rawvideo", folder / "pictures.raw"});
    EXPECT_EQ(reader.wait().exitCode, 0);
    return readText(folder / "pictures.raw");
  }

  ProgramFolder folder;
};

TEST_F(CaptureProgram, CutsATapeWhereTheDateJumpsAndNamesTheFilesByIt) {
  const auto frames = framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}, {20, kLater, timecodeOf(0, 0, 1, 5)}});
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(filesOfClips(),
            (std::vector<std::string>{"2004-07-15T13-30-45.dv", "2004-07-15T13-30-45.thumbnails.dv",
                                      "2004-07-15T14-00-00.dv", "2004-07-15T14-00-00.thumbnails.dv", "session.json"}));
  EXPECT_EQ(readText(folder / "clips/2004-07-15T13-30-45.dv"), bytesOf(frames, 0, 30));
  EXPECT_EQ(readText(folder / "clips/2004-07-15T14-00-00.dv"), bytesOf(frames, 30, 50));
}

TEST_F(CaptureProgram, ReportsEachClip) {
  capture(framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}, {20, kLater, timecodeOf(0, 0, 1, 5)}}));
  const json whole = report();
  EXPECT_EQ(whole.at("device"), "tape:" + folder / "tape.dv");
  EXPECT_EQ(whole.at("format"), "mov");
  EXPECT_EQ(whole.at("ended"), "endOfTape");
  EXPECT_EQ(whole.at("frames"), (json{{"delivered", 50}, {"recorded", 50}, {"dropped", 0}}));
  EXPECT_EQ(whole.at("settings").at("detectScene"), true);
  ASSERT_EQ(whole.at("clips").size(), 2U);
  EXPECT_EQ(whole.at("clips").at(0), (json{{"clipId", "1"},
                                           {"clipRecordingDate", "2004-07-15T13:30:45"},
                                           {"clipStartTimecode", "00:00:00:00"},
                                           {"clipEndTimecode", "00:00:01:04"},
                                           {"clipDuration", "00:00:01:04"},
                                           {"clipAspectRatio", 1},
                                           {"moviePath", "2004-07-15T13-30-45.mov"},
                                           {"thumbnailPath", "2004-07-15T13-30-45.thumbnails.dv"},
                                           {"movieFrames", 30},
                                           {"thumbnailFrames", 2}}));
}

TEST_F(CaptureProgram, PrintsTheSameReportAsJson) {
  const ProgramResult result = capture(framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}}), {"--json"});
  EXPECT_EQ(json::parse(result.out), report());
}

class CaptureProgramFormats : public CaptureProgram, public ::testing::WithParamInterface<const char*> {};

TEST_P(CaptureProgramFormats, HoldTheFramesOfTheTapeByteForByteInBothSystems) {
  const auto frames = framesOf({{12, kFirst, timecodeOf(0, 0, 0, 0)},
                                {9, kLater, timecodeOf(0, 0, 0, 0), DVSystem::ntsc525_60},
                                {7, kEarlier, timecodeOf(0, 0, 5, 0)}});
  const ProgramResult result = capture(frames, {"--format", GetParam()});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 3U);
  const std::size_t bounds[] = {0, 12, 21, 28};
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string movie = folder / ("clips/" + clips.at(i).at("moviePath").get<std::string>());
    EXPECT_EQ(picturesIn(movie), bytesOf(frames, bounds[i], bounds[i + 1])) << movie;
  }
}

INSTANTIATE_TEST_SUITE_P(Each, CaptureProgramFormats, ::testing::Values("mov", "avi", "mkv", "dv"));

TEST_F(CaptureProgram, ClipsComeOutWholeWhenTheTimecodeStartsAgainAtZeroInEveryScene) {
  const auto frames = framesOf({{40, kFirst, timecodeOf(0, 0, 0, 0)},
                                {30, kLater, timecodeOf(0, 0, 0, 0)},
                                {20, kEarlier, timecodeOf(0, 0, 0, 0)}});
  capture(frames, {"--format", "dv"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 3U);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 40));
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 40, 70));
  EXPECT_EQ(clipFile(clips.at(2), "moviePath"), bytesOf(frames, 70, 90));
}

TEST_F(CaptureProgram, AStepOfOneSecondIsNoCutAndOneOfTwoIs) {
  const StampDateTime oneSecond{2004, 7, 15, 13, 30, 46};
  const StampDateTime twoMore{2004, 7, 15, 13, 30, 48};
  capture(framesOf({{5, kFirst, timecodeOf(0, 0, 0, 0)},
                    {5, oneSecond, timecodeOf(0, 0, 0, 5)},
                    {5, twoMore, timecodeOf(0, 0, 0, 10)}}));
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clips.at(0).at("movieFrames"), 10);
  EXPECT_EQ(clips.at(1).at("movieFrames"), 5);
}

TEST_F(CaptureProgram, ScenesOfOneFrameAreClipsOfOneFrame) {
  const auto frames = framesOf({{1, kFirst, timecodeOf(0, 0, 0, 0)},
                                {1, kLater, timecodeOf(0, 0, 0, 1)},
                                {1, kEarlier, timecodeOf(0, 0, 0, 2)}});
  capture(frames, {"--format", "dv"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(clipFile(clips.at(i), "moviePath"), bytesOf(frames, i, i + 1));
    EXPECT_EQ(clipFile(clips.at(i), "thumbnailPath"), bytesOf(frames, i, i + 1));
  }
}

TEST_F(CaptureProgram, WhatIsThereIsNeverWrittenOver) {
  const auto frames = framesOf({{5, kFirst, timecodeOf(0, 0, 0, 0)}});
  capture(frames, {"--format", "dv"});
  EXPECT_EQ(capture(frames, {"--format", "dv"}).exitCode, 0);
  EXPECT_EQ(filesOfClips(), (std::vector<std::string>{"2004-07-15T13-30-45-2.dv", "2004-07-15T13-30-45-2.thumbnails.dv",
                                                      "2004-07-15T13-30-45.dv", "2004-07-15T13-30-45.thumbnails.dv",
                                                      "session-2.json", "session.json"}));
}

TEST_F(CaptureProgram, TwoScenesOfTheSameDateGetACounter) {
  capture(framesOf({{5, kFirst, timecodeOf(0, 0, 0, 0)},
                    {5, kLater, timecodeOf(0, 0, 0, 5)},
                    {5, kFirst, timecodeOf(0, 0, 0, 10)}}));
  EXPECT_EQ(report().at("clips").at(2).at("moviePath"), "2004-07-15T13-30-45-2.mov");
}

TEST_F(CaptureProgram, SettingsOfARunAreNotStored) {
  const auto frames = framesOf({{5, kFirst, timecodeOf(0, 0, 0, 0)}, {5, kLater, timecodeOf(0, 0, 0, 5)}});
  capture(frames, {"--set", "detectScene=false", "--set", "captureMovie=no", "--set", "sampleInterval=4"});
  const json first = report();
  EXPECT_EQ(first.at("settings").at("detectScene"), false);
  EXPECT_EQ(first.at("settings").at("sampleInterval"), 4);
  ASSERT_EQ(first.at("clips").size(), 1U);
  EXPECT_EQ(first.at("clips").at(0).at("moviePath"), nullptr);
  EXPECT_EQ(first.at("clips").at(0).at("movieFrames"), 0);
  EXPECT_EQ(first.at("clips").at(0).at("thumbnailFrames"), 2);
  capture(frames, {});
  const json second = json::parse(readText(folder / "clips/session-2.json"));
  EXPECT_EQ(second.at("settings").at("detectScene"), true);
  EXPECT_EQ(second.at("clips").size(), 2U);
}

TEST_F(CaptureProgram, FramesAfterACutAreLeftOutWhenAsked) {
  const auto frames = framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}, {30, kLater, timecodeOf(0, 0, 10, 0)}});
  capture(frames, {"--format", "dv", "--set", "nbDropFrame=5"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clips.at(0).at("clipStartTimecode"), "00:00:00:05");
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 5, 30));
  EXPECT_EQ(clips.at(1).at("clipStartTimecode"), "00:00:10:05");
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 35, 60));
}

TEST_F(CaptureProgram, FramesThatNoClipTookAreTold) {
  auto frames = framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (ScriptFrame& frame : frames) {
    for (int sequence = 0; sequence < 12; ++sequence)
      setSubcodePack(frame.bytes, sequence, 0, {0x13, 0x00, 0x00, 0x00, 0x00});
    for (int sequence = 0; sequence < 6; ++sequence)
      setSubcodePackInAllSlots(frame.bytes, sequence, {0x13, 0x00, 0x00, 0x00, 0x00});
  }
  // The timecode stands still, so it never comes by the place that is 5 frames on.
  const ProgramResult result = capture(frames, {"--set", "nbDropFrame=5"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("30 of 30 frames belong to no clip"), std::string::npos) << result.err;
}

TEST_F(CaptureProgram, AnUndatedLeadInIsAClipNamedByTheTape) {
  const auto frames = framesOf({{8, std::nullopt, timecodeOf(0, 0, 0, 0)}, {8, kFirst, timecodeOf(0, 0, 0, 8)}});
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("8 of 16 frames carry no recording date"), std::string::npos) << result.err;
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clips.at(0).at("moviePath"), "tape-0001.dv");
  EXPECT_EQ(clips.at(0).at("clipRecordingDate"), nullptr);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 8));
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 8, 16));
}

TEST_F(CaptureProgram, ATapeWithoutTimecodesIsCapturedWhole) {
  const auto frames = framesOf({{8, kFirst, std::nullopt}, {8, kLater, std::nullopt}});
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("16 of 16 frames carry no timecode"), std::string::npos) << result.err;
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 8));
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 8, 16));
}

TEST_F(CaptureProgram, ASceneWhoseFirstFrameLostItsTimecodeKeepsThatFrame) {
  const auto frames = framesOf(
      {{30, kFirst, timecodeOf(0, 10, 0, 0)}, {1, kLater, std::nullopt}, {20, kLater, timecodeOf(0, 0, 0, 1)}});
  capture(frames, {"--format", "dv"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 30));
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 30, 51));
}

// A frame without a timecode counts as 00:00:00:00, so it reaches a start there and does not pass an end there.
TEST_F(CaptureProgram, ASceneThatBeginsWithoutATimecodeAfterTimecodeZeroIsCapturedWhole) {
  for (const int untimedLater : {0, 1}) {
    auto scenes = std::vector<ScriptScene>{
        {1, kFirst, timecodeOf(0, 0, 0, 0)}, {1, kLater, std::nullopt}, {20, kLater, timecodeOf(0, 10, 0, 1)}};
    if (untimedLater != 0) {
      scenes.push_back({1, kLater, std::nullopt});
      scenes.push_back({20, kLater, timecodeOf(0, 10, 0, 22)});
    }
    const auto frames = framesOf(scenes);
    capture(frames, {"--format", "dv"});
    const json clips = report().at("clips");
    ASSERT_EQ(clips.size(), 2U);
    EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 1));
    EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 1, frames.size()));
    std::filesystem::remove_all(folder / "clips");
  }
}

TEST_F(CaptureProgram, ScenesThatBothBeginAtTimecodeZeroAreCapturedWholeHoweverShort) {
  const auto frames = framesOf({{1, kFirst, timecodeOf(0, 0, 0, 0)},
                                {1, kLater, timecodeOf(0, 0, 0, 0)},
                                {20, kEarlier, timecodeOf(0, 0, 0, 0)}});
  capture(frames, {"--format", "dv"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 3U);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 1));
  EXPECT_EQ(clipFile(clips.at(1), "moviePath"), bytesOf(frames, 1, 2));
  EXPECT_EQ(clipFile(clips.at(2), "moviePath"), bytesOf(frames, 2, 22));
}

// Its seconds are the tape's, however long the disk takes.
TEST_F(CaptureProgram, AWatchForTheEndDoesNotTakeASlowDiskForIt) {
  const auto frames = framesOf({{400, kFirst, timecodeOf(0, 0, 0, 0)}});
  const ProgramResult result = capture(frames, {"--set", "detectEndTape=true"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(report().at("frames").at("recorded"), 400);
}

TEST_F(CaptureProgram, AClockThatWasNeverSetNamesNoFile) {
  auto frames = framesOf({{6, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (ScriptFrame& frame : frames) {
    for (int sequence = 0; sequence < 12; ++sequence) {
      setSubcodePackInAllSlots(frame.bytes, sequence, {0x13, 0x00, 0x00, 0x00, 0x00});
      setSubcodePack(frame.bytes, sequence, 1, {0x62, 0xFF, 0xFF, 0xFF, 0xFF});
      setSubcodePack(frame.bytes, sequence, 2, {0x63, 0xFF, 0xFF, 0xFF, 0xFF});
    }
  }
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("6 of 6 frames carry an impossible recording date"), std::string::npos) << result.err;
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 1U);
  EXPECT_EQ(clips.at(0).at("moviePath"), "tape-0001.dv");
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 6));
}

TEST_F(CaptureProgram, BlankFramesInMidClipStayInIt) {
  auto frames = framesOf({{20, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (std::size_t i = 8; i < 11; ++i) std::fill(frames[i].bytes.begin(), frames[i].bytes.end(), std::uint8_t{0});
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("3 of 20 frames do not begin as DV frames do"), std::string::npos) << result.err;
  ASSERT_EQ(report().at("clips").size(), 1U);
  EXPECT_EQ(clipFile(report().at("clips").at(0), "moviePath"), bytesOf(frames, 0, 20));
}

TEST_F(CaptureProgram, ASequenceNumberThatPointsPastTheFrameMakesItUndatedAndIsToldOnceAClip) {
  auto frames = framesOf({{20, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (std::size_t i = 5; i < 9; ++i) frames[i].bytes[3 * 12000 + 1] = 0xF7;
  const ProgramResult result = capture(frames, {"--format", "dv"});
  EXPECT_EQ(result.exitCode, 3);
  const std::string told = "points past its own end";
  const std::size_t first = result.err.find(told);
  EXPECT_NE(first, std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(told, first + 1), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("4 of 20 frames point past their own end"), std::string::npos) << result.err;
  ASSERT_EQ(report().at("clips").size(), 1U);
  EXPECT_EQ(clipFile(report().at("clips").at(0), "moviePath"), bytesOf(frames, 0, 20));
}

TEST_F(CaptureProgram, AnUndatedTapeThatChangesSystemGoesOnInAFileBesideTheClips) {
  const auto frames = framesOf(
      {{6, std::nullopt, timecodeOf(0, 0, 0, 0)}, {5, std::nullopt, timecodeOf(0, 0, 0, 6), DVSystem::ntsc525_60}});
  capture(frames, {"--format", "dv"});
  const json clips = report().at("clips");
  ASSERT_EQ(clips.size(), 1U);
  EXPECT_EQ(clips.at(0).at("movieFrames"), 11);
  EXPECT_EQ(clipFile(clips.at(0), "moviePath"), bytesOf(frames, 0, 6));
  ASSERT_EQ(clips.at(0).at("movieContinuations").size(), 1U);
  EXPECT_EQ(readText(folder / ("clips/" + clips.at(0).at("movieContinuations").at(0).get<std::string>())),
            bytesOf(frames, 6, 11));
}

}  // namespace
}  // namespace zq::test

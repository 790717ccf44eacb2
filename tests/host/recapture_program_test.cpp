// The recapture command on good tapes, as a user runs it.

#include "support/recapture_program.h"

#include <gtest/gtest.h>

namespace zq::test {
namespace {

TEST_F(RecaptureProgram, HoldsTheFramesFromTheStartTimecodeUpToTheOneBeforeTheEndTimecode) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 150, 249));
}

TEST_F(RecaptureProgram, RecapturesAllClipsWhoseTimecodesStartAgainAtZero) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  markAll();
  const json report = recaptureJson();
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  expectMovie(report, "2", bytesOf(frames, 150, 249));
  expectMovie(report, "3", bytesOf(frames, 250, 374));
}

/// The length of the scene before the clip, in frames.
class RecaptureBehindAScene : public RecaptureProgram, public ::testing::WithParamInterface<int> {};

// Going back four seconds before its start, the preroll of a clip may come to the same timecode in the scene before.
TEST_P(RecaptureBehindAScene, IsNotMisledByTheStartTimecodeInIt) {
  const SMPTETime zero = timecodeOf(0, 0, 0, 0);
  const Frames frames = framesOf({{150, kFirst, zero}, {GetParam(), kSecond, zero}, {125, kThird, zero}});
  captureTape(frames);
  mark({"3"});
  const std::size_t first = frames.size() - 125;
  expectMovie(recaptureJson(), "3", bytesOf(frames, first, first + 124));
}

INSTANTIATE_TEST_SUITE_P(OfEachLength, RecaptureBehindAScene,
                         ::testing::Values(5, 97, 98, 99, 100, 101, 102, 104, 125));

TEST_F(RecaptureProgram, ReportsEachClip) {
  captureTape(holidayFrames());
  mark({"1", "3"});
  json report = recaptureJson();
  EXPECT_GT(report.at("tapeSeconds").get<double>(), 10);
  report.erase("tapeSeconds");
  EXPECT_EQ(report, (json{{"tape", "holiday"},
                          {"mode", "automatic"},
                          {"clips",
                           {{{"clipId", "1"},
                             {"status", "recaptured"},
                             {"moviePath", "2004-07-15T13-30-45.mov"},
                             {"recapturePath", "1.mov"},
                             {"movieFrames", 149}},
                            {{"clipId", "3"},
                             {"status", "recaptured"},
                             {"moviePath", "2004-07-16T09-00-00.mov"},
                             {"recapturePath", "3.mov"},
                             {"movieFrames", 124}}}},
                          {"recaptured", 2},
                          {"failed", 0},
                          {"alerts",
                           {{{"message", "Recapture done in current tape, please select another tape"},
                             {"informative", "2 clip recaptured - 0 failed"}}}}}));
}

TEST_F(RecaptureProgram, PrintsATableWithoutJson) {
  captureTape(holidayFrames());
  mark({"2"});
  const ProgramResult result = recapture();
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find(';')),
            " clip  recorded             from          frames  status      file\n"
            "    2  2004-07-15T14:00:00  00:00:00:00       99  recaptured  2004-07-15T14-00-00.mov\n"
            "\n"
            "1 recaptured, 0 failed, 0 cancelled");
}

TEST_F(RecaptureProgram, LeavesNothingElseInTheFolder) {
  captureTape(holidayFrames());
  mark({"1", "3"});
  recapture();
  EXPECT_EQ(filesOfAgain(), (Words{"1.mov", "2004-07-15T13-30-45.mov", "2004-07-16T09-00-00.mov", "3.mov"}));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "again/1.mov"));
}

TEST_F(RecaptureProgram, TellsTheCatalogue) {
  captureTape(holidayFrames());
  mark({"2", "3"});
  const json before = storedClip("3");
  recapture();
  EXPECT_EQ(idsWith("holiday", "marked"), json::array());
  EXPECT_EQ(idsWith("holiday", "recaptured"), ids({"2", "3"}));
  json after = storedClip("3");
  EXPECT_EQ(after.at("recapturedPath"), folder / "again/2004-07-16T09-00-00.mov");
  for (const char* key : {"marked", "recaptured", "recapturedPath"}) after[key] = before.at(key);
  EXPECT_EQ(after, before) << "nothing else was to change";
}

TEST_F(RecaptureProgram, LeavesTheTapeAndTheFirstCaptureAsTheyAre) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  markAll();
  const std::string session = readText(folder / "clips/session.json");
  const std::string movie = readText(folder / "clips/2004-07-15T14-00-00.mov");
  recapture();
  EXPECT_TRUE(readText(tapePath()) == bytesOf(frames, 0, frames.size()));
  EXPECT_EQ(readText(folder / "clips/session.json"), session);
  EXPECT_TRUE(readText(folder / "clips/2004-07-15T14-00-00.mov") == movie);
}

class RecaptureFormats : public RecaptureProgram,
                         public ::testing::WithParamInterface<std::tuple<const char*, DVSystem>> {};

TEST_P(RecaptureFormats, HoldTheFramesOfTheTapeByteForByte) {
  const auto& [format, system] = GetParam();
  const Frames frames = framesOf({{60, kFirst, timecodeOf(0, 10, 0, 0), system},
                                  {50, kSecond, timecodeOf(0, 0, 0, 0), system},
                                  {40, kThird, timecodeOf(0, 0, 30, 0), system}});
  captureTape(frames);
  markAll();
  const json report = recaptureJson({"--format", format});
  expectMovie(report, "1", bytesOf(frames, 0, 59));
  expectMovie(report, "2", bytesOf(frames, 60, 109));
  expectMovie(report, "3", bytesOf(frames, 110, 149));
  EXPECT_EQ(entryOf(report, "1").at("moviePath"), std::string("2004-07-15T13-30-45.") + format);
  EXPECT_EQ(entryOf(report, "1").at("recapturePath"), "1.mov");
}

INSTANTIATE_TEST_SUITE_P(Each, RecaptureFormats,
                         ::testing::Combine(::testing::Values("mov", "avi", "mkv", "dv"),
                                            ::testing::Values(DVSystem::pal625_50, DVSystem::ntsc525_60)));

TEST_F(RecaptureProgram, OfATapeOfOneClipOfTwoSeconds) {
  const Frames frames = framesOf({{50, kFirst, timecodeOf(0, 0, 0, 0)}});
  captureTape(frames);
  mark({"1"});
  expectMovie(recaptureJson(), "1", bytesOf(frames, 0, 49));
}

TEST_F(RecaptureProgram, OfScenesOfTwoFrames) {
  const Frames frames = framesOf({{100, kFirst, timecodeOf(0, 0, 0, 0)},
                                  {2, kSecond, timecodeOf(0, 0, 4, 0)},
                                  {100, kThird, timecodeOf(0, 0, 4, 2)}});
  captureTape(frames);
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 100, 101));
}

TEST_F(RecaptureProgram, FindsAClipFarDownTheTape) {
  // A minute before and behind.
  const Frames frames = framesOf({{1500, kFirst, timecodeOf(0, 0, 0, 0)},
                                  {75, kSecond, timecodeOf(0, 1, 0, 0)},
                                  {1500, kThird, timecodeOf(0, 1, 3, 0)}});
  captureTape(frames, "holiday", {"--set", "captureMovie=false"});
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 1500, 1574));
}

TEST_F(RecaptureProgram, OfClipsOfTwoSessionsOfOneTape) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  captureAgain();
  mark({"1", "6"});
  const json report = recaptureJson();
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  expectMovie(report, "6", bytesOf(frames, 250, 374));
}

TEST_F(RecaptureProgram, OfOneSceneThatTwoSessionsHave) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  captureAgain();
  mark({"2", "5"});
  const json report = recaptureJson();
  expectMovie(report, "2", bytesOf(frames, 150, 249));
  expectMovie(report, "5", bytesOf(frames, 150, 249));
  EXPECT_NE(entryOf(report, "2").at("moviePath"), entryOf(report, "5").at("moviePath"));
}

TEST_F(RecaptureProgram, TakesTheClipsOfThisTapeOnly) {
  const Frames other = framesOf({{150, kFirst, timecodeOf(0, 0, 0, 0)}});
  captureTape(holidayFrames());
  captureTape(other, "other");
  mark({"2", "4"});
  const json report = recaptureJson({}, 0, "other");
  EXPECT_EQ(report.at("clips").size(), 1U);
  expectMovie(report, "4", bytesOf(other, 0, 149));
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
}

TEST_F(RecaptureProgram, KeepsFramesThatLostTheirTimecodeOrDate) {
  Frames frames = holidayFrames();
  const auto lost = framesOf({{2, {{2004, 7, 15, 14, 0, 2}}, std::nullopt}, {2, std::nullopt, std::nullopt}});
  for (std::size_t i = 0; i < 4; ++i) frames[200 + i] = lost[i];
  captureTape(frames);
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 150, 249));
}

TEST_F(RecaptureProgram, ATimecodeThatJumpsOnTheTapeIsNoFault) {
  const Frames frames = framesOf({{150, kFirst, timecodeOf(0, 0, 0, 0)},
                                  {60, kSecond, timecodeOf(0, 0, 6, 0)},
                                  {60, {{2004, 7, 15, 14, 0, 3}}, timecodeOf(0, 0, 20, 0)}});
  captureTape(frames);
  ASSERT_EQ(clipsOf("holiday").size(), 2U);
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 150, 269));
}

TEST_F(RecaptureProgram, WritesNothingOver) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  for (int time = 0; time < 3; ++time) {
    mark({"1", "2"});
    const json report = recaptureJson();
    expectMovie(report, "1", bytesOf(frames, 0, 149));
    expectMovie(report, "2", bytesOf(frames, 150, 249));
  }
  EXPECT_EQ(filesOfAgain(), (Words{"1.mov", "2.mov", "2004-07-15T13-30-45-2.mov", "2004-07-15T13-30-45-3.mov",
                                   "2004-07-15T13-30-45.mov", "2004-07-15T14-00-00-2.mov", "2004-07-15T14-00-00-3.mov",
                                   "2004-07-15T14-00-00.mov", "aliases-2", "aliases-2/1.mov", "aliases-2/2.mov",
                                   "aliases-3", "aliases-3/1.mov", "aliases-3/2.mov"}));
  EXPECT_EQ(storedClip("1").at("recapturedPath"), folder / "again/2004-07-15T13-30-45-3.mov");
}

TEST_F(RecaptureProgram, IntoTheFolderOfTheFirstCaptureWritesNothingOver) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  std::filesystem::rename(folder / "clips", folder / "again");
  const Words before = filesOfAgain();
  const std::string movie = readText(folder / "again/2004-07-15T14-00-00.mov");
  mark({"2"});
  const json report = recaptureJson();
  EXPECT_EQ(entryOf(report, "2").at("moviePath"), "2004-07-15T14-00-00-2.mov");
  expectMovie(report, "2", bytesOf(frames, 150, 249));
  EXPECT_TRUE(readText(folder / "again/2004-07-15T14-00-00.mov") == movie);
  EXPECT_EQ(filesOfAgain().size(), before.size() + 2);
}

TEST_F(RecaptureProgram, AFileOfTheUsersWhereAnAliasWouldBeStays) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  mark({"2"});
  std::filesystem::create_directory(folder / "again");
  writeText(folder / "again/2.mov", "mine");
  const json report = recaptureJson();
  expectMovie(report, "2", bytesOf(frames, 150, 249));
  EXPECT_EQ(entryOf(report, "2").at("recapturePath"), "aliases-2/2.mov");
  EXPECT_EQ(readText(folder / "again/2.mov"), "mine");
}

TEST_F(RecaptureProgram, ComesOutTheSameEveryTime) {
  captureTape(holidayFrames());
  std::string first;
  for (int time = 0; time < 3; ++time) {
    std::filesystem::remove_all(folder / "again");
    markAll();
    const ProgramResult result = recapture({"--json"});
    if (time == 0) first = result.out;
    EXPECT_EQ(result.out, first);
  }
}

TEST_F(RecaptureProgram, OfAClipWhoseDropFrameCountPassesAMinute) {
  constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
  Frames frames = framesOf({{150, kFirst, timecodeOf(0, 0, 0, 0), kNtsc}, {100, kSecond, std::nullopt, kNtsc}});
  FrameStamp stamp;
  stamp.dropFrame = true;
  stamp.timecode = timecodeOf(0, 0, 58, 20, 2);
  for (std::size_t i = 150; i < frames.size(); ++i) {
    stamp.dateTime = StampDateTime{2004, 7, 15, 14, 0, static_cast<int>(i - 150) / 30};
    stampFrame(frames[i].bytes, stamp);
    stamp.timecode = ZQACTimecodeUtils::addNbFrameToTimecode(1, *stamp.timecode);
    if (stamp.timecode->mSeconds == 0 && stamp.timecode->mFrames == 0) stamp.timecode->mFrames = 2;
  }
  captureTape(frames);
  ASSERT_EQ(storedClip("2").at("clipEndTimecode"), "00:01:02:01");
  mark({"2"});
  expectMovie(recaptureJson(), "2", bytesOf(frames, 150, 249));
}

// In manual mode the user moves the tape; the image is at its beginning.

TEST_F(RecaptureProgram, InManualModeRecapturesTheSessionThatTheTapeIsIn) {
  const Frames frames = holidayFrames();
  captureTape(frames);
  mark({"1", "3"});
  const json report = recaptureJson({"--manual"});
  EXPECT_EQ(report.at("mode"), "manual");
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  expectMovie(report, "3", bytesOf(frames, 250, 374));
  EXPECT_EQ(report.at("alerts"),
            (json{{{"message", "Recapture done in current sequence, please move the tape to another position"},
                   {"informative", "2 clip recaptured - 0 failed"}}}));
}

TEST_F(RecaptureProgram, InManualModeAClipOfAnotherSessionIsLeft) {
  const Frames frames = holidayFrames();
  const Frames elsewhere = framesOf({{150, {{2010, 1, 1, 9, 0, 0}}, timecodeOf(0, 0, 0, 0)}});
  captureTape(frames);
  writeTape(tapePath("later"), elsewhere);
  const ProgramResult captured =
      runDeckhand(folder, {"capture", "--device", "tape:" + tapePath("later"), "--output", folder / "clips",
                           "--catalogue", folder / "tapes.db", "--tape", "holiday"});
  ASSERT_EQ(captured.exitCode, 0) << captured.err;
  mark({"1", "4"});
  const json report = recaptureJson({"--manual"}, 3);
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  EXPECT_EQ(entryOf(report, "4").at("status"), "failed");
  EXPECT_EQ(entryOf(report, "4").at("reason"),
            "It is not of the session that the tape was in; move the tape to its place and start again.");
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"4"}));
}

}  // namespace
}  // namespace zq::test

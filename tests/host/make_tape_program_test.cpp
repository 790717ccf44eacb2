// The make-tape command, and the commands that need no tape, as a user runs them.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "support/program.h"

namespace zq::test {
namespace {

using nlohmann::json;

TEST(MakeTapeProgram, MakesTheScenesThatWereAskedFor) {
  const ProgramFolder folder;
  const ProgramResult made =
      runDeckhand(folder, {"make-tape", folder / "try.dv", "--system", "ntsc", "--scene", "2004-07-15T13:30:45,0.5",
                           "--scene", "2004-07-16T09:00:00,0.4,10:00:00:00", "--scene", "none,0.2"});
  EXPECT_EQ(made.exitCode, 0) << made.err;
  const json tape = json::parse(runDeckhand(folder, {"inspect", folder / "try.dv", "--json"}).out);
  EXPECT_EQ(tape.at("system"), "525/60");
  EXPECT_EQ(tape.at("frames"), 15 + 12 + 6);
  const json& scenes = tape.at("scenes");
  ASSERT_EQ(scenes.size(), 2U) << "an undated scene cuts nothing";
  EXPECT_EQ(scenes.at(0).at("recordingDate"), "2004-07-15T13:30:45");
  EXPECT_EQ(scenes.at(0).at("startTimecode"), "00:00:00:00");
  EXPECT_EQ(scenes.at(1).at("startTimecode"), "10:00:00:00");
  EXPECT_EQ(scenes.at(1).at("endTimecode"), "10:00:00:17");
}

TEST(MakeTapeProgram, MakesThreeScenesWhenNothingIsAskedFor) {
  const ProgramFolder folder;
  EXPECT_EQ(runDeckhand(folder, {"make-tape", folder / "try.dv"}).exitCode, 0);
  const json tape = json::parse(runDeckhand(folder, {"inspect", folder / "try.dv", "--json"}).out);
  EXPECT_EQ(tape.at("scenes").size(), 3U);
}

TEST(MakeTapeProgram, LeavesAFileThatExistsAlone) {
  const ProgramFolder folder;
  writeText(folder / "mine.dv", "mine");
  const ProgramResult result = runDeckhand(folder, {"make-tape", folder / "mine.dv"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("mine.dv"), std::string::npos) << result.err;
  EXPECT_EQ(readText(folder / "mine.dv"), "mine");
}

TEST(MakeTapeProgram, RefusesScenesThatCannotBe) {
  const ProgramFolder folder;
  for (const char* scene :
       {"2004-07-15T13:30:45", "tomorrow,5", "2004-13-15T13:30:45,5", "2004-02-31T13:30:45,5", "2031-07-15T13:30:45,5",
        "2004-07-15T13:30:45,0", "2004-07-15T13:30:45,-1", "2004-07-15T13:30:45,x", "2004-07-15T13:30:45,5,00:00:00:25",
        "2004-07-15T13:30:45,5,1:2", "2004-07-15T13:30:45,5,00:00:00:00,more"}) {
    const ProgramResult result = runDeckhand(folder, {"make-tape", folder / "try.dv", "--scene", scene});
    EXPECT_NE(result.exitCode, 0) << scene;
    EXPECT_NE(result.err.find("scene"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "try.dv")) << scene;
  }
}

TEST(MakeTapeProgram, SaysThatTheFileMayNotGrowAndLeavesNoPartOfIt) {
  const ProgramFolder folder;
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit limit{1 << 20, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limit);
  const ProgramResult result = runDeckhand(folder, {"make-tape", folder / "tape.dv"});
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("tape.dv"), std::string::npos) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "tape.dv"));
}

TEST(Program, SaysItsVersion) {
  const ProgramFolder folder;
  const ProgramResult result = runDeckhand(folder, {"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out.rfind("deckhand ", 0), 0U) << result.out;
}

TEST(Program, EveryCommandHasHelpWithExamples) {
  const ProgramFolder folder;
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{}, {"devices"}, {"inspect"}, {"capture"}, {"make-tape"}}) {
    std::vector<std::string> words = command;
    words.emplace_back("--help");
    const ProgramResult result = runDeckhand(folder, words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("Examples:\n  deckhand "), std::string::npos) << result.out;
  }
}

TEST(Program, WantsACommand) {
  const ProgramFolder folder;
  EXPECT_EQ(runDeckhand(folder, {}).exitCode, 2);
  EXPECT_EQ(runDeckhand(folder, {"play"}).exitCode, 2);
}

TEST(DevicesProgram, SaysHowATapeImageIsPlayed) {
  const ProgramFolder folder;
  const ProgramResult result = runDeckhand(folder, {"devices"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("tape:PATH"), std::string::npos);
  EXPECT_EQ(json::parse(runDeckhand(folder, {"devices", "--json"}).out), (json{{"devices", json::array()}}));
}

}  // namespace
}  // namespace zq::test

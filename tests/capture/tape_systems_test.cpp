// Tapes of either system, and of both.

#include <gmock/gmock.h>

#include "support/capture_scenario.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

/// 20 frames of 625/50 and then 20 of 525/60; the clock runs on.
TapeRecipe mixedTape() {
  return {{20, 0, 0, kPal}, {20, 1, 20, kNtsc}};
}

FrameBytes framesOfTape(const TapeRecipe& tape, const std::vector<std::uint32_t>& ids) {
  FrameBytes all;
  for (const std::uint32_t id : ids) all.insert(all.end(), tape.frames()[id].begin(), tape.frames()[id].end());
  return all;
}

TEST(TapeSystems, A525_60TapeIsSampledInItsOwnFrames) {
  CaptureScenario scenario({{40, 0, 0, kNtsc}, {40, 100, 0, kNtsc}});
  scenario.settings.setIntegerForKey(ZQACSampleInterval, 0);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 39));
  EXPECT_EQ(scenario.movieOf(3), idsFromTo(40, 79));
  EXPECT_THAT(scenario.thumbnailsOf(2, kNtsc), ElementsAre(0U, 30U, 39U));
  EXPECT_THAT(scenario.thumbnailsOf(3, kNtsc), ElementsAre(40U, 70U, 79U));
  EXPECT_EQ(*scenario.delegate.infos.at(1).clipDuration, timecodeOf(0, 0, 1, 9));
}

TEST(TapeSystems, AChangeOfSystemIsNoCutWithSceneDetectionOnAndTheMovieGoesOnInAFileBesideIt) {
  const TapeRecipe tape = mixedTape();
  CaptureScenario scenario(tape);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 19));
  EXPECT_EQ(scenario.movieAt(backend::continuationPath(scenario.delegate.moviePath(2), 2)), idsFromTo(20, 39));
  EXPECT_EQ(scenario.delegate.clips, 2);
  EXPECT_TRUE(readFile(scenario.delegate.thumbnailsPath(2)) == framesOfTape(tape, {0, 39}));
}

TEST(TapeSystems, AChangeOfSystemCutsTheClipWithSceneDetectionOff) {
  CaptureScenario scenario(mixedTape());
  scenario.settings.setBoolForKey(ZQACDetectScene, false);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(1), idsFromTo(0, 19));
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(20, 39));
  EXPECT_THAT(scenario.thumbnailsOf(1, kPal), ElementsAre(0U, 19U));
  EXPECT_THAT(scenario.thumbnailsOf(2, kNtsc), ElementsAre(20U, 39U));
  EXPECT_THAT(scenario.delegateCalls(), ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1",
                                                    "delegate: will", "delegate: did clip 2", "delegate: end"));
  EXPECT_EQ(*scenario.delegate.infos.at(0).clipEndTimecode, timecodeOf(0, 0, 0, 19, 1));
  EXPECT_EQ(*scenario.delegate.infos.at(1).clipStartTimecode, timecodeOf(0, 0, 0, 20, 2));
}

TEST(TapeSystems, AChangeOfSystemWithADateJumpIsACut) {
  CaptureScenario scenario({{20, 0, 50, kPal}, {20, 100, 0, kNtsc}});
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 19));
  EXPECT_EQ(scenario.movieOf(3), idsFromTo(20, 39));
  EXPECT_EQ(scenario.movieCount(), 2U);
}

}  // namespace
}  // namespace zq::test

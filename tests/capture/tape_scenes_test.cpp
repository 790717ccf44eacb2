// Whole tapes through the simulated deck: which frames each clip's movie and thumbnails file hold.

#include <gmock/gmock.h>

#include "support/capture_scenario.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The seeds order what threads do at the same time.
class TapeScenes : public testing::TestWithParam<std::uint64_t> {
 protected:
  static CaptureScenario scenarioOf(const TapeRecipe& tape) { return CaptureScenario(tape, {}, GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Seeds, TapeScenes, testing::Range<std::uint64_t>(0, 4));

/// Three scenes of 30 frames.
void expectThreeWholeScenes(const CaptureScenario& scenario) {
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 29));
  EXPECT_EQ(scenario.movieOf(3), idsFromTo(30, 59));
  EXPECT_EQ(scenario.movieOf(4), idsFromTo(60, 89));
  EXPECT_EQ(scenario.movieCount(), 3U);
  EXPECT_THAT(
      scenario.delegateCalls(),
      ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1", "delegate: will", "delegate: did clip 2",
                  "delegate: will", "delegate: did clip 3", "delegate: will", "delegate: did clip 4", "delegate: end"));
}

TEST_P(TapeScenes, WithContinuousTimecode) {
  CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, 30}, {30, 200, 60}});
  scenario.settings.setIntegerForKey(ZQACSampleInterval, 0);
  scenario.record();
  expectThreeWholeScenes(scenario);
  EXPECT_THAT(scenario.thumbnailsOf(1), IsEmpty());
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(0U, 25U, 29U));
  EXPECT_THAT(scenario.thumbnailsOf(3), ElementsAre(30U, 55U, 59U));
  EXPECT_THAT(scenario.thumbnailsOf(4), ElementsAre(60U, 85U, 89U));
  const ClipInfo& second = scenario.delegate.infos.at(2);
  EXPECT_EQ(*second.clipStartTimecode, timecodeOf(0, 0, 1, 5, 1));
  EXPECT_EQ(*second.clipEndTimecode, timecodeOf(0, 0, 2, 9, 1));
  EXPECT_EQ(*second.clipDuration, timecodeOf(0, 0, 1, 4));
  EXPECT_EQ(*second.clipRecordingDate, *dateValueAt(100));
  EXPECT_EQ(second.clipAspectRatio, 1);
}

TEST_P(TapeScenes, WithTimecodeThatStartsAtZeroInEachScene) {
  CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, 0}, {30, 200, 0}});
  scenario.settings.setIntegerForKey(ZQACSampleInterval, 0);
  scenario.record();
  expectThreeWholeScenes(scenario);
  EXPECT_THAT(scenario.thumbnailsOf(3), ElementsAre(30U, 55U, 59U));
  EXPECT_EQ(*scenario.delegate.infos.at(2).clipStartTimecode, timecodeOf(0, 0, 0, 0, 1));
  EXPECT_EQ(*scenario.delegate.infos.at(2).clipEndTimecode, timecodeOf(0, 0, 1, 4, 1));
}

TEST_P(TapeScenes, WithOneTimecodeInEveryFrame) {
  TapeRecipe tape{};
  for (const int date : {0, 100, 200}) tape.add({30, date, 1000, DVSystem::pal625_50, true});
  CaptureScenario scenario = scenarioOf(tape);
  scenario.settings.setIntegerForKey(ZQACSampleInterval, 0);
  scenario.record();
  expectThreeWholeScenes(scenario);
  EXPECT_THAT(scenario.thumbnailsOf(3), ElementsAre(30U, 59U));
}

TEST_P(TapeScenes, WithTimecodeThatJumpsForwardsAtEachScene) {
  CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, 5000}, {30, 200, 90000}});
  scenario.record();
  expectThreeWholeScenes(scenario);
}

TEST_P(TapeScenes, WithDatesThatGoBackwards) {
  CaptureScenario scenario = scenarioOf({{30, 300, 0}, {30, 200, 30}, {30, 100, 60}});
  scenario.record();
  expectThreeWholeScenes(scenario);
}

TEST_P(TapeScenes, OfOneFrameEach) {
  CaptureScenario scenario = scenarioOf({{1, 0, 0}, {1, 100, 1}, {1, 200, 2}, {1, 300, 0}, {1, 400, 0}});
  scenario.record();
  for (int i = 0; i < 5; ++i) {
    const auto frame = static_cast<std::uint32_t>(i);
    EXPECT_THAT(scenario.movieOf(2 + i), ElementsAre(frame));
    EXPECT_THAT(scenario.thumbnailsOf(2 + i), ElementsAre(frame));
    const ClipInfo& info = scenario.delegate.infos.at(1 + static_cast<std::size_t>(i));
    EXPECT_EQ(*info.clipStartTimecode, *info.clipEndTimecode);
    EXPECT_EQ(*info.clipDuration, nullTimecode);
  }
}

TEST_P(TapeScenes, AreNotCutByAStepOfOneSecondButByOneOfTwo) {
  // The clock of the camcorder runs on to second 1 in the first scene.
  CaptureScenario scenario = scenarioOf({{26, 0, 0}, {10, 2, 26}, {10, 4, 36}});
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 35));
  EXPECT_EQ(scenario.movieOf(3), idsFromTo(36, 45));
  EXPECT_EQ(scenario.movieCount(), 2U);
}

TEST_P(TapeScenes, BehindAnUndatedLeadIn) {
  CaptureScenario scenario = scenarioOf({{10, std::nullopt, 0}, {20, 0, 10}});
  scenario.record();
  EXPECT_EQ(scenario.movieOf(1), idsFromTo(0, 9));
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(10, 29));
  EXPECT_THAT(scenario.thumbnailsOf(1), ElementsAre(0U, 9U));
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(10U, 29U));
  const ClipInfo& leadIn = scenario.delegate.infos.at(0);
  EXPECT_EQ(leadIn.clipRecordingDate, nullptr);
  EXPECT_EQ(*leadIn.clipDuration, timecodeOf(0, 0, 0, 9));
}

TEST_P(TapeScenes, WithUndatedFramesInTheirMidst) {
  CaptureScenario scenario = scenarioOf({{10, 0, 0}, {5, std::nullopt, 10}, {10, 1, 15}});
  scenario.record();
  EXPECT_EQ(scenario.movieOf(2), idsFromTo(0, 24));
  EXPECT_EQ(scenario.movieCount(), 1U);
}

// Without a timecode no movie can be started; the pictures at least are all kept.
TEST_P(TapeScenes, WithoutTimecodesKeepPicturesOnly) {
  CaptureScenario scenario = scenarioOf({{6, 0, std::nullopt}, {4, 100, std::nullopt}});
  scenario.record();
  EXPECT_EQ(scenario.movieCount(), 0U);
  EXPECT_EQ(scenario.thumbnailsOf(2), idsFromTo(0, 5));
  EXPECT_EQ(scenario.thumbnailsOf(3), idsFromTo(6, 9));
  EXPECT_EQ(scenario.delegate.infos.at(1).clipStartTimecode, nullptr);
  EXPECT_EQ(*scenario.delegate.infos.at(1).clipRecordingDate, *dateValueAt(0));
}

TEST_P(TapeScenes, AreOneClipWithSceneDetectionOff) {
  CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, 30}, {30, 50, 0}});
  scenario.settings.setBoolForKey(ZQACDetectScene, false);
  scenario.record();
  EXPECT_EQ(scenario.movieOf(1), idsFromTo(0, 89));
  EXPECT_EQ(scenario.movieCount(), 1U);
  EXPECT_THAT(scenario.delegateCalls(),
              ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1", "delegate: end"));
}

TEST_P(TapeScenes, BeginBehindTheFramesThatAreLeftOut) {
  for (const int secondTimecode : {30, 0, 700}) {
    CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, secondTimecode}});
    scenario.settings.setIntegerForKey(ZQACNbDropFrame, 5);
    scenario.record();
    EXPECT_EQ(scenario.movieOf(2), idsFromTo(5, 29));
    EXPECT_EQ(scenario.movieOf(3), idsFromTo(35, 59));
    EXPECT_THAT(scenario.thumbnailsOf(3), ElementsAre(35U, 59U));
  }
}

TEST_P(TapeScenes, WithoutMoviesKeepPicturesOnly) {
  CaptureScenario scenario = scenarioOf({{30, 0, 0}, {30, 100, 30}});
  scenario.settings.setBoolForKey(ZQACCaptureMovie, false);
  scenario.record();
  EXPECT_EQ(scenario.movieCount(), 0U);
  EXPECT_THAT(scenario.thumbnailsOf(2), ElementsAre(0U, 29U));
}

}  // namespace
}  // namespace zq::test

// Whole recaptures: what is on the tape between a clip's timecodes is in its movie, whatever lies around it.

#include "support/recapture_scenario.h"

#include <gmock/gmock.h>

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class RecaptureScenarios : public testing::TestWithParam<platform::Duration> {
 protected:
  /// A deck that takes this long to obey.
  static backend::DeckOptions deck() {
    backend::DeckOptions options;
    options.reactions.command = GetParam();
    return options;
  }
};

INSTANTIATE_TEST_SUITE_P(Reaction, RecaptureScenarios, testing::Values(0s, 300ms, 1s),
                         [](const auto& row) { return std::to_string(row.param / 1ms) + "ms"; });

TEST_P(RecaptureScenarios, OfTheClipInTheMiddle) {
  RecaptureScenario scenario({{{0, 0, 300, false}, {60, 300, 300}, {120, 600, 300, false}}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(300, 598));
  EXPECT_EQ(scenario.delegate.movies, 1);
}

TEST_P(RecaptureScenarios, OfAllThreeClips) {
  RecaptureScenario scenario({{{0, 0, 300}, {60, 300, 300}, {120, 600, 300}}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(0, 298));
  EXPECT_EQ(scenario.movie(2), placesFromTo(300, 598));
  EXPECT_EQ(scenario.movie(3), placesFromTo(600, 898));
}

TEST_P(RecaptureScenarios, OfTheFirstAndTheLastClip) {
  RecaptureScenario scenario({{{0, 0, 300}, {60, 300, 300, false}, {120, 600, 300}}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(0, 298));
  EXPECT_EQ(scenario.movie(2), placesFromTo(600, 898));
}

TEST_P(RecaptureScenarios, OfClipsWhoseTimecodesBeginAgain) {
  RecaptureScenario scenario({{{0, 0, 300}, {60, 0, 300}, {120, 0, 300}}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(0, 298));
  EXPECT_EQ(scenario.movie(2), placesFromTo(300, 598));
  EXPECT_EQ(scenario.movie(3), placesFromTo(600, 898));
}

TEST_P(RecaptureScenarios, OfTwoSequences) {
  RecaptureScenario scenario({{{0, 0, 400}}, {{600, 400, 400}}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(0, 398));
  EXPECT_EQ(scenario.movie(2), placesFromTo(400, 798));
}

TEST_P(RecaptureScenarios, OfClipsOfA525Tape) {
  const auto clip = [](int date, int timecode, bool recapture) {
    return ClipPlan{date, timecode, 300, recapture, DVSystem::ntsc525_60};
  };
  RecaptureScenario scenario({{clip(0, 0, false), clip(60, 300, true), clip(120, 0, true)}}, deck());
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(300, 598));
  EXPECT_EQ(scenario.movie(2), placesFromTo(600, 898));
}

// The scene before the first clip of the catalogue was not captured.
TEST_P(RecaptureScenarios, OfATapeThatBeginsWithWhatIsInNoSequence) {
  RecaptureScenario scenario({{{0, 0, 250, false}}, {{600, 250, 400}}}, deck());
  scenario.tape->sequenceAtIndex(0)->setIsAllClipsRecaptured(true);
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(250, 648));
}

TEST_P(RecaptureScenarios, OfALiveDeck) {
  backend::DeckOptions options = deck();
  options.live = true;
  RecaptureScenario scenario({{{0, 0, 300, false}, {60, 300, 300}, {120, 600, 300}}}, options);
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(300, 598));
  EXPECT_EQ(scenario.movie(2), placesFromTo(600, 898));
}

/// The lines without those that repeat the one before.
std::vector<std::string> withoutRepeats(std::vector<std::string> lines) {
  lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
  return lines;
}

TEST(RecaptureInOrder, TheDeckIsToldSo) {
  RecaptureScenario scenario({{{0, 0, 300, false}, {60, 300, 300}, {120, 600, 300, false}}});
  scenario.recapture();
  EXPECT_THAT(withoutRepeats(scenario.journal.linesOf({"device"})),
              ElementsAre("device: mode 0 speed 0", "device: mode 0 speed -13000",  // to the beginning of the tape
                          "device: mode 1 speed 10000",                             // finds the sequence and settles
                          "device: mode 1 speed -13000",                            // settles
                          "device: mode 1 speed 13000",                             // the clip lies ahead
                          "device: mode 1 speed 10000",                             // and comes near
                          "device: mode 1 speed -7000",                             // is there
                          "device: mode 1 speed -10000",                            // goes back
                          "device: mode 1 speed 10000",                             // records
                          "device: mode 0 speed 0"));                               // has recorded the last clip
}

TEST(RecaptureInOrder, TheUserIsToldSo) {
  RecaptureScenario scenario({{{0, 0, 300, false}, {60, 300, 300}, {120, 600, 300, false}}});
  scenario.recapture();
  EXPECT_THAT(
      scenario.journal.linesOf({"note", "delegate", "alert"}),
      ElementsAre("delegate: did start", "note: Recapture is started in automatic mode",
                  "note: camera is searching right sequence of the clip being recaptured", "note: Searching sequence",
                  "note: Sequence found, camera is now searching the clip to be recaptured",
                  "note: Clip found, camera will start the recapture", "note: Clip found, camera will start recapture",
                  "note: Recapturing", "note: START", "delegate: will record", "note: Recapturing",
                  "delegate: did record 1-2", "alert: Recapture done in current tape, please select another tape",
                  "delegate: did end", "note: END", "delegate: end record of 1"));
  EXPECT_EQ(scenario.alerts.shown.at(0).informative, "1 clip recaptured - 0 failed");
}

TEST(RecaptureInOrder, AnAliasIsLeftForEachClip) {
  RecaptureScenario scenario({{{0, 0, 300}, {60, 300, 300}, {120, 600, 300, false}}});
  scenario.recapture();
  EXPECT_THAT(scenario.journal.linesOf({"files"}),
              ElementsAre("files: alias of /movies/1.mov", "files: write alias /recaptures/1-1.mov",
                          "files: alias of /movies/2.mov", "files: write alias /recaptures/1-2.mov"));
  EXPECT_THAT(scenario.delegate.allInfos, SizeIs(2));
}

TEST(RecaptureInOrder, EverySeedRecapturesTheSame) {
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RecaptureScenario scenario({{{0, 0, 250}, {60, 250, 250, false}, {120, 0, 250}}}, {}, seed);
    scenario.recapture();
    EXPECT_EQ(scenario.movie(1), placesFromTo(0, 248));
    EXPECT_EQ(scenario.movie(2), placesFromTo(500, 748));
  }
}

TEST(RecaptureInOrder, CancelledWhileItRecordsTheMovieIsDeleted) {
  RecaptureScenario scenario({{{0, 0, 300}, {60, 300, 300}}});
  scenario.controller().startRecapture();
  while (scenario.delegate.movies == 0) ASSERT_FALSE(scenario.letPass(1s));
  scenario.controller().startRecapture();
  EXPECT_TRUE(scenario.letPass(10s));
  EXPECT_THAT(scenario.journal.linesOf({"files"}), ElementsAre("files: remove /movies/1.mov"));
  EXPECT_EQ(scenario.alerts.shown.at(0).message, "Recapture has been canceled!");
  EXPECT_THAT(scenario.delegate.allInfos, IsEmpty());
  scenario.takeDown();
}

TEST(RecaptureInOrder, InManualModeTheTapeStopsWhereThereIsNoSequence) {
  RecaptureScenario scenario({{{0, 0, 100, false}}, {{600, 100, 300}}});
  scenario.tape->sequenceAtIndex(0)->setIsAllClipsRecaptured(true);
  scenario.controller().setRecaptureModeTag(1);
  scenario.recapture();
  EXPECT_EQ(scenario.alerts.shown.at(0).message, "There is no sequence to be recaptured in this position!");
  EXPECT_THAT(scenario.journal.linesOf({"device"}),
              ElementsAre("device: mode 1 speed 10000", "device: mode 0 speed 0"));
}

TEST(RecaptureInOrder, InManualModeTheSequenceThatPlaysIsRecaptured) {
  RecaptureScenario scenario({{{0, 0, 400}}, {{600, 400, 300}}});
  scenario.controller().setRecaptureModeTag(1);
  scenario.recapture();
  EXPECT_EQ(scenario.movie(1), placesFromTo(0, 398));
  EXPECT_EQ(scenario.delegate.movies, 1);
  EXPECT_EQ(scenario.alerts.shown.at(0).informative, "1 clip recaptured - 0 failed");
}

}  // namespace
}  // namespace zq::test

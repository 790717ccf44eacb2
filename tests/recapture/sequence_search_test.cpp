// Finding the sequence that a frame lies in, by its recording date.

#include <gmock/gmock.h>

#include "recapture/tape_search.h"
#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(SequenceOnDate, ContainsItsFirstAndItsLastSecond) {
  const TapeValue tape = makeTape({{{100, 0, 251}}});  // 10 s
  EXPECT_EQ(sequenceOnDate(*tape, dateValueAt(99)), nullptr);
  EXPECT_NE(sequenceOnDate(*tape, dateValueAt(100)), nullptr);
  EXPECT_NE(sequenceOnDate(*tape, dateValueAt(110)), nullptr);
  EXPECT_EQ(sequenceOnDate(*tape, dateValueAt(111)), nullptr);
}

TEST(SequenceOnDate, IsTheFirstOfTwoUntilAllItsClipsAreRecaptured) {
  const TapeValue tape = makeTape({{{100, 0}}, {{50, 0, 2500}}});
  EXPECT_EQ(sequenceOnDate(*tape, dateValueAt(105)), tape->sequenceAtIndex(0));
  tape->sequenceAtIndex(0)->setIsAllClipsRecaptured(true);
  EXPECT_EQ(sequenceOnDate(*tape, dateValueAt(105)), tape->sequenceAtIndex(1));
  tape->sequenceAtIndex(1)->setIsAllClipsRecaptured(true);
  EXPECT_EQ(sequenceOnDate(*tape, dateValueAt(105)), nullptr);
}

TEST(SequenceOnDate, IsNoneWithoutADateOrSequences) {
  EXPECT_EQ(sequenceOnDate(*makeTape({{{100, 0}}}), nullptr), nullptr);
  EXPECT_EQ(sequenceOnDate(*makeTape({}), dateValueAt(0)), nullptr);
  EXPECT_EQ(sequenceOnDate(*makeTape({{}}), dateValueAt(0)), nullptr);
}

class SequenceSearch : public RecaptureTest {
 protected:
  SequenceSearch() {
    device_ = selectDevice(kPlaying);
    tape_ = load({{{100, 5000}, {120, 5250}}, {{300, 9000}}});
  }

  std::shared_ptr<FakeCaptureDevice> device_;
  TapeValue tape_;
};

TEST_F(SequenceSearch, SaysSoOnEveryFrame) {
  controller_->setProcessNote("something");
  play(0, 0);
  EXPECT_EQ(note(), "Searching sequence");
}

TEST_F(SequenceSearch, ShowsTheSequenceThatItFinds) {
  play(5000, 100);
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: 00:03:20:00", "overlay: 2004-07-15T13:01:40",
                                            "note: Searching sequence", "timeline: sequence 1"));
  EXPECT_EQ(controller_->sequenceFound(), tape_->sequenceAtIndex(0));
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecapturedInSequence(), 2);
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 3);
}

// Frames are followed whenever they come.
TEST_F(SequenceSearch, NeedsNoSession) {
  EXPECT_FALSE(controller_->isStart());
  play(9000, 300);
  EXPECT_EQ(controller_->sequenceFound(), tape_->sequenceAtIndex(1));
}

TEST_F(SequenceSearch, EndsWithTheFrameThatFinds) {
  play(5000, 100);
  EXPECT_EQ(controller_->currentClip(), nullptr);
  EXPECT_EQ(controller_->clipToBeRecaptured(), nullptr);
}

TEST_F(SequenceSearch, InAutomaticModeCounts13FramesAndJumpsAtThe14th) {
  playTimes(13, 0, 0);
  EXPECT_THAT(deviceCommands(), IsEmpty());
  EXPECT_EQ(secondsNow(), 0);
  play(0, 0);
  EXPECT_THAT(linesOf({"note", "device", "session"}),
              ElementsAre("note: Searching sequence", "device: mode 0 speed 0", "device: mode 0 speed 13000",
                          "device: mode 1 speed 10000", "session: start", "note: Searching...."));
  EXPECT_EQ(secondsNow(), 4);
}

TEST_F(SequenceSearch, CountsAnewAfterEachJump) {
  playTimes(14 * 3, 0, 0);
  EXPECT_THAT(deviceCommands(), SizeIs(3 * 3));
  EXPECT_EQ(secondsNow(), 12);
  playTimes(13, 0, 0);
  EXPECT_EQ(secondsNow(), 12);
}

TEST_F(SequenceSearch, DoesNotForgetItsCountWhenASequenceIsFound) {
  playTimes(13, 0, 0);
  play(5000, 100);
  controller_->setSequenceFound(nullptr);
  play(0, 0);
  EXPECT_EQ(secondsNow(), 4);
}

TEST_F(SequenceSearch, InManualModeStopsAPlayingTapeAndAlerts) {
  for (const int tag : {1, 2, -1}) {
    controller_->setRecaptureModeTag(tag);
    device_->controls = kPlaying;
    journal_.clear();
    alerts_.shown.clear();
    play(0, 0);
    EXPECT_THAT(
        linesOf({"device", "alert"}),
        ElementsAre("device: mode 0 speed 0", "alert: There is no sequence to be recaptured in this position!"));
    EXPECT_EQ(alerts_.shown.at(0).informative, "Please move the tape to another position.");
  }
  EXPECT_EQ(secondsNow(), 0);
}

TEST_F(SequenceSearch, InManualModeLeavesATapeThatDoesNotPlay) {
  controller_->setRecaptureModeTag(1);
  for (const platform::AVCTransportControls controls : {kStopped, {1, 0}, {1, 13000}, {1, -10000}, {0, 10000}}) {
    device_->controls = controls;
    playTimes(20, 0, 0);
  }
  EXPECT_THAT(linesOf({"device", "alert"}), IsEmpty());
}

TEST_F(SequenceSearch, WithoutADateIsAMiss) {
  for (int i = 0; i < 14; ++i) controller_->findSequenceOnDate(nullptr);
  EXPECT_EQ(secondsNow(), 4);
}

TEST_F(SequenceSearch, WithoutATapeIsAMiss) {
  controller_->setCurrentTape(nullptr);
  playTimes(14, 5000, 100);
  EXPECT_EQ(secondsNow(), 4);
}

TEST_F(SequenceSearch, JumpsWithoutADeckForAsLong) {
  controller_->setSelectedVideoDevice(nullptr);
  journal_.clear();
  playTimes(14, 0, 0);
  EXPECT_EQ(secondsNow(), 4);
  EXPECT_THAT(linesOf({"device", "session"}), ElementsAre("session: start"));
  EXPECT_EQ(note(), "Searching....");
}

TEST_F(SequenceSearch, IsInterruptedByNoFrameWithoutADateOrATimecode) {
  play(std::nullopt, 100);
  play(5000, std::nullopt);
  play(std::nullopt, std::nullopt);
  EXPECT_THAT(journal_.lines(), IsEmpty());
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
}

TEST_F(SequenceSearch, IsMadeByVideoFramesOfTheFirstOutputOnly) {
  FrameRecipe recipe;
  recipe.timecode = timecodeAtFrame(DVSystem::pal625_50, 5000);
  recipe.date = dateAt(100);
  platform::QTSampleBuffer buffer = bufferOf(recipe);
  movieFileOutputAlter().deliver(buffer);
  EXPECT_THAT(journal_.lines(), IsEmpty());
  buffer.formatDescription.mediaType = platform::QTMediaTypeSound;
  movieFileOutput().deliver(buffer);
  EXPECT_THAT(journal_.lines(), IsEmpty());
  buffer.formatDescription.mediaType = platform::QTMediaTypeVideo;
  movieFileOutput().deliver(buffer);
  EXPECT_NE(controller_->sequenceFound(), nullptr);
}

TEST_F(SequenceSearch, PassesOverEmptyAndBrokenBuffers) {
  for (const std::size_t length : {0UL, 1UL, 79UL, 119999UL, 144000UL}) {
    platform::QTSampleBuffer buffer = bufferOfLength(length);
    buffer.smpteTime = valueWithSMPTETime(timecodeAtFrame(DVSystem::pal625_50, 5000));
    deliver(buffer);
  }
  EXPECT_THAT(linesOf({"note", "overlay", "device"}), IsEmpty());
}

TEST_F(SequenceSearch, RestsWhileTheRecaptureIsDone) {
  controller_->setIsRecaptureDone(true);
  journal_.clear();
  play(5000, 100);
  EXPECT_THAT(journal_.lines(), IsEmpty());
  controller_->openRecapture();
  play(5000, 100);
  EXPECT_NE(controller_->sequenceFound(), nullptr);
}

// The last two sequences of a 625/50 frame are never read.
TEST_F(SequenceSearch, ReadsTheDateFromTheFirstTenSequences) {
  FrameRecipe recipe;
  recipe.timecode = timecodeAtFrame(DVSystem::pal625_50, 5000);
  recipe.date = dateAt(100);
  const FrameBytes dated = frameBytesOf(recipe);
  FrameRecipe undatedRecipe = recipe;
  undatedRecipe.date = std::nullopt;
  const FrameBytes undated = frameBytesOf(undatedRecipe);
  const auto onlySequence = [&](std::ptrdiff_t index) {
    FrameBytes frame = undated;
    std::copy_n(dated.begin() + index * SEQUENCE_SIZE, SEQUENCE_SIZE, frame.begin() + index * SEQUENCE_SIZE);
    return controller_->getDateFromSampleBuffer(bufferOf(frame));
  };
  ASSERT_NE(onlySequence(9), nullptr);
  EXPECT_EQ(*onlySequence(9), *dateValueAt(100));
  EXPECT_EQ(onlySequence(10), nullptr);
  EXPECT_EQ(onlySequence(11), nullptr);
}

}  // namespace
}  // namespace zq::test

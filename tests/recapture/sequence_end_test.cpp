// A sequence without clips left ends: the next one is sought, or the session is over.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Alert = RecordingAlerts::Alert;

constexpr char kTapeDone[] = "Recapture done in current tape, please select another tape";
constexpr char kSequenceDone[] = "Recapture done in current sequence, please move the tape to another position";

/// A sequence of two clips and one of a single clip; the first is found.
class SequenceEnd : public RecaptureTest {
 protected:
  SequenceEnd() {
    device_ = selectDevice(kPlaying);
    tape_ = load({{{100, 1500}, {120, 3000}}, {{300, 6000}}});
    controller_->startRecapture();
    device_->setAVCTransportControls(kStopped);  // the rewind has come to its end
    find(0);
  }
  void find(std::size_t sequence) {
    controller_->findSequenceOnDate(clipOf(tape_, sequence, 0)->dateStartClip());
    journal_.clear();
  }
  /// Records a clip from its first to its last frame.
  void record(std::size_t sequence, std::size_t index) {
    const ClipValue clip = clipOf(tape_, sequence, index);
    controller_->setCurrentClip(clip);
    controller_->setClipToBeRecaptured(clip);
    controller_->setRecording(true);
    device_->controls = kPlaying;
    for (const TimecodeValue& timecode : {clip->timecodeStartClip(), clip->timecodeEndClip()}) {
      journal_.clear();
      controller_->setCurrentTimecode(*timecode);
      controller_->generateMovieFile();
    }
    tellThatFileIsFinished(movieFileOutput(), "");
  }
  void runMainTasks() { letPass(platform::Duration(0)); }

  std::shared_ptr<FakeCaptureDevice> device_;
  TapeValue tape_;
};

TEST_F(SequenceEnd, InAutomaticModeSeeksTheNextOne) {
  record(0, 0);
  EXPECT_NE(controller_->sequenceFound(), nullptr);
  record(0, 1);
  EXPECT_THAT(linesOf({"device", "alert", "note", "message", "movie"}),
              ElementsAre("movie: none", "device: mode 0 speed 0", "device: mode 0 speed 13000",
                          "device: mode 1 speed 10000", "note: Searching....", "message: hide"));
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  EXPECT_TRUE(tape_->sequenceAtIndex(0)->isAllClipsRecaptured());
  EXPECT_EQ(controller_->clipToBeRecaptured(), nullptr);
  EXPECT_TRUE(controller_->isStart());
}

TEST_F(SequenceEnd, InAutomaticModeOfTheLastClipAlertsAndReports) {
  record(0, 0);
  record(0, 1);
  find(1);
  record(1, 0);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{kTapeDone, "3 clip recaptured - 0 failed"}));
  EXPECT_THAT(linesOf({"delegate", "device", "alert", "message", "button", "timeline"}),
              ElementsAre("delegate: did record 2-1", "device: mode 0 speed 0", std::string("alert: ") + kTapeDone,
                          "message: hide", "delegate: did end", "button: off", "timeline: no cursor",
                          "timeline: refresh", "timeline: mouse on", "message: hide"));
  EXPECT_FALSE(controller_->isStart());
  runMainTasks();
  EXPECT_EQ(note(), "END");
  EXPECT_EQ(delegate_.allInfos, delegate_.infos);
  EXPECT_THAT(delegate_.allInfos, SizeIs(3));
}

TEST_F(SequenceEnd, OfTheLastClipCountsTheOnesThatFailed) {
  find(1);
  controller_->setSequenceFound(tape_->sequenceAtIndex(1));
  record(1, 0);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{kTapeDone, "1 clip recaptured - 2 failed"}));
}

TEST_F(SequenceEnd, AlertAnsweredOtherwiseLeavesTheSession) {
  find(1);
  controller_->setSequenceFound(tape_->sequenceAtIndex(1));
  alerts_.answer = 0;
  record(1, 0);
  EXPECT_TRUE(controller_->isStart());
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  EXPECT_THAT(linesOf({"message", "button"}), ElementsAre("message: hide"));
}

TEST_F(SequenceEnd, InManualModeStopsAndAlertsWithTheCountsOfTheSequence) {
  controller_->setRecaptureModeTag(1);
  record(0, 0);
  EXPECT_THAT(alerts_.shown, IsEmpty());
  record(0, 1);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{kSequenceDone, "2 clip recaptured - 0 failed"}));
  EXPECT_THAT(linesOf({"device", "alert", "message", "button"}),
              ElementsAre("device: mode 0 speed 0", "device: mode 0 speed 0", std::string("alert: ") + kSequenceDone,
                          "message: hide", "button: off", "message: hide"));
  EXPECT_TRUE(controller_->isRecaptureDone());
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
}

TEST_F(SequenceEnd, InManualModeCountsTheFailedOfTheSequenceOnly) {
  controller_->setRecaptureModeTag(1);
  clipOf(tape_, 0, 0)->setRecaptureFinished(true);  // not by this session
  record(0, 1);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{kSequenceDone, "1 clip recaptured - 1 failed"}));
}

TEST_F(SequenceEnd, InManualModeFramesRestUntilTheRecaptureIsOpenedAgain) {
  controller_->setRecaptureModeTag(1);
  record(0, 0);
  record(0, 1);
  play(6000, 300);
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  controller_->openRecapture();
  play(6000, 300);
  EXPECT_EQ(controller_->sequenceFound(), tape_->sequenceAtIndex(1));
}

// The start asks for the automatic mode, the end for the manual mode.
TEST_F(SequenceEnd, InModeTwoIsThatOfTheAutomaticMode) {
  controller_->setRecaptureModeTag(2);
  record(0, 0);
  record(0, 1);
  EXPECT_THAT(alerts_.shown, IsEmpty());
  EXPECT_EQ(note(), "Searching....");
  EXPECT_FALSE(controller_->isRecaptureDone());
  find(1);
  record(1, 0);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{kTapeDone, "3 clip recaptured - 0 failed"}));
}

TEST_F(SequenceEnd, ReportsInTheUsersLanguageAndOrder) {
  strings_.texts["%d clip recaptured - %d failed"] = "überspielt: %d; nicht: %d.";
  strings_.texts[kTapeDone] = "Band fertig";
  find(1);
  controller_->setSequenceFound(tape_->sequenceAtIndex(1));
  record(1, 0);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{"Band fertig", "überspielt: 1; nicht: 2."}));
}

TEST_F(SequenceEnd, ReportsWithATextThatHasNoPlaceForCounts) {
  strings_.texts["%d clip recaptured - %d failed"] = "done";
  find(1);
  controller_->setSequenceFound(tape_->sequenceAtIndex(1));
  record(1, 0);
  EXPECT_EQ(alerts_.shown.at(0).informative, "done");
}

TEST_F(SequenceEnd, WithoutATapeOrASequenceCountsNone) {
  controller_->setSequenceFound(nullptr);
  controller_->setRecaptureModeTag(1);
  controller_->endRecapture();
  EXPECT_EQ(alerts_.shown.at(0).informative, "-2 clip recaptured - 2 failed");
}

TEST_F(SequenceEnd, ReportsEachClipOnceHoweverOftenItIsRecorded) {
  delegate_.answer = [](int) { return RecapturePaths{"/movies/same.mov"}; };
  record(0, 0);
  record(0, 0);
  record(0, 1);
  controller_->endRecordForDelegate();
  EXPECT_THAT(delegate_.infos, SizeIs(3));
  EXPECT_THAT(delegate_.allInfos, SizeIs(2));
}

TEST_F(SequenceEnd, TheReportKeepsTheClipsOfEarlierSessions) {
  record(0, 0);
  controller_->startRecapture();  // cancelled
  runMainTasks();
  EXPECT_THAT(delegate_.allInfos, SizeIs(1));
  controller_->startRecapture();
  controller_->startRecapture();
  runMainTasks();
  EXPECT_THAT(delegate_.allInfos, SizeIs(1));
}

}  // namespace
}  // namespace zq::test

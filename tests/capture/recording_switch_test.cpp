// setRecording(): what each switch does, in which order, and what it leaves alone.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr platform::AVCTransportControls kPlaying{1, 10000};

class RecordingSwitch : public CaptureTest {};

TEST_F(RecordingSwitch, StartTellsTheDelegateThenPlaysThenOpensAClip) {
  selectDevice(platform::AVCTransportControls{0, 0});
  startRecording();
  EXPECT_THAT(linesOf({"overlay", "delegate", "device"}),
              ElementsAre("overlay: show", "delegate: begin", "device: mode 1 speed 10000", "delegate: will"));
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->processNote(), "Recording started");
}

TEST_F(RecordingSwitch, StartOnAPlayingTapeOpensTheClipAtOnceAndItBeginsAtTheNextFrame) {
  selectDevice(kPlaying);
  settings_.setBoolForKey(ZQACDetectScene, false);
  play(1, 99, 0);
  startRecording();
  EXPECT_EQ(controller_->currentClipInfo().clipId, "clip 1");
  EXPECT_EQ(controller_->currentClipInfo().clipStartTimecode, nullptr);
  play(2, 100, 0);
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 0, 4, 0, 1));
}

TEST_F(RecordingSwitch, TheFirstClipIsAnsweredWithPathsThatAreTakenAndMade) {
  startRecording();
  EXPECT_EQ(controller_->moviePath(), delegate_.moviePath(1));
  EXPECT_EQ(controller_->thumbnailsPath(), delegate_.thumbnailsPath(1));
  EXPECT_TRUE(std::filesystem::exists(delegate_.thumbnailsPath(1)));
}

TEST_F(RecordingSwitch, StartStartsASessionThatDoesNotRunAlsoWithoutADevice) {
  startRecording();
  EXPECT_THAT(linesOf({"session"}), ElementsAre("session: start"));
  stopRecording();
  startRecording();
  EXPECT_THAT(linesOf({"session"}), ElementsAre("session: start"));
}

TEST_F(RecordingSwitch, StopClosesTheFilesThenTellsThenPausesThenEnds) {
  selectDevice(kPlaying);
  startRecording();
  play(1, 100, 0);
  play(2, 101, 0);
  journal_.clear();
  stopRecording();
  EXPECT_THAT(linesOf({"overlay", "delegate", "device", "movie"}),
              ElementsAre("overlay: no date", "overlay: hide", "movie: none", "delegate: did clip 2",
                          "device: mode 1 speed 0", "delegate: end"));
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 2U));
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_EQ(controller_->processNote(), "Recording stopped");
}

TEST_F(RecordingSwitch, TheClipThatStopClosesEndsAtTheCurrentTimecode) {
  startRecording();
  play(1, 100, 0);
  play(2, 130, 0);
  stopRecording();
  EXPECT_EQ(*delegate_.infos.at(1).clipEndTimecode, timecodeOf(0, 0, 5, 5, 1));
  EXPECT_EQ(*delegate_.infos.at(1).clipDuration, timecodeOf(0, 0, 1, 5));
}

TEST_F(RecordingSwitch, AFrameThatLostItsTimecodeLeavesTheClipItsLastKnownOneAsEnd) {
  startRecording();
  play(1, 100, 0);
  play(2, 130, 0);
  play(3, std::nullopt, 0);
  stopRecording();
  ASSERT_NE(delegate_.infos.at(1).clipEndTimecode, nullptr);
  EXPECT_EQ(*delegate_.infos.at(1).clipEndTimecode, timecodeOf(0, 0, 5, 5, 1));
}

TEST_F(RecordingSwitch, TheThumbnailsOfTheLastClipAreCompleteWhenItIsTold) {
  std::vector<std::uint32_t> seen;
  startInSecondClip(1, 100);
  play(2, 101, 0);
  delegate_.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo&) {
    EXPECT_FALSE(controller.isRecording());
    EXPECT_EQ(controller.moviePath(), std::nullopt);
    seen = thumbnailsOf(2);
  };
  stopRecording();
  EXPECT_THAT(seen, ElementsAre(1U, 2U));
}

TEST_F(RecordingSwitch, TheNotesAreSetAfterTheDelegateWasTold) {
  std::vector<std::string> notes;
  const auto keepNote = [&](ZQACController& controller) { notes.push_back(controller.processNote()); };
  delegate_.operations.accontrollerBeginRecord = keepNote;
  delegate_.operations.accontrollerEndRecord = keepNote;
  startRecording();
  stopRecording();
  EXPECT_THAT(notes, ElementsAre("", "Recording started"));
}

TEST_F(RecordingSwitch, OnWhileOnTellsNobodyAndCommandsNothing) {
  const auto device = selectDevice(kPlaying);
  settings_.setBoolForKey(ZQACDetectEndTape, true);
  settings_.setIntegerForKey(ZQACNbDropFrame, 5);
  startRecording();
  play(1, 100, 0);
  ASSERT_TRUE(controller_->isPrerolling());
  controller_->setTimecodeStartValue(valueWithSMPTETime(timecodeOf(0, 0, 9, 0)));
  controller_->setTimecodeEndValue(valueWithSMPTETime(timecodeOf(0, 0, 9, 0)));
  letPass(std::chrono::milliseconds(1));  // the watchdog runs
  journal_.clear();

  startRecording();
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: no date", "overlay: show"));
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->timecodeStartValue(), nullptr);
  EXPECT_EQ(controller_->timecodeEndValue(), nullptr);
  EXPECT_EQ(controller_->currentDate(), nullptr);
  letPass(std::chrono::seconds(10));
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(RecordingSwitch, OffWhileIdleHidesTheOverlayAndTellsNobody) {
  selectDevice(kPlaying);
  stopRecording();
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: hide"));
  EXPECT_EQ(controller_->processNote(), "");
}

TEST_F(RecordingSwitch, OffWhileIdleClearsWhatWasArmed) {
  controller_->setIsPrerolling(true);
  controller_->setTimecodeStartValue(valueWithSMPTETime(nullTimecode));
  controller_->setTimecodeEndValue(valueWithSMPTETime(nullTimecode));
  controller_->setCurrentDate(dateValueAt(0));
  stopRecording();
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->timecodeStartValue(), nullptr);
  EXPECT_EQ(controller_->timecodeEndValue(), nullptr);
  EXPECT_EQ(controller_->currentDate(), nullptr);
}

TEST_F(RecordingSwitch, TheSwitchIsAlreadyOnWhenTheDelegateHearsOfTheStart) {
  bool recording = false;
  delegate_.operations.accontrollerBeginRecord = [&](ZQACController& controller) {
    recording = controller.isRecording();
  };
  startRecording();
  EXPECT_TRUE(recording);
}

TEST_F(RecordingSwitch, ADelegateMayStopTheRecordingFromItsCalls) {
  startRecording();
  delegate_.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo&) {
    controller.setRecording(false);
  };
  play(1, 100, 0);
  EXPECT_FALSE(controller_->isRecording());
}

struct AfterRecord {
  int action;
  std::vector<std::string> expected;
};

class ActionAfterRecordTest : public CaptureTest, public testing::WithParamInterface<AfterRecord> {};

INSTANTIATE_TEST_SUITE_P(
    Actions, ActionAfterRecordTest,
    testing::Values(AfterRecord{0, {"delegate: did clip 1", "delegate: end"}},
                    AfterRecord{1,
                                {"delegate: did clip 1", "device: mode 0 speed 0", "session: stop", "delegate: end"}},
                    AfterRecord{2, {"delegate: did clip 1", "device: mode 1 speed 0", "delegate: end"}},
                    AfterRecord{3, {"delegate: did clip 1", "delegate: end"}},
                    AfterRecord{-1, {"delegate: did clip 1", "delegate: end"}}));

TEST_P(ActionAfterRecordTest, IsReadWhenTheRecordingStops) {
  selectDevice(kPlaying);
  startRecording();
  journal_.clear();
  settings_.setIntegerForKey(ZQACActionAfterRecord, GetParam().action);
  stopRecording();
  EXPECT_EQ(linesOf({"delegate", "device", "session"}), GetParam().expected);
}

}  // namespace
}  // namespace zq::test

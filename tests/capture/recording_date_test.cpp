// The recording date and aspect ratio that the controller reads out of a frame.

#include <gmock/gmock.h>

#include "dv/pack.h"
#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Pack kDatePack{kRecordingDatePack, 0xFF, 0x15, 0x07, 0x04};
constexpr Pack kTimePack{kRecordingTimePack, 0xFF, 0x00, 0x00, 0x13};
constexpr char kUndecodable[] =
    "A frame points past its own end and was read as undated; others of this clip are not told";

class RecordingDate : public CaptureTest {
 protected:
  RecordingDate() { startRecording(); }

  static FrameBytes undatedFrame(DVSystem system = DVSystem::pal625_50) {
    FrameRecipe recipe;
    recipe.system = system;
    return frameBytesOf(recipe);
  }

  static void dateSequence(FrameBytes& frame, int sequence) {
    setSubcodePack(frame, sequence, 0, kDatePack);
    setSubcodePack(frame, sequence, 1, kTimePack);
  }

  void deliverBytes(const FrameBytes& frame, int timecode = 100) {
    platform::QTSampleBuffer buffer = bufferOf(frame);
    buffer.smpteTime = valueWithSMPTETime(timecodeAtFrame(DVSystem::pal625_50, timecode));
    deliver(buffer);
  }
};

TEST_F(RecordingDate, IsFoundInTheLastSequenceThatIsSearched) {
  FrameBytes frame = undatedFrame();
  dateSequence(frame, 9);
  deliverBytes(frame);
  ASSERT_NE(controller_->currentDate(), nullptr);
  EXPECT_EQ(controller_->currentDate()->isoString(), "2004-07-15T13:00:00");
}

// Twelve sequences are there, but as many as every system has are searched.
TEST_F(RecordingDate, IsNotFoundInTheLastTwoSequencesOf625_50) {
  FrameBytes frame = undatedFrame();
  dateSequence(frame, 10);
  dateSequence(frame, 11);
  deliverBytes(frame);
  EXPECT_EQ(controller_->currentDate(), nullptr);
}

TEST_F(RecordingDate, OfTheFirstDatedSequenceCounts) {
  FrameBytes frame = undatedFrame();
  dateSequence(frame, 3);
  setSubcodePack(frame, 4, 0, {kRecordingDatePack, 0xFF, 0x16, 0x07, 0x04});
  setSubcodePack(frame, 4, 1, kTimePack);
  deliverBytes(frame);
  EXPECT_EQ(controller_->currentDate()->dayOfMonth(), 15);
}

TEST_F(RecordingDate, NeedsADayAndATimeInOneSequence) {
  FrameBytes frame = undatedFrame();
  setSubcodePack(frame, 3, 0, kDatePack);
  setSubcodePack(frame, 4, 1, kTimePack);
  deliverBytes(frame);
  EXPECT_EQ(controller_->currentDate(), nullptr);
}

TEST_F(RecordingDate, OfAFrameWithoutOneStaysThatOfTheFrameBefore) {
  play(1, 100, 0);
  play(2, 101, std::nullopt);
  ASSERT_NE(controller_->currentDate(), nullptr);
  EXPECT_EQ(controller_->currentDate()->isoString(), "2004-07-15T13:00:00");
}

TEST_F(RecordingDate, OfTheClipIsThatOfItsFirstDatedFrame) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  play(1, 100, std::nullopt);
  EXPECT_EQ(controller_->currentClipInfo().clipRecordingDate, nullptr);
  play(2, 101, 0);
  play(3, 102, 1);
  ASSERT_NE(controller_->currentClipInfo().clipRecordingDate, nullptr);
  EXPECT_EQ(controller_->currentClipInfo().clipRecordingDate->isoString(), "2004-07-15T13:00:00");
}

TEST_F(RecordingDate, AspectRatioComesFromTheSequenceThatHasTheDate) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  FrameRecipe recipe;
  recipe.aspect = 1;
  FrameBytes frame = frameBytesOf(recipe);
  dateSequence(frame, 4);
  setVideoSourceControlPack(frame, 4, {kVideoSourceControlPack, 0x3F, 0xCA, 0xFC, 0xFF});
  deliverBytes(frame);
  EXPECT_EQ(controller_->currentClipInfo().clipAspectRatio, 0);
}

TEST_F(RecordingDate, AspectRatioOfAnUndatedFrameComesFromTheTenthSequence) {
  FrameRecipe recipe;
  recipe.aspect = 1;
  FrameBytes frame = frameBytesOf(recipe);
  setVideoSourceControlPack(frame, 9, {kVideoSourceControlPack, 0x3F, 0xCA, 0xFC, 0xFF});
  deliverBytes(frame);
  EXPECT_EQ(controller_->currentClipInfo().clipAspectRatio, 0);
}

// As long as a clip has no date, its aspect ratio follows its frames.
TEST_F(RecordingDate, AspectRatioIsKeptFromTheFirstDatedFrameOn) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  FrameRecipe wide;
  wide.aspect = 0;
  FrameRecipe narrow;
  narrow.aspect = 1;
  FrameRecipe datedNarrow = narrow;
  datedNarrow.date = dateAt(0);
  FrameRecipe datedWide = wide;
  datedWide.date = dateAt(0);

  deliver(bufferOf(wide));
  EXPECT_EQ(controller_->currentClipInfo().clipAspectRatio, 0);
  deliver(bufferOf(narrow));
  EXPECT_EQ(controller_->currentClipInfo().clipAspectRatio, 1);
  deliver(bufferOf(wide));
  deliver(bufferOf(datedNarrow));
  deliver(bufferOf(datedWide));
  EXPECT_EQ(controller_->currentClipInfo().clipAspectRatio, 1);
}

class FrameThatPointsPastItsEnd : public RecordingDate {
 protected:
  // A sequence number of 15 lies behind the twelve of the frame.
  static FrameBytes badFrame() {
    FrameRecipe recipe;
    recipe.date = dateAt(500);
    FrameBytes frame = frameBytesOf(recipe);
    setSequenceNumber(frame, 0, 15);
    return frame;
  }
};

TEST_F(FrameThatPointsPastItsEnd, CountsAsUndatedAndTheRecordingGoesOn) {
  play(1, 100, 0);
  journal_.clear();
  deliverBytes(badFrame(), 101);
  EXPECT_THAT(delegateCalls(), IsEmpty());
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_EQ(controller_->currentDate()->isoString(), "2004-07-15T13:00:00");
  EXPECT_THAT(movieFileOutput().movies[delegate_.moviePath(2)], SizeIs(2));
}

TEST_F(FrameThatPointsPastItsEnd, IsLoggedOnceAClip) {
  play(1, 100, 0);
  for (int i = 1; i <= 5; ++i) deliverBytes(badFrame(), 100 + i);
  EXPECT_THAT(log_.messages(LogLevel::warning), ElementsAre(kUndecodable));
  play(2, 106, 10);
  for (int i = 7; i <= 9; ++i) deliverBytes(badFrame(), 100 + i);
  EXPECT_THAT(log_.messages(LogLevel::warning), ElementsAre(kUndecodable, kUndecodable));
}

TEST_F(FrameThatPointsPastItsEnd, MayBeTheFirstOfTheRecording) {
  deliverBytes(badFrame(), 100);
  play(2, 101, 0);
  stopRecording();
  EXPECT_EQ(thumbnailsOf(1), (std::vector<std::uint32_t>{0}));
  EXPECT_EQ(thumbnailsOf(2), (std::vector<std::uint32_t>{2}));
}

}  // namespace
}  // namespace zq::test

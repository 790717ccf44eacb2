// Which frames the controller looks at, and what stops it.

#include <gmock/gmock.h>

#include "capture/compression_options.h"
#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SomeCompression final : public platform::QTCompressionOptions {
 public:
  std::string localizedDisplayName() const override { return "Some"; }
};

class FrameIntake : public CaptureTest {};

platform::QTSampleBuffer frameWithTimecode(int timecode) {
  FrameRecipe recipe;
  recipe.timecode = timecodeAtFrame(recipe.system, timecode);
  recipe.date = dateAt(0);
  return bufferOf(recipe);
}

TEST_F(FrameIntake, AcceptsFramesOfBothSystems) {
  deliver(bufferOf(FrameRecipe{DVSystem::ntsc525_60}));
  deliver(bufferOf(FrameRecipe{DVSystem::pal625_50}));
  EXPECT_THAT(alerts_.shown, IsEmpty());
}

class FrameOfAnotherSize : public CaptureTest, public testing::WithParamInterface<std::size_t> {};

INSTANTIATE_TEST_SUITE_P(Sizes, FrameOfAnotherSize, testing::Values(1, 119999, 120001, 143999, 144001, 240000, 288000));

TEST_P(FrameOfAnotherSize, AlertsAndStopsTheRecording) {
  startRecording();
  journal_.clear();
  deliver(bufferOfLength(GetParam()));
  EXPECT_THAT(alerts_.shown,
              ElementsAre(RecordingAlerts::Alert{
                  "Cannot capture this stream.",
                  "The input video stream is not a DV stream. Please ensure that your connected device is playing back "
                  "its content in DV format and try again.\nCapture will now stop."}));
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_THAT(linesOf({"alert", "delegate"}),
              ElementsAre("alert: Cannot capture this stream.", "delegate: did clip 1", "delegate: end"));
}

TEST_P(FrameOfAnotherSize, AlertsAlsoWhileNothingIsRecorded) {
  deliver(bufferOfLength(GetParam()));
  deliver(bufferOfLength(GetParam()));
  EXPECT_EQ(alerts_.shown.size(), 2U);
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

TEST_F(FrameIntake, NothingElseIsDoneForAFrameThatIsNotDV) {
  startRecording();
  journal_.clear();
  platform::QTSampleBuffer buffer = bufferOfLength(119999);
  buffer.smpteTime = valueWithSMPTETime(timecodeOf(1, 2, 3, 4, 1));
  deliver(buffer);
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
}

TEST_F(FrameIntake, TheAlertIsShownInTheUsersLanguage) {
  strings_.texts["Cannot capture this stream."] = "Ce flux ne peut pas être capturé.";
  deliver(bufferOfLength(119999));
  ASSERT_EQ(alerts_.shown.size(), 1U);
  EXPECT_EQ(alerts_.shown[0].message, "Ce flux ne peut pas être capturé.");
  strings_.texts[alerts_.shown[0].informative] = "Ce n'est pas du DV.";
  deliver(bufferOfLength(119999));
  EXPECT_EQ(alerts_.shown.at(1).informative, "Ce n'est pas du DV.");
}

TEST_F(FrameIntake, AZeroLengthBufferIsIgnored) {
  startRecording();
  deliver(bufferOfLength(0));
  EXPECT_THAT(alerts_.shown, IsEmpty());
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(FrameIntake, ABufferOfSoundIsIgnored) {
  startRecording();
  platform::QTSampleBuffer buffer = bufferOfLength(7680);
  buffer.formatDescription.mediaType = platform::QTMediaTypeSound;
  buffer.smpteTime = valueWithSMPTETime(timecodeOf(1, 2, 3, 4, 1));
  deliver(buffer);
  EXPECT_THAT(alerts_.shown, IsEmpty());
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
}

TEST_F(FrameIntake, AFrameOfMuxedMediaIsIgnored) {
  platform::QTSampleBuffer buffer = bufferOfLength(119999);
  buffer.formatDescription.mediaType = platform::QTMediaTypeMuxed;
  deliver(buffer);
  EXPECT_THAT(alerts_.shown, IsEmpty());
}

TEST_F(FrameIntake, WithoutCompressionOnlyFramesOfTheMovieOutputAreLookedAt) {
  ASSERT_FALSE(controller_->isCompressed());
  fileOutput().deliver(frameWithTimecode(1));
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  movieFileOutput().deliver(frameWithTimecode(2));
  ASSERT_NE(controller_->currentTimecodeValue(), nullptr);
  EXPECT_EQ(controller_->currentTimecodeValue()->mFrames, 2);
}

TEST_F(FrameIntake, WithCompressionOnlyFramesOfTheOtherFileOutputAreLookedAt) {
  controller_->setVideoCompressionOptions(std::make_shared<SomeCompression>());
  ASSERT_TRUE(controller_->isCompressed());
  movieFileOutput().deliver(frameWithTimecode(2));
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  fileOutput().deliver(frameWithTimecode(1));
  ASSERT_NE(controller_->currentTimecodeValue(), nullptr);
  EXPECT_EQ(controller_->currentTimecodeValue()->mFrames, 1);
}

TEST_F(FrameIntake, AnotherObjectForNoCompressionIsNoCompressionEither) {
  controller_->setVideoCompressionOptions(std::make_shared<QTNoCompressionOptions>());
  EXPECT_FALSE(controller_->isCompressed());
}

TEST_F(FrameIntake, TheMovieIsStartedByFramesOfTheMovieOutputAlsoWithCompression) {
  controller_->setVideoCompressionOptions(std::make_shared<SomeCompression>());
  startRecording();
  journal_.clear();
  fileOutput().deliver(frameWithTimecode(1));
  EXPECT_THAT(movieCommands(), IsEmpty());
  movieFileOutput().deliver(frameWithTimecode(1));
  EXPECT_THAT(movieCommands(), ElementsAre("movie: " + delegate_.moviePath(2)));
}

TEST_F(FrameIntake, TheMovieStartsOnTheVeryFrameThatOpensTheClip) {
  startRecording();
  play(7, 100, 0);
  ASSERT_EQ(movieFileOutput().movies[delegate_.moviePath(2)].size(), 1U);
  EXPECT_EQ(frameIdOf(movieFileOutput().movies[delegate_.moviePath(2)][0].bytes()), 7U);
}

TEST_F(FrameIntake, AFrameThatIsNotRecordedStillUpdatesTheTimecodeButNotTheDate) {
  play(1, 100, 0);
  ASSERT_NE(controller_->currentTimecodeValue(), nullptr);
  EXPECT_EQ(controller_->currentDate(), nullptr);
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

TEST_F(FrameIntake, AFrameWithoutTimecodeLeavesTheCurrentOneAndCountsAsZeroItself) {
  startRecording();
  play(1, 100, 0);
  play(2, std::nullopt, 0);
  EXPECT_EQ(controller_->currentTimecodeValue()->mSeconds, 4);
  play(3, 102, 5);  // ends the clip at the timecode of the frame before it, which had none
  ASSERT_EQ(delegate_.infos.size(), 2U);
  EXPECT_EQ(delegate_.infos[1].clipEndTimecode, nullptr);
  EXPECT_EQ(thumbnailsOf(2), (std::vector<std::uint32_t>{1, 2}));
}

TEST_F(FrameIntake, TheFrameIsHeldWithoutBeingCopied) {
  startInSecondClip(1, 100);
  FrameRecipe recipe;
  recipe.timecode = timecodeAtFrame(recipe.system, 101);
  const platform::QTSampleBuffer buffer = bufferOf(recipe);
  controller_->detectAndCaptureThumbnail(buffer);
  EXPECT_GT(buffer.bytesForAllSamples.useCount(), 1);
}

}  // namespace
}  // namespace zq::test

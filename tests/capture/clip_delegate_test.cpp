// What the controller asks its delegate and tells it, and delegates that do not answer everything.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ClipInfoKeys, AreThoseUnderWhichHostsStoreClips) {
  EXPECT_STREQ(kZQACClipId, "clipId");
  EXPECT_STREQ(kZQACClipRecordingDate, "clipRecordingDate");
  EXPECT_STREQ(kZQACClipStartTimecode, "clipStartTimecode");
  EXPECT_STREQ(kZQACClipEndTimecode, "clipEndTimecode");
  EXPECT_STREQ(kZQACClipDuration, "clipDuration");
  EXPECT_STREQ(kZQACClipAspectRatio, "clipAspectRatio");
  EXPECT_STREQ(kZQACMoviePath, "moviePath");
  EXPECT_STREQ(kZQACThumbnailsPath, "thumbnailPath");
  EXPECT_STREQ(kZQACRecapturePath, "recapturePath");
}

class ClipDelegate : public CaptureTest {
 protected:
  void recordTwoScenes() {
    startRecording();
    play(1, 100, 0);
    play(2, 101, 0);
    play(3, 102, 50);
    play(4, 103, 50);
    stopRecording();
  }
};

TEST_F(ClipDelegate, IsCalledInOrder) {
  recordTwoScenes();
  EXPECT_THAT(delegateCalls(),
              ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1", "delegate: will",
                          "delegate: did clip 2", "delegate: will", "delegate: did clip 3", "delegate: end"));
}

TEST_F(ClipDelegate, IsToldAllOfAClip) {
  recordTwoScenes();
  const ClipInfo& info = delegate_.infos.at(2);
  EXPECT_EQ(info.clipId, "clip 3");
  EXPECT_EQ(*info.clipRecordingDate, *dateValueAt(50));
  EXPECT_EQ(*info.clipStartTimecode, timecodeOf(0, 0, 4, 2, 1));
  EXPECT_EQ(*info.clipEndTimecode, timecodeOf(0, 0, 4, 3, 1));
  EXPECT_EQ(*info.clipDuration, timecodeOf(0, 0, 0, 1));
  EXPECT_EQ(info.clipAspectRatio, 1);
}

TEST_F(ClipDelegate, IsGivenTheController) {
  std::vector<const ZQACController*> given;
  ZQACControllerDelegate operations;
  operations.accontrollerBeginRecord = [&](ZQACController& controller) { given.push_back(&controller); };
  operations.accontrollerWillRecord = [&](ZQACController& controller) {
    given.push_back(&controller);
    return ClipPaths{};
  };
  operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo&) {
    given.push_back(&controller);
  };
  operations.accontrollerEndRecord = [&](ZQACController& controller) { given.push_back(&controller); };
  controller_->setDelegate(&operations);
  startRecording();
  stopRecording();
  EXPECT_EQ(given, std::vector<const ZQACController*>(4, controller_.get()));
}

TEST_F(ClipDelegate, TheOldClipIsForgottenWhenItIsAskedForTheNext) {
  startRecording();
  play(1, 100, 0);
  delegate_.operations.accontrollerWillRecord = [&](ZQACController& controller) {
    const ClipInfo info = controller.currentClipInfo();
    EXPECT_EQ(info.clipRecordingDate, nullptr);
    EXPECT_EQ(info.clipStartTimecode, nullptr);
    EXPECT_EQ(info.clipEndTimecode, nullptr);
    EXPECT_EQ(info.clipId, "clip 2");
    return ClipPaths{};
  };
  play(2, 101, 50);
  EXPECT_EQ(controller_->currentClipInfo().clipId, std::nullopt);
}

TEST_F(ClipDelegate, MissingIsNoReasonNotToRecord) {
  controller_->setDelegate(nullptr);
  recordTwoScenes();
  EXPECT_THAT(delegateCalls(), IsEmpty());
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(scratch_.path()));
}

TEST_F(ClipDelegate, ThatAnswersNothingGetsNoFiles) {
  delegate_.operations = {};
  recordTwoScenes();
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(scratch_.path()));
  EXPECT_EQ(controller_->processNote(), "Recording stopped");
}

TEST_F(ClipDelegate, ThatAnswersOnlyBeginAndEndIsCalledForThese) {
  delegate_.operations.accontrollerWillRecord = nullptr;
  delegate_.operations.accontrollerDidRecordInfo = nullptr;
  recordTwoScenes();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin", "delegate: end"));
}

TEST_F(ClipDelegate, ThatAnswersOnlyForNewClipsGetsTheirFiles) {
  delegate_.operations.accontrollerBeginRecord = nullptr;
  delegate_.operations.accontrollerDidRecordInfo = nullptr;
  delegate_.operations.accontrollerEndRecord = nullptr;
  recordTwoScenes();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: will", "delegate: will", "delegate: will"));
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 2U));
  EXPECT_THAT(thumbnailsOf(3), ElementsAre(3U, 4U));
}

// With nobody to tell of the end, none is armed: the movie goes on to the next clip's start.
TEST_F(ClipDelegate, ThatIsNotToldOfEndsStillHasItsMoviesCutWhereTheNextStarts) {
  delegate_.operations.accontrollerDidRecordInfo = nullptr;
  recordTwoScenes();
  EXPECT_THAT(log_.messages(LogLevel::info), ElementsAre("START (00:00:04.00)", "START (00:00:04.02)"));
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(2)].size(), 2U);
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(3)].size(), 2U);
}

// Nothing begins a clip anew, so it runs from the first frame on, and each cut ends it again.
TEST_F(ClipDelegate, ThatIsOnlyToldOfEndsHearsOfOneClipThatGrows) {
  delegate_.operations.accontrollerWillRecord = nullptr;
  recordTwoScenes();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin", "delegate: did without id", "delegate: did without id",
                                           "delegate: did without id", "delegate: end"));
  EXPECT_EQ(delegate_.infos[0].clipStartTimecode, nullptr);
  EXPECT_EQ(*delegate_.infos[1].clipStartTimecode, timecodeOf(0, 0, 4, 0, 1));
  EXPECT_EQ(*delegate_.infos[1].clipDuration, timecodeOf(0, 0, 0, 1));
  EXPECT_EQ(*delegate_.infos[2].clipStartTimecode, timecodeOf(0, 0, 4, 0, 1));
  EXPECT_EQ(*delegate_.infos[2].clipDuration, timecodeOf(0, 0, 0, 3));
}

TEST_F(ClipDelegate, AnAnswerWithoutPathsWritesNothing) {
  delegate_.answer = [](int) { return ClipPaths{"named", std::nullopt, std::nullopt}; };
  recordTwoScenes();
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(scratch_.path()));
  EXPECT_EQ(delegate_.infos.at(1).clipId, "named");
}

TEST_F(ClipDelegate, AnAnswerWithoutAMovieStillHasThumbnails) {
  delegate_.answer = [this](int clip) { return ClipPaths{"id", std::nullopt, delegate_.thumbnailsPath(clip)}; };
  recordTwoScenes();
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 2U));
}

TEST_F(ClipDelegate, AnExistingThumbnailsFileIsNotCut) {
  const FrameBytes old = frameBytesOf({DVSystem::pal625_50, std::nullopt, std::nullopt, 77});
  std::ofstream file(delegate_.thumbnailsPath(2), std::ios::binary);
  for (int i = 0; i < 3; ++i) file.write(reinterpret_cast<const char*>(old.data()), std::ssize(old));
  file.close();
  startRecording();
  play(1, 100, 0);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 77U, 77U));
}

TEST_F(ClipDelegate, TheDurationOfAClipStaysUntilTheNextOneHasAnEnd) {
  recordTwoScenes();
  startRecording();
  stopRecording();
  const ClipInfo& empty = delegate_.infos.at(3);
  EXPECT_EQ(empty.clipStartTimecode, nullptr);
  EXPECT_NE(empty.clipEndTimecode, nullptr);
  ASSERT_NE(empty.clipDuration, nullptr);
  EXPECT_EQ(*empty.clipDuration, timecodeOf(0, 0, 0, 1));
}

TEST_F(ClipDelegate, AnotherOneMayTakeOverInMidRecording) {
  startRecording();
  play(1, 100, 0);
  RecordingDelegate second(journal_, scratch_.path());
  second.clips = 10;
  controller_->setDelegate(&second.operations);
  play(2, 101, 50);
  EXPECT_THAT(second.infos, testing::SizeIs(1));
  EXPECT_EQ(controller_->currentClipInfo().clipId, "clip 11");
}

}  // namespace
}  // namespace zq::test

// The movie output asks for another file: with scene detection off, that is where clips are cut.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileChange : public CaptureTest {
 protected:
  FileChange() {
    settings_.setBoolForKey(ZQACDetectScene, false);
    startRecording();
    play(1, 100, 0);
    play(2, 101, 0);
    journal_.clear();
  }
};

TEST_F(FileChange, ClosesTheClipAtItsLastTimecodeAndOpensAnother) {
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 1", "delegate: will"));
  EXPECT_EQ(*delegate_.infos.at(0).clipStartTimecode, timecodeOf(0, 0, 4, 0, 1));
  EXPECT_EQ(*delegate_.infos.at(0).clipEndTimecode, timecodeOf(0, 0, 4, 1, 1));
  EXPECT_THAT(thumbnailsOf(1), ElementsAre(1U, 2U));
}

TEST_F(FileChange, TheNextFrameIsTheFirstOfTheNewClipAndItsMovie) {
  movieFileOutput().demandOtherFile();
  play(3, 102, 0, platform::SceneChangeType::explicitChange);
  play(4, 103, 0);
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 0, 4, 2, 1));
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(3U, 4U));
  EXPECT_THAT(movieCommands(), ElementsAre("movie: none", "movie: " + delegate_.moviePath(2), "movie: none"));
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(1)].size(), 2U);
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(2)].size(), 2U);
}

TEST_F(FileChange, TheThumbnailsOfTheEndedClipAreCompleteBeforeItIsTold) {
  std::vector<std::uint32_t> seen;
  delegate_.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo&) {
    EXPECT_EQ(controller.thumbnailsPath(), std::nullopt);
    EXPECT_EQ(controller.moviePath(), std::nullopt);
    seen = thumbnailsOf(1);
  };
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(seen, ElementsAre(1U, 2U));
}

TEST_F(FileChange, DoesNotAskWhetherAnythingIsRecorded) {
  stopRecording();
  journal_.clear();
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 1", "delegate: will"));
}

TEST_F(FileChange, DoesNotCommandTheOutputItself) {
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(movieCommands(), IsEmpty());
}

TEST_F(FileChange, IsTheOutputsOwnMatterWithSceneDetectionOn) {
  settings_.setBoolForKey(ZQACDetectScene, true);
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(delegateCalls(), IsEmpty());
  EXPECT_EQ(controller_->moviePath(), delegate_.moviePath(1));
  EXPECT_EQ(controller_->thumbnailsPath(), delegate_.thumbnailsPath(1));
}

TEST_F(FileChange, WithoutADelegateEndsTheFilesOnly) {
  controller_->setDelegate(nullptr);
  movieFileOutput().demandOtherFile();
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(controller_->thumbnailsPath(), std::nullopt);
}

TEST_F(FileChange, OpensWithoutAMovieWhenNoneIsWanted) {
  settings_.setBoolForKey(ZQACCaptureMovie, false);
  movieFileOutput().demandOtherFile();
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(controller_->thumbnailsPath(), delegate_.thumbnailsPath(2));
}

}  // namespace
}  // namespace zq::test

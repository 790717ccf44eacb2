// What follows when a movie file is complete.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Has recorded the first clip of a sequence of two; its file is not complete yet.
class RecaptureAlias : public RecaptureTest {
 protected:
  RecaptureAlias() {
    tape_ = load({{{100, 1500}, {120, 3000}}});
    controller_->findSequenceOnDate(dateValueAt(100));
    controller_->setCurrentClip(clipOf(tape_, 0, 0));
    controller_->setClipToBeRecaptured(clipOf(tape_, 0, 0));
  }
  void record() {
    controller_->setRecording(true);
    for (const int frame : {1500, 1749}) {
      controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, frame));
      controller_->generateMovieFile();
    }
    journal_.clear();
  }
  void finish() { tellThatFileIsFinished(movieFileOutput(), "/movies/1.mov"); }

  TapeValue tape_;
};

TEST_F(RecaptureAlias, IsLeftAtTheClipsOwnPathAndTheRecordingEnds) {
  record();
  EXPECT_TRUE(controller_->isRecording());
  finish();
  EXPECT_THAT(journal_.lines(),
              ElementsAre("files: alias of /movies/1.mov", "files: write alias /recaptures/1-1.mov", "overlay: show"));
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
}

// Only a path of the delegate's ends the recording state.
TEST_F(RecaptureAlias, IsNotLeftOfAMovieAtTheClipsOwnPathAndTheRecordingStays) {
  delegate_.answer = [](int) { return std::nullopt; };
  record();
  finish();
  EXPECT_THAT(journal_.lines(), IsEmpty());
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_EQ(controller_->moviePath(), "/recaptures/1-1.mov");
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
}

TEST_F(RecaptureAlias, ThatCannotBeMadeLeavesTheRecordingAsItIs) {
  files_.canAlias = false;
  record();
  finish();
  EXPECT_THAT(journal_.lines(), ElementsAre("files: alias of /movies/1.mov"));
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(RecaptureAlias, OfNoMovieIsNotMade) {
  delegate_.answer = [](int) { return RecapturePaths{}; };
  record();
  finish();
  EXPECT_THAT(journal_.lines(), IsEmpty());
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(RecaptureAlias, ThatCannotBeWrittenIsLoggedAndTheRecordingEnds) {
  files_.writeError = Error{"Cannot leave an alias", "A file is there."};
  record();
  finish();
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_THAT(log_.messages(LogLevel::warning), ElementsAre(files_.writeError->text()));
}

TEST_F(RecaptureAlias, IsLeftForTheClipThatTheTapeIsIn) {
  record();
  controller_->setCurrentClip(clipOf(tape_, 0, 1));
  finish();
  EXPECT_THAT(linesOf({"files"}),
              ElementsAre("files: alias of /movies/1.mov", "files: write alias /recaptures/1-2.mov"));
}

TEST_F(RecaptureAlias, OfNoClipIsNotWrittenAndTheRecordingEnds) {
  record();
  controller_->setCurrentClip(nullptr);
  finish();
  EXPECT_THAT(linesOf({"files"}), ElementsAre("files: alias of /movies/1.mov"));
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(RecaptureAlias, IsLeftWhateverErrorTheFileEndedWith) {
  record();
  movieFileOutput().delegate->captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(
      movieFileOutput(), "", {}, Error{"The disk is full", ""});
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(RecaptureAlias, OfTheNextMovieDependsOnTheNextAnswer) {
  record();
  finish();
  delegate_.answer = [](int) { return std::nullopt; };
  controller_->setCurrentClip(clipOf(tape_, 0, 1));
  controller_->setRecording(true);
  controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, 3000));
  controller_->generateMovieFile();
  journal_.clear();
  finish();
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(RecaptureAlias, AChangeOfSystemInMidClipIsTheOutputsOwnMatter) {
  controller_->setRecording(true);
  journal_.clear();
  movieFileOutput().demandOtherFile();
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

}  // namespace
}  // namespace zq::test

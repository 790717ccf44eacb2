// The movie of a clip begins at its start timecode, and ends at its end timecode.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

SMPTETime timecode(int frame) {
  return timecodeAtFrame(DVSystem::pal625_50, frame);
}

constexpr int kStart = 1500;  // 00:01:00:00
constexpr int kEnd = 1749;

/// Recording the first clip of a sequence of two, the first of which goes from 00:01:00:00 to 00:01:09:24.
class RecaptureMovie : public RecaptureTest {
 protected:
  RecaptureMovie() {
    tape_ = load({{{100, kStart}, {120, 3000}}});
    controller_->findSequenceOnDate(dateValueAt(100));
    controller_->setCurrentClip(clip(0));
    controller_->setClipToBeRecaptured(clip(0));
    controller_->setRecording(true);
    journal_.clear();
  }
  ClipValue clip(std::size_t index) { return clipOf(tape_, 0, index); }

  void pass(int frame) {
    controller_->setCurrentTimecode(timecode(frame));
    controller_->generateMovieFile();
  }
  Lines linesAt(int frame) {
    journal_.clear();
    pass(frame);
    return linesOf({"note", "delegate", "movie"});
  }

  TapeValue tape_;
};

TEST_F(RecaptureMovie, BeginsAtTheStart) {
  EXPECT_THAT(linesAt(kStart - 1), IsEmpty());
  EXPECT_THAT(linesAt(kStart), ElementsAre("note: START", "delegate: will record", "movie: /movies/1.mov"));
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), timecode(kEnd));
  EXPECT_THAT(linesAt(kStart + 1), IsEmpty());
}

TEST_F(RecaptureMovie, BeginsFourFramesLateButNotFive) {
  EXPECT_THAT(linesAt(kStart + 5), IsEmpty());
  EXPECT_EQ(controller_->startTimecode(), timecode(kStart));
  EXPECT_THAT(linesAt(kStart + 4), ElementsAre("note: START", "delegate: will record", "movie: /movies/1.mov"));
}

TEST_F(RecaptureMovie, WhoseStartWasMissedDoesNotEndEither) {
  for (const int frame : {kStart + 5, kEnd, kEnd + 1000}) EXPECT_THAT(linesAt(frame), IsEmpty());
  EXPECT_FALSE(clip(0)->isRecaptureFinished());
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 2);
}

TEST_F(RecaptureMovie, CountsLateFramesInTheTimebaseOfTheCurrentClip) {
  ClipRecord record = recordOf({100, kStart});
  record.timebase = 2;  // a second late is two frames late
  controller_->setCurrentClip(std::make_shared<ZQACClip>(record));
  EXPECT_THAT(linesAt(kStart + 75), IsEmpty());
  EXPECT_THAT(linesAt(kStart + 50), SizeIs(3));
}

TEST_F(RecaptureMovie, IsNotBegunForADelegateThatIsNotAsked) {
  delegate_.operations.acRecaptureControllerWillRecord = nullptr;
  EXPECT_THAT(linesAt(kStart), IsEmpty());
  EXPECT_EQ(controller_->startTimecode(), timecode(kStart));
  controller_->setDelegate(nullptr);
  EXPECT_THAT(linesAt(kStart), IsEmpty());
}

TEST_F(RecaptureMovie, IsNotBegunWhilePrerolling) {
  controller_->setIsPrerolling(true);
  EXPECT_THAT(linesAt(kStart), IsEmpty());
  controller_->setIsPrerolling(false);
  EXPECT_THAT(linesAt(kStart), SizeIs(3));
}

TEST_F(RecaptureMovie, GoesWhereTheDelegateSays) {
  pass(kStart);
  EXPECT_EQ(controller_->moviePath(), "/movies/1.mov");
}

TEST_F(RecaptureMovie, GoesToTheClipsOwnPathWhenTheDelegateSaysNothing) {
  delegate_.answer = [](int) { return std::nullopt; };
  EXPECT_THAT(linesAt(kStart), ElementsAre("note: START", "delegate: will record", "movie: /recaptures/1-1.mov"));
}

TEST_F(RecaptureMovie, IsNotWrittenForAnAnswerWithoutAPath) {
  delegate_.answer = [](int) { return RecapturePaths{}; };
  EXPECT_THAT(linesAt(kStart), ElementsAre("note: START", "delegate: will record", "movie: none"));
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
}

TEST_F(RecaptureMovie, EndsAtTheEnd) {
  pass(kStart);
  EXPECT_THAT(linesAt(kEnd - 1), IsEmpty());
  EXPECT_THAT(linesAt(kEnd), ElementsAre("delegate: did record 1-1", "movie: none"));
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
  EXPECT_TRUE(clip(0)->isRecaptureFinished());
  EXPECT_EQ(controller_->clipToBeRecaptured(), clip(1));
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 1);
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecapturedInSequence(), 1);
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_THAT(linesAt(kEnd + 1), IsEmpty());
}

TEST_F(RecaptureMovie, EndsAtTheFirstFrameBehindTheEndWhenThatOneIsMissing) {
  pass(kStart);
  EXPECT_THAT(linesAt(kEnd + 30), ElementsAre("delegate: did record 1-1", "movie: none"));
}

TEST_F(RecaptureMovie, HoldsTheFrameOfTheStartAndNotThatOfTheEnd) {
  playTimes(251, 0, 100);  // settles
  journal_.clear();
  for (int frame = kStart - 3; frame <= kEnd + 3; ++frame) play(frame, 100);
  ASSERT_THAT(movieFileOutput().movies, SizeIs(1));
  EXPECT_THAT(movieFileOutput().movies.at("/movies/1.mov"), SizeIs(kEnd - kStart));
}

TEST_F(RecaptureMovie, SaysWhatIsRecaptured) {
  playTimes(251, 0, 100);
  journal_.clear();
  play(kStart - 1, 100);
  EXPECT_THAT(linesOf({"note", "strip", "timeline", "device"}),
              ElementsAre("timeline: cursor 00:00:59:24", "timeline: cursor 2004-07-15T13:01:40", "note: Recapturing",
                          "strip: recapturing clip 1-1"));
}

TEST_F(RecaptureMovie, StaysOpenForADelegateThatIsNotTold) {
  pass(kStart);
  const auto told = std::exchange(delegate_.operations.acRecaptureControllerDidRecordInfo, nullptr);
  EXPECT_THAT(linesAt(kEnd), IsEmpty());
  EXPECT_EQ(controller_->endTimecode(), timecode(kEnd));
  EXPECT_FALSE(clip(0)->isRecaptureFinished());
  controller_->setDelegate(nullptr);
  EXPECT_THAT(linesAt(kEnd + 1), IsEmpty());
  delegate_.operations.acRecaptureControllerDidRecordInfo = told;
  controller_->setDelegate(&delegate_.operations);
  EXPECT_THAT(linesAt(kEnd + 2), SizeIs(2));
}

TEST_F(RecaptureMovie, IsToldWithAllThatIsKnownOfTheClip) {
  pass(kStart);
  pass(kEnd);
  ASSERT_THAT(delegate_.infos, SizeIs(1));
  const RecaptureInfo& info = delegate_.infos.front();
  EXPECT_EQ(info.clipId, "1-1");
  EXPECT_EQ(info.clipRecordingDate, clip(0)->dateStartClip());
  EXPECT_EQ(info.clipStartTimecode, clip(0)->timecodeStartClip());
  EXPECT_EQ(info.clipEndTimecode, clip(0)->timecodeEndClip());
  EXPECT_EQ(info.recapturePath, "/recaptures/1-1.mov");
  EXPECT_EQ(info.moviePath, "/movies/1.mov");
}

TEST_F(RecaptureMovie, IsToldWithoutAMoviePathWhereThereWasNone) {
  delegate_.answer = [](int) { return RecapturePaths{}; };
  pass(kStart);
  pass(kEnd);
  EXPECT_EQ(delegate_.infos.at(0).moviePath, std::nullopt);
}

// The recording began because both were one clip; at the end the tape may be in the next one.
TEST_F(RecaptureMovie, IsToldOfTheClipTheTapeIsInAndFinishesTheClipThatWasLookedFor) {
  pass(kStart);
  controller_->setCurrentClip(clip(1));
  pass(kEnd);
  EXPECT_EQ(delegate_.infos.at(0).clipId, "1-2");
  EXPECT_EQ(delegate_.infos.at(0).recapturePath, "/recaptures/1-2.mov");
  EXPECT_TRUE(clip(0)->isRecaptureFinished());
  EXPECT_FALSE(clip(1)->isRecaptureFinished());
}

TEST_F(RecaptureMovie, OfNoClipIsToldWithItsPathOnly) {
  pass(kStart);
  controller_->setCurrentClip(nullptr);
  pass(kEnd);
  RecaptureInfo expected;
  expected.moviePath = "/movies/1.mov";
  EXPECT_EQ(delegate_.infos.at(0), expected);
}

TEST_F(RecaptureMovie, ThatEndsWasToldBeforeItsFile) {
  delegate_.operations.acRecaptureControllerDidRecordInfo = [&](auto&, const auto&) {
    EXPECT_EQ(movieFileOutput().path, "/movies/1.mov");
    EXPECT_FALSE(clip(0)->isRecaptureFinished());
    EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 2);
  };
  pass(kStart);
  pass(kEnd);
  EXPECT_TRUE(clip(0)->isRecaptureFinished());
}

TEST(RecaptureInfoTest, IsTheSameWhenItSaysTheSame) {
  RecaptureInfo one;
  one.clipId = "a";
  one.clipRecordingDate = dateValueAt(1);
  one.clipStartTimecode = valueWithSMPTETime(timecode(5));
  RecaptureInfo other = one;
  other.clipRecordingDate = dateValueAt(1);
  other.clipStartTimecode = valueWithSMPTETime(timecode(5));
  EXPECT_EQ(one, other);
  other.clipRecordingDate = dateValueAt(2);
  EXPECT_FALSE(one == other);
  other = one;
  other.clipEndTimecode = valueWithSMPTETime(timecode(5));
  EXPECT_FALSE(one == other);
  other = one;
  other.moviePath = "";
  EXPECT_FALSE(one == other);
}

}  // namespace
}  // namespace zq::test

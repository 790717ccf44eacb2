// What is advised when a tape stands at one of its ends, and when a clip does not come.

#include "host/tape_watch.h"

#include <gtest/gtest.h>

namespace zq::host {
namespace {

using platform::AVCTransportControls;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr AVCTransportControls kPlaying{1, 10000};
constexpr AVCTransportControls kPlayingBackwards{1, -10000};
constexpr AVCTransportControls kRewinding{0, -65000};
constexpr AVCTransportControls kWinding{0, 65000};
constexpr AVCTransportControls kPausing{1, 0};
constexpr AVCTransportControls kStanding{0, 0};

/// A watch whose clock the test sets.
class TapeWatchTest : public ::testing::Test {
 protected:
  void transport(const AVCTransportControls& controls) { watch_.transportChanged(controls, now_); }
  void pass(platform::Duration time) { now_ += time; }
  TapeAdvice look() { return watch_.look(session, now_); }
  /// The tape went so, and now stands for good.
  TapeAdvice lookAfterStandingFrom(const AVCTransportControls& controls) {
    transport(controls);
    transport(kStanding);
    pass(seconds(6));
    return look();
  }

  TapeWatch::Session session;

 private:
  platform::TimePoint now_{};
  TapeWatch watch_{now_, {seconds(1000), seconds(100)}};
};

class SearchingTapeWatch : public TapeWatchTest {
 protected:
  SearchingTapeWatch() { session.sequenceFound = true; }
};

TEST_F(TapeWatchTest, ATapeThatHasNotMovedIsLeftAlone) {
  pass(seconds(60));
  EXPECT_EQ(look(), TapeAdvice::none);
}

TEST_F(TapeWatchTest, ATapeThatMovesOrPausesIsLeftAlone) {
  session.sequenceFound = true;
  for (const auto& controls : {kPlaying, kPlayingBackwards, kRewinding, kWinding, kPausing}) {
    transport(kStanding);
    transport(controls);
    pass(seconds(60));
    EXPECT_EQ(look(), TapeAdvice::none);
  }
}

TEST_F(TapeWatchTest, ATapeThatStandsForLessThanSixSecondsIsLeftAlone) {
  transport(kRewinding);
  transport(kStanding);
  pass(milliseconds(5999));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(milliseconds(1));
  EXPECT_EQ(look(), TapeAdvice::play);
}

TEST_F(TapeWatchTest, StandingIsCountedFromTheStopAndNotFromAnotherWordOfIt) {
  transport(kRewinding);
  transport(kStanding);
  pass(seconds(5));
  transport(kStanding);
  pass(seconds(1));
  EXPECT_EQ(look(), TapeAdvice::play);
}

TEST_F(TapeWatchTest, AMoveBetweenTwoStopsBeginsTheCountAgain) {
  transport(kRewinding);
  transport(kStanding);
  pass(seconds(5));
  transport(kRewinding);
  transport(kStanding);
  pass(seconds(5));
  EXPECT_EQ(look(), TapeAdvice::none);
}

TEST_F(TapeWatchTest, AnAdviceIsGivenTimeBeforeTheNext) {
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  pass(seconds(5));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(1));
  EXPECT_NE(look(), TapeAdvice::none);
}

// Before a sequence is found.

TEST_F(TapeWatchTest, RewoundBeforeASequenceIsFoundItPlays) {
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
}

TEST_F(TapeWatchTest, PlayedFromItsBeginningToItsEndWithoutADateItIsGivenUp) {
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpUndated);
}

TEST_F(TapeWatchTest, PlayedToItsEndFromElsewhereWithoutADateItIsPlayedFromItsBeginningFirst) {
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::windToBeginning);
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpUndated);
}

TEST_F(TapeWatchTest, WoundToItsEndOnAdviceItIsPlayedBackwardsBeforeItIsGivenUp) {
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::windToEnd);
  EXPECT_EQ(lookAfterStandingFrom(kWinding), TapeAdvice::playBackwards);
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpUndated);
}

// While it searches the clip.

TEST_F(SearchingTapeWatch, TheEndOfATapeThatIsBeforeTheClipGivesItUp) {
  session.place = -1;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpAtEnd);
}

TEST_F(SearchingTapeWatch, TheBeginningOfATapeThatIsBehindTheClipGivesItUp) {
  session.place = 1;
  EXPECT_EQ(lookAfterStandingFrom(kPlayingBackwards), TapeAdvice::giveUpAtBeginning);
}

// A wind shows no picture, so the place is still that where it began.

TEST_F(SearchingTapeWatch, WoundToTheEndWithoutAPictureNoClipIsGivenUp) {
  session.place = -1;
  session.frames = 100;
  EXPECT_EQ(lookAfterStandingFrom(kWinding), TapeAdvice::playBackwards);
}

TEST_F(SearchingTapeWatch, RewoundToTheBeginningWithoutAPictureNoClipIsGivenUp) {
  session.place = 1;
  session.frames = 100;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
}

TEST_F(SearchingTapeWatch, APictureAfterTheWindGivesTheClipUp) {
  session.place = -1;
  session.frames = 100;
  EXPECT_EQ(lookAfterStandingFrom(kWinding), TapeAdvice::playBackwards);
  session.frames = 101;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpAtEnd);
}

TEST_F(SearchingTapeWatch, TheBeginningOfATapeThatIsBeforeTheClipPlays) {
  for (const int place : {-1, 0}) {
    session.place = place;
    session.frames += 1000;
    EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play) << place;
  }
}

TEST_F(SearchingTapeWatch, TheEndOfATapeThatIsBehindTheClipPlaysBackwards) {
  for (const int place : {1, 0}) {
    session.place = place;
    session.frames += 1000;
    EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::playBackwards) << place;
  }
}

// While it settles, where the clip is says nothing yet.

TEST_F(SearchingTapeWatch, WhileItSettlesNoClipIsGivenUp) {
  session.settling = true;
  session.place = -1;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::playBackwards);
  session.place = 1;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
}

TEST_F(SearchingTapeWatch, ThatComesBackAtOnceIsWoundToTheOtherEnd) {
  session.settling = true;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  session.frames += 24;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::windToEnd);
  EXPECT_EQ(lookAfterStandingFrom(kWinding), TapeAdvice::playBackwards);
  session.frames += 24;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::windToBeginning);
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
}

TEST_F(SearchingTapeWatch, ThatGot25FramesAwayIsSentAwayAgain) {
  session.settling = true;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  session.frames += 25;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
}

TEST_F(SearchingTapeWatch, ThatCameToTheOtherEndIsNotWoundBack) {
  session.settling = true;
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::play);
  session.frames += 5;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::playBackwards);
}

// While it records.

TEST_F(SearchingTapeWatch, TheEndOfTheTapeInARecordingGivesTheClipUp) {
  session.recording = true;
  session.place = -1;
  EXPECT_EQ(lookAfterStandingFrom(kPlaying), TapeAdvice::giveUpClip);
}

TEST_F(SearchingTapeWatch, APrerollThatCameToTheBeginningPlays) {
  session.recording = true;
  session.place = 1;
  EXPECT_EQ(lookAfterStandingFrom(kPlayingBackwards), TapeAdvice::play);
}

// Clips that do not come.

TEST_F(TapeWatchTest, AClipIsGivenUpWhenItsTimeIsOver) {
  pass(seconds(1000));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(milliseconds(1));
  EXPECT_EQ(look(), TapeAdvice::giveUpClip);
}

TEST_F(TapeWatchTest, EachRecordedClipBringsFreshTime) {
  pass(seconds(999));
  session.recordedClips = 1;
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(1000));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(1));
  EXPECT_EQ(look(), TapeAdvice::giveUpClip);
}

TEST_F(TapeWatchTest, ARecordingIsGivenUpWhenItsTimeIsOver) {
  pass(seconds(10));
  session.recording = true;
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(100));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(milliseconds(1));
  EXPECT_EQ(look(), TapeAdvice::giveUpClip);
}

TEST_F(TapeWatchTest, ARecordingThatEndedBeginsItsTimeAgain) {
  session.recording = true;
  look();
  pass(seconds(99));
  session.recording = false;
  look();
  session.recording = true;
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(99));
  EXPECT_EQ(look(), TapeAdvice::none);
}

TEST_F(TapeWatchTest, ARecordingThatFollowsAnotherAtOnceHasItsOwnTime) {
  session.recording = true;
  look();
  pass(seconds(99));
  session.recordedClips = 1;
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(seconds(100));
  EXPECT_EQ(look(), TapeAdvice::none);
  pass(milliseconds(1));
  EXPECT_EQ(look(), TapeAdvice::giveUpClip);
}

TEST_F(SearchingTapeWatch, ATapeThatIsLateIsGivenUpWhereverItStands) {
  pass(seconds(1000));
  EXPECT_EQ(lookAfterStandingFrom(kRewinding), TapeAdvice::giveUpClip);
}

}  // namespace
}  // namespace zq::host

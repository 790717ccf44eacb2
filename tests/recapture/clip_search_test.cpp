// Finding the clip that a frame lies in, and the one to be recaptured next.

#include <gmock/gmock.h>

#include "recapture/tape_search.h"
#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClipSearch : public RecaptureTest {
 protected:
  ClipSearch() {
    tape_ = load({{{100, 5000, 251}, {120, 5251, 251}, {140, 5502, 251, false}}});
    sequence_ = tape_->sequenceAtIndex(0);
    controller_->setSequenceFound(sequence_);
  }
  ClipValue clip(std::size_t index) { return clipOf(tape_, 0, index); }
  ClipValue clipOn(int date) { return controller_->currentClipOnDate(dateValueAt(date)); }

  TapeValue tape_;
  SequenceValue sequence_;
};

TEST_F(ClipSearch, FindsAClipOnItsFirstAndItsLastSecond) {
  EXPECT_EQ(clipOn(99), nullptr);
  EXPECT_EQ(clipOn(100), clip(0));
  EXPECT_EQ(clipOn(110), clip(0));
  EXPECT_EQ(clipOn(111), nullptr);
  EXPECT_EQ(clipOn(120), clip(1));
  EXPECT_EQ(clipOn(130), clip(1));
}

TEST_F(ClipSearch, FindsClipsThatAreNotMarkedAsWell) {
  EXPECT_EQ(clipOn(140), clip(2));
}

TEST_F(ClipSearch, ShowsTheClipAndItsPictureOnTheMainThread) {
  clipOn(100);
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: clip 1-1"));
  letPass(platform::Duration(0));
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: clip 1-1", "timeline: clicked"));
}

TEST_F(ClipSearch, ShowsAClipOnceWhileItIsTheCurrentOne) {
  controller_->setCurrentClip(clip(0));
  EXPECT_EQ(clipOn(105), clip(0));
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(ClipSearch, ADateBetweenTwoClipsKeepsTheClipBefore) {
  controller_->setCurrentClip(clip(0));
  EXPECT_EQ(clipOn(115), clip(0));
  EXPECT_EQ(clipOn(99), clip(0));
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

// A match that is the current clip is passed over, so that of two clips which share a second each takes its turn.
TEST_F(ClipSearch, TwoClipsThatShareASecondAlternate) {
  tape_ = load({{{100, 5000, 251}, {110, 5251, 251}}});
  controller_->setSequenceFound(tape_->sequenceAtIndex(0));
  for (int i = 0; i < 2; ++i) {
    controller_->setCurrentClip(clipOn(110));
    EXPECT_EQ(controller_->currentClip(), clip(0));
    controller_->setCurrentClip(clipOn(110));
    EXPECT_EQ(controller_->currentClip(), clip(1));
  }
}

TEST_F(ClipSearch, KeepsTheClipWithoutASequenceOrADateAndDuringAPreroll) {
  controller_->setCurrentClip(clip(0));
  EXPECT_EQ(controller_->currentClipOnDate(nullptr), clip(0));
  controller_->setIsPrerolling(true);
  EXPECT_EQ(clipOn(120), clip(0));
  controller_->setIsPrerolling(false);
  controller_->setSequenceFound(nullptr);
  EXPECT_EQ(clipOn(120), clip(0));
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(ClipSearch, NextIsTheFirstThatIsMarkedAndNotFinished) {
  EXPECT_EQ(controller_->findNextClipToBeRecaptured(), clip(0));
  clip(0)->setRecaptureFinished(true);
  EXPECT_EQ(controller_->findNextClipToBeRecaptured(), clip(1));
  EXPECT_FALSE(sequence_->isAllClipsRecaptured());
}

TEST_F(ClipSearch, NextIsNoneWithoutASequence) {
  controller_->setSequenceFound(nullptr);
  EXPECT_EQ(controller_->findNextClipToBeRecaptured(), nullptr);
  EXPECT_EQ(secondsNow(), 0);
}

TEST_F(ClipSearch, WithoutANextClipTheSequenceIsRecapturedAndIsNotFoundAgain) {
  clip(0)->setRecaptureFinished(true);
  clip(1)->setRecaptureFinished(true);
  EXPECT_EQ(controller_->findNextClipToBeRecaptured(), nullptr);
  EXPECT_TRUE(sequence_->isAllClipsRecaptured());
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  controller_->findSequenceOnDate(dateValueAt(105));
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
}

// As on a tape whose sequences are all known, but of which only some are wanted.
TEST_F(ClipSearch, ASequenceWithoutMarkedClipsIsLeftAtTheFrameAfterItWasFound) {
  selectDevice(kPlaying);
  tape_ = load({{{100, 5000, 250, false}}, {{300, 9000}}});
  controller_->setSequenceFound(nullptr);
  play(5000, 100);
  EXPECT_EQ(controller_->sequenceFound(), tape_->sequenceAtIndex(0));
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecapturedInSequence(), 0);
  play(5001, 100);
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  EXPECT_TRUE(tape_->sequenceAtIndex(0)->isAllClipsRecaptured());
  EXPECT_EQ(secondsNow(), 4);
  EXPECT_THAT(alerts_.shown, IsEmpty());
}

TEST_F(ClipSearch, TheClipBeforeIsTheOneBeforeByItsIndex) {
  EXPECT_EQ(controller_->clipBefore(), nullptr);
  controller_->setClipToBeRecaptured(clip(0));
  EXPECT_EQ(controller_->clipBefore(), nullptr);
  controller_->setClipToBeRecaptured(clip(1));
  EXPECT_EQ(controller_->clipBefore(), clip(0));
  controller_->setClipToBeRecaptured(clip(2));
  EXPECT_EQ(controller_->clipBefore(), clip(1));
}

TEST_F(ClipSearch, NoClipIsBeforeOneWhoseIndexTheSequenceDoesNotHave) {
  ClipRecord record = recordOf({});
  for (const std::int32_t index : {-1, 5}) {
    record.index = index;
    EXPECT_EQ(clipBefore(sequence_, std::make_shared<ZQACClip>(record)), nullptr);
  }
  EXPECT_EQ(clipBefore(nullptr, clip(1)), nullptr);
}

TEST_F(ClipSearch, IsInTheClipWhenBothAreOneObject) {
  controller_->setCurrentClip(clip(0));
  controller_->setClipToBeRecaptured(clip(1));
  EXPECT_FALSE(controller_->isInClipToBeRecaptured());
  controller_->setClipToBeRecaptured(clip(0));
  EXPECT_TRUE(controller_->isInClipToBeRecaptured());
  controller_->setClipToBeRecaptured(std::make_shared<ZQACClip>(recordOf({100, 5000, 251})));
  EXPECT_FALSE(controller_->isInClipToBeRecaptured());
}

TEST_F(ClipSearch, TwoClipsThatAreNoneMatch) {
  EXPECT_TRUE(controller_->isInClipToBeRecaptured());
  controller_->setCurrentClip(clip(0));
  EXPECT_FALSE(controller_->isInClipToBeRecaptured());
}

TEST(CompareDates, CountsSecondsAndTakesNoneForTheSame) {
  EXPECT_EQ(compareDates(dateValueAt(1), dateValueAt(2)), -1);
  EXPECT_EQ(compareDates(dateValueAt(2), dateValueAt(1)), 1);
  EXPECT_EQ(compareDates(dateValueAt(2), dateValueAt(2)), 0);
  EXPECT_EQ(compareDates(nullptr, dateValueAt(2)), 0);
  EXPECT_EQ(compareDates(dateValueAt(2), nullptr), 0);
}

}  // namespace
}  // namespace zq::test

// What a sequence sums up of its clips.

#include "catalogue/sequence.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/recapture_tape.h"

namespace zq::test {
namespace {

ClipValue clipOfRecord(const ClipRecord& record) {
  return std::make_shared<ZQACClip>(record);
}

TEST(Sequence, SumsTheFramesOfItsClips) {
  const auto sequence = makeSequence("1", {{0, 0, 101}, {20, 0, 51, false}});
  EXPECT_EQ(sequence->totalDurationInFrame(), 150);
}

// The sum is added to what is stored, as with the tape's.
TEST(Sequence, SummedOnceMoreIsTwiceAsLong) {
  const auto sequence = makeSequence("1", {{0, 0, 101}});
  EXPECT_EQ(sequence->computeTotalDurationInFrame(), 200);
  EXPECT_EQ(sequence->totalDurationInFrame(), 200);
}

TEST(Sequence, CountsMarkedClipsFinishedOrNot) {
  const auto sequence = makeSequence("1", {{0, 0, 10}, {20, 0, 10, false}, {40, 0, 10}});
  sequence->allClips().at(0)->setRecaptureFinished(true);
  EXPECT_EQ(sequence->recapturedClipsCount(), 2);
  EXPECT_EQ(sequence->computeRecapturedClips(), 2);
}

TEST(Sequence, LastsFromItsEarliestStartToItsLatestEnd) {
  // The second clip lies inside the first.
  const auto sequence = makeSequence("1", {{10, 0, 1001}, {15, 0, 26}, {5, 0, 26}});
  EXPECT_EQ(*sequence->dateStartSequence(), *dateValueAt(5));
  EXPECT_EQ(*sequence->dateEndSequence(), *dateValueAt(50));
}

TEST(Sequence, WithoutClipsBeginsNowAndEndedIn1970) {
  const DateValue now = dateValueAt(123);
  const ZQACSequence sequence("1", "empty", {}, now);
  EXPECT_EQ(sequence.dateStartSequence(), now);
  EXPECT_EQ(sequence.dateEndSequence()->timeIntervalSinceReferenceDate(), -978307200);
  EXPECT_EQ(sequence.totalDurationInFrame(), 0);
  EXPECT_EQ(sequence.recapturedClipsCount(), 0);
}

TEST(Sequence, OfClipsInTheFutureBeginsNow) {
  const ZQACSequence sequence("1", "", {clipOfRecord(recordOf({100, 0, 26}))}, dateValueAt(50));
  EXPECT_EQ(*sequence.dateStartSequence(), *dateValueAt(50));
  EXPECT_EQ(*sequence.dateEndSequence(), *dateValueAt(101));
}

TEST(Sequence, OfClipsBefore1970EndsIn1970) {
  ClipRecord record = recordOf({});
  record.startDate = std::make_shared<const CalendarDate>(1950, 1, 1, 0, 0, 0);
  const ZQACSequence sequence("1", "", {clipOfRecord(record)}, dateValueAt(0));
  EXPECT_EQ(*sequence.dateStartSequence(), *record.startDate);
  EXPECT_EQ(sequence.dateEndSequence()->timeIntervalSinceReferenceDate(), -978307200);
}

TEST(Sequence, IsNotDatedByAClipWithoutADate) {
  ClipRecord undated = recordOf({});
  undated.startDate = nullptr;
  const ZQACSequence sequence("1", "", {clipOfRecord(undated), clipOfRecord(recordOf({10, 0, 26}))}, dateValueAt(50));
  EXPECT_EQ(*sequence.dateStartSequence(), *dateValueAt(10));
  EXPECT_EQ(*sequence.dateEndSequence(), *dateValueAt(11));
  EXPECT_EQ(sequence.totalDurationInFrame(), 249 + 25);
}

TEST(Sequence, DatedAnewStartsFromTheNowItIsGiven) {
  ZQACSequence sequence("1", "", {clipOfRecord(recordOf({10, 0, 26}))}, dateValueAt(50));
  sequence.findSequenceStartDateAndEndDate(dateValueAt(3));
  EXPECT_EQ(*sequence.dateStartSequence(), *dateValueAt(3));
}

TEST(Sequence, WrapsItsSum) {
  ClipRecord record = recordOf({});
  record.timebase = std::numeric_limits<std::int32_t>::max();
  record.duration = valueWithSMPTETime(timecodeOf(0, 0, 1, 0));
  const ZQACSequence sequence("1", "", {clipOfRecord(record), clipOfRecord(record)}, dateValueAt(0));
  EXPECT_EQ(sequence.totalDurationInFrame(), -2);
}

TEST(Sequence, HandsOutWhatItWasGivenAndTold) {
  const auto sequence = makeSequence("4", {{}, {}});
  EXPECT_EQ(sequence->sequenceId(), "4");
  EXPECT_EQ(sequence->sequenceName(), "Sequence 4");
  EXPECT_EQ(sequence->allClips().size(), 2U);
  EXPECT_EQ(sequence->posInTimeline(), platform::Rect{});
  EXPECT_FALSE(sequence->isAllClipsRecaptured());
  sequence->setPosInTimeline({1, 2, 3, 4});
  sequence->setIsAllClipsRecaptured(true);
  EXPECT_EQ(sequence->posInTimeline(), (platform::Rect{1, 2, 3, 4}));
  EXPECT_TRUE(sequence->isAllClipsRecaptured());
}

}  // namespace
}  // namespace zq::test

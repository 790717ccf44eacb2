// What a tape sums up of its sequences, and which clips it lists.

#include "catalogue/tape.h"

#include <gmock/gmock.h>

#include <limits>
#include <stdexcept>

#include "catalogue/catalogue_keys.h"
#include "support/recapture_tape.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ClipPlan planOf(bool recapture) {
  ClipPlan plan;
  plan.frames = 101;
  plan.recapture = recapture;
  return plan;
}

TEST(Tape, SumsTheFramesOfItsSequences) {
  EXPECT_EQ(makeTape({{planOf(true), planOf(false)}, {planOf(true)}})->totalDurationInFrame(), 300);
}

// The sum is added to what is stored: it is made once, by whoever makes the tape.
TEST(Tape, SummedOnceMoreIsTwiceAsLong) {
  const TapeValue tape = makeTape({{planOf(true)}});
  EXPECT_EQ(tape->computeTotalDurationInFrame(), 200);
  EXPECT_EQ(tape->totalDurationInFrame(), 200);
}

TEST(Tape, ListsTheMarkedClipsInTapeOrderAndMarksTheLast) {
  const TapeValue tape = makeTape({{planOf(false), planOf(true)}, {planOf(true), planOf(false)}});
  EXPECT_THAT(tape->clipsToBeRecaptured(), IsEmpty());
  EXPECT_EQ(tape->clipCount(), 0);
  tape->findClipsToBeRecapturedInTape();
  EXPECT_THAT(tape->clipsToBeRecaptured(), ElementsAre(clipOf(tape, 0, 1), clipOf(tape, 1, 0)));
  EXPECT_FALSE(clipOf(tape, 0, 1)->isLastClip());
  EXPECT_TRUE(clipOf(tape, 1, 0)->isLastClip());
  EXPECT_FALSE(clipOf(tape, 1, 1)->isLastClip());
  EXPECT_EQ(tape->clipCount(), 4);
}

TEST(Tape, ListsFinishedClipsAsWell) {
  const TapeValue tape = makeTape({{planOf(true)}});
  clipOf(tape, 0, 0)->setRecaptureFinished(true);
  tape->findClipsToBeRecapturedInTape();
  EXPECT_THAT(tape->clipsToBeRecaptured(), ElementsAre(clipOf(tape, 0, 0)));
}

TEST(Tape, WithoutMarkedClipsListsAndMarksNone) {
  const TapeValue tape = makeTape({{planOf(false), planOf(false)}});
  tape->findClipsToBeRecapturedInTape();
  EXPECT_THAT(tape->clipsToBeRecaptured(), IsEmpty());
  EXPECT_FALSE(clipOf(tape, 0, 1)->isLastClip());
  EXPECT_EQ(tape->clipCount(), 2);
}

// The list is not emptied first; it is made once a tape.
TEST(Tape, SearchedTwiceListsTwice) {
  const TapeValue tape = makeTape({{planOf(true), planOf(true)}});
  tape->findClipsToBeRecapturedInTape();
  tape->findClipsToBeRecapturedInTape();
  EXPECT_THAT(tape->clipsToBeRecaptured(),
              ElementsAre(clipOf(tape, 0, 0), clipOf(tape, 0, 1), clipOf(tape, 0, 0), clipOf(tape, 0, 1)));
  EXPECT_EQ(tape->clipCount(), 2);
}

TEST(Tape, TakesSequencesInTheMiddleAndAtTheEnd) {
  const TapeValue tape = makeTape({{planOf(true)}, {planOf(true)}});
  tape->insertSequenceAtIndex(makeSequence("between", {}), 1);
  tape->addSequence(makeSequence("last", {}));
  tape->insertSequenceAtIndex(makeSequence("very last", {}), 4);
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < 5; ++i) ids.push_back(tape->sequenceAtIndex(i)->sequenceId());
  EXPECT_THAT(ids, ElementsAre("1", "between", "2", "last", "very last"));
  EXPECT_EQ(tape->totalDurationInFrame(), 200);  // summed when it was made
}

TEST(Tape, RefusesPlacesThatItDoesNotHave) {
  const TapeValue tape = makeTape({{planOf(true)}});
  EXPECT_THROW(tape->sequenceAtIndex(1), std::out_of_range);
  EXPECT_THROW(tape->insertSequenceAtIndex(makeSequence("2", {}), 2), std::out_of_range);
  EXPECT_EQ(tape->allSequences().size(), 1U);
}

TEST(Tape, WrapsItsSum) {
  ClipRecord record = recordOf({});
  record.timebase = std::numeric_limits<std::int32_t>::max();
  record.duration = valueWithSMPTETime(timecodeOf(0, 0, 1, 0));
  const auto sequence = std::make_shared<ZQACSequence>(
      "1", "", std::vector<ClipValue>{std::make_shared<ZQACClip>(record)}, dateValueAt(0));
  EXPECT_EQ(ZQACTape(1, "", {sequence, sequence}).totalDurationInFrame(), -2);
}

TEST(Tape, HandsOutWhatItWasGivenAndTold) {
  ZQACTape tape(-5, "Holiday", {});
  EXPECT_EQ(tape.tapeId(), -5);
  EXPECT_EQ(tape.tapeName(), "Holiday");
  EXPECT_THAT(tape.allSequences(), IsEmpty());
  tape.setClipCount(9);
  EXPECT_EQ(tape.clipCount(), 9);
}

TEST(CatalogueKeys, AreWhatHostsStoreUnder) {
  EXPECT_THAT((std::vector<std::string>{kZQACActiveTape, kZQACActiveSequence, kZQACActiveClip}),
              ElementsAre("tape", "sequence", "clip"));
  EXPECT_THAT((std::vector<std::string>{kZQACTapesCount, kZQACSequencesCount, kZQACClipsCount}),
              ElementsAre("tapes count", "sequences count", "clips count"));
}

}  // namespace
}  // namespace zq::test

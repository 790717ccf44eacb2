// Which clips of a tape are recaptured, and the records that the controller looks for them with.

#include "host/recapture_plan.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "recapture/tape_search.h"
#include "support/dv_frames.h"

namespace zq::host {
namespace {

using test::timecodeOf;

using Ids = std::vector<std::int64_t>;

constexpr char kFolder[] = "/movies";

DateValue dateAt(int hour, int minute = 0, int second = 0) {
  return std::make_shared<const CalendarDate>(2004, 7, 15, hour, minute, second);
}

/// A marked clip of ten seconds, from 00:00:00:00 to 00:00:09:24.
CatalogueClip clipAt(std::int64_t id, const DateValue& date) {
  CatalogueClip clip;
  clip.id = id;
  clip.name = "clip " + std::to_string(id);
  clip.recordingDate = date;
  clip.startTimecode = timecodeOf(0, 0, 0, 0, 1);
  clip.endTimecode = timecodeOf(0, 0, 9, 24, 1);
  clip.moviePath = "/captures/clip.mov";
  clip.marked = true;
  return clip;
}

CatalogueClip unmarked(CatalogueClip clip) {
  clip.marked = false;
  return clip;
}

CatalogueClip trashed(CatalogueClip clip) {
  clip.trashed = true;
  return clip;
}

CatalogueTape tapeOf(const std::vector<std::vector<CatalogueClip>>& sequences) {
  CatalogueTape tape{3, "holiday", {}};
  for (const auto& clips : sequences) {
    const auto id = static_cast<std::int64_t>(tape.sequences.size()) + 1;
    tape.sequences.push_back({id, "session " + std::to_string(id), clips});
  }
  return tape;
}

Ids idsOf(const std::vector<CatalogueClip>& clips) {
  Ids ids;
  for (const CatalogueClip& clip : clips) ids.push_back(clip.id);
  return ids;
}

std::string reasonFor(const CatalogueClip& clip) {
  const RecapturePlan plan = planOf(tapeOf({{clip}}));
  EXPECT_EQ(plan.clips.size() + plan.unreachable.size(), 1U);
  return plan.unreachable.empty() ? "" : plan.unreachable[0].reason;
}

std::vector<std::string> namesOf(const ZQACSequence& sequence) {
  std::vector<std::string> names;
  for (const ClipValue& clip : sequence.allClips()) names.push_back(clip->clipName());
  return names;
}

using Names = std::vector<std::string>;

// What is taken.

TEST(RecapturePlan, TakesTheMarkedClipsInTheOrderOfTheirDates) {
  const CatalogueTape tape = tapeOf(
      {{clipAt(1, dateAt(15)), unmarked(clipAt(2, dateAt(16))), clipAt(3, dateAt(13))}, {clipAt(4, dateAt(14))}});
  EXPECT_EQ(idsOf(planOf(tape).clips), (Ids{3, 4, 1}));
  EXPECT_TRUE(planOf(tape).unreachable.empty());
}

TEST(RecapturePlan, KeepsTheOrderOfTheTapeWhereDatesAreTheSame) {
  const CatalogueTape tape = tapeOf({{clipAt(9, dateAt(13)), clipAt(2, dateAt(13))}, {clipAt(5, dateAt(13))}});
  EXPECT_EQ(idsOf(planOf(tape).clips), (Ids{9, 2, 5}));
}

TEST(RecapturePlan, LeavesTrashedClipsOut) {
  CatalogueClip undated = trashed(clipAt(2, nullptr));
  const RecapturePlan plan = planOf(tapeOf({{trashed(clipAt(1, dateAt(13))), undated}}));
  EXPECT_TRUE(plan.clips.empty());
  EXPECT_TRUE(plan.unreachable.empty());
}

TEST(RecapturePlan, OfATapeWithoutMarkedClipsIsEmpty) {
  const RecapturePlan plan = planOf(tapeOf({{unmarked(clipAt(1, nullptr)), unmarked(clipAt(2, dateAt(13)))}, {}}));
  EXPECT_TRUE(plan.clips.empty());
  EXPECT_TRUE(plan.unreachable.empty());
}

// What cannot be reached.

TEST(RecapturePlan, SaysWhyAClipCannotBeReached) {
  CatalogueClip clip = clipAt(1, dateAt(13));
  EXPECT_EQ(reasonFor(clip), "");
  clip.recordingDate = nullptr;
  EXPECT_EQ(reasonFor(clip), "It has no recording date to find it by.");

  for (const bool start : {true, false}) {
    clip = clipAt(1, dateAt(13));
    (start ? clip.startTimecode : clip.endTimecode).reset();
    EXPECT_EQ(reasonFor(clip), "It has no timecodes to record it between.");
  }

  clip = clipAt(1, dateAt(13));
  clip.endTimecode = clip.startTimecode;
  EXPECT_EQ(reasonFor(clip), "It is one frame long, and the frame at the end timecode is not recorded.");
  clip.moviePath.clear();
  EXPECT_EQ(reasonFor(clip), "") << "what a list brought is recorded whole";
  clip.moviePath = "/captures/clip.mov";
  clip.endTimecode = timecodeOf(0, 0, 0, 1, 1);
  EXPECT_EQ(reasonFor(clip), "");

  clip.startTimecode = timecodeOf(23, 59, 59, 0, 1);
  EXPECT_EQ(reasonFor(clip), "Its timecode does not run on from its start to its end.");
}

TEST(RecapturePlan, AClipThatCannotBeReachedDoesNotHinderTheOthers) {
  const RecapturePlan plan = planOf(tapeOf({{clipAt(1, nullptr), clipAt(2, dateAt(13))}}));
  EXPECT_EQ(idsOf(plan.clips), (Ids{2}));
  ASSERT_EQ(plan.unreachable.size(), 1U);
  EXPECT_EQ(plan.unreachable[0].clip.id, 1);
}

// The records of the automatic mode.

TEST(AutomaticRecords, AreOneSequenceThatHoldsEveryDate) {
  const CatalogueTape tape = tapeOf({{clipAt(1, dateAt(13))}, {clipAt(2, dateAt(15))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(records->tapeName(), "holiday");
  EXPECT_EQ(records->tapeId(), 3);
  ASSERT_EQ(records->allSequences().size(), 1U);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 1", "clip 2", "boundary"}));
  for (const int year : {1925, 1999, 2004, 2024}) {
    for (const int month : {1, 12}) {
      const auto date = std::make_shared<const CalendarDate>(year, month, 31, 23, 59, 59);
      EXPECT_EQ(sequenceOnDate(*records, date), records->sequenceAtIndex(0)) << year;
    }
  }
}

TEST(AutomaticRecords, AreInTheOrderOfTheirDatesAndNumberedSo) {
  const CatalogueTape tape =
      tapeOf({{clipAt(1, dateAt(15)), unmarked(clipAt(2, dateAt(14)))}, {clipAt(3, dateAt(13))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  const ZQACSequence& sequence = *records->sequenceAtIndex(0);
  EXPECT_EQ(namesOf(sequence), (Names{"boundary", "clip 3", "clip 2", "clip 1", "boundary"}));
  for (std::size_t i = 0; i < sequence.allClips().size(); ++i) {
    EXPECT_EQ(sequence.allClips()[i]->indexInSequence(), static_cast<std::int32_t>(i));
  }
}

TEST(AutomaticRecords, SayOfAClipWhatTheCatalogueDoes) {
  CatalogueClip clip = clipAt(12, dateAt(13));
  clip.startTimecode = timecodeOf(1, 2, 3, 20, 2);
  clip.endTimecode = timecodeOf(1, 2, 5, 10, 2);
  clip.timebase = 30;
  const CatalogueTape tape = tapeOf({{clip, unmarked(clipAt(13, dateAt(14)))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  const ClipValue record = records->sequenceAtIndex(0)->allClips().at(1);
  EXPECT_EQ(record->clipId(), "12");
  EXPECT_EQ(record->clipName(), "clip 12");
  EXPECT_EQ(*record->dateStartClip(), *dateAt(13));
  EXPECT_EQ(*record->dateEndClip(), *dateAt(13, 0, 1));
  EXPECT_EQ(*record->timecodeStartClip(), *clip.startTimecode);
  EXPECT_EQ(*record->timecodeEndClip(), *clip.endTimecode);
  EXPECT_EQ(record->timebase(), 30);
  EXPECT_EQ(record->durationInFrame(), 50);
  EXPECT_TRUE(record->isRecapture());
  EXPECT_EQ(record->recapturePath(), "/movies/12.mov");
  EXPECT_FALSE(records->sequenceAtIndex(0)->allClips().at(2)->isRecapture());
}

TEST(AutomaticRecords, OfWhichTwoShareNoSecond) {
  // Ten seconds each: the second ends where the third begins.
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13))), unmarked(clipAt(2, dateAt(13, 0, 5))),
                                      clipAt(3, dateAt(13, 0, 14)), unmarked(clipAt(4, dateAt(13, 0, 24)))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 1", "clip 3", "clip 4", "boundary"}));
}

TEST(AutomaticRecords, TakeWantedClipsBeforeTheOthers) {
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13))), clipAt(2, dateAt(13, 0, 5))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 2", "boundary"}));
}

TEST(AutomaticRecords, LeaveAWantedClipForLaterThatSharesASecondWithAnother) {
  const CatalogueTape tape =
      tapeOf({{clipAt(1, dateAt(13)), clipAt(2, dateAt(13, 0, 9)), clipAt(3, dateAt(13, 0, 10))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 1", "clip 3", "boundary"}));
}

TEST(AutomaticRecords, HoldAClipOnceThatTwoSessionsHave) {
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13))), clipAt(2, dateAt(14))},
                                     {clipAt(3, dateAt(13)), unmarked(clipAt(4, dateAt(14)))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 3", "clip 2", "boundary"}));
}

TEST(AutomaticRecords, HoldNoClipThatCannotBeReached) {
  const CatalogueTape tape = tapeOf({{clipAt(1, nullptr), unmarked(clipAt(2, nullptr)), clipAt(3, dateAt(13))}});
  const TapeValue records = automaticRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"boundary", "clip 3", "boundary"}));
}

TEST(AutomaticRecords, EndAFrameLaterForAClipThatAListBrought) {
  CatalogueClip clip = clipAt(1, dateAt(13));
  clip.moviePath.clear();
  const TapeValue records = automaticRecords(tapeOf({{clip}}), {clip}, kFolder);
  const SMPTETime end = *records->sequenceAtIndex(0)->allClips().at(1)->timecodeEndClip();
  EXPECT_EQ(end.mSeconds, 10);
  EXPECT_EQ(end.mFrames, 0);
}

TEST(AutomaticRecords, MarkOnlyTheClipsThatAreWanted) {
  const CatalogueTape tape = tapeOf({{clipAt(1, dateAt(13)), clipAt(2, dateAt(14))}});
  const TapeValue records = automaticRecords(tape, {clipAt(2, dateAt(14))}, kFolder);
  records->findClipsToBeRecapturedInTape();
  ASSERT_EQ(records->clipsToBeRecaptured().size(), 1U);
  EXPECT_EQ(records->clipsToBeRecaptured()[0]->clipId(), "2");
}

TEST(AutomaticRecords, OfNothingWantedHaveNoClipToBeRecaptured) {
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13)))}, {}});
  const TapeValue records = automaticRecords(tape, {}, kFolder);
  records->findClipsToBeRecapturedInTape();
  EXPECT_TRUE(records->clipsToBeRecaptured().empty());
}

// The records of the manual mode.

TEST(ManualRecords, AreASequenceForEachSessionWithMarkedClips) {
  const CatalogueTape tape = tapeOf({{clipAt(1, dateAt(13)), unmarked(clipAt(2, dateAt(14)))},
                                     {unmarked(clipAt(3, dateAt(13)))},
                                     {clipAt(4, dateAt(15))}});
  const TapeValue records = manualRecords(tape, planOf(tape).clips, kFolder);
  ASSERT_EQ(records->allSequences().size(), 2U);
  EXPECT_EQ(records->sequenceAtIndex(0)->sequenceId(), "1");
  EXPECT_EQ(records->sequenceAtIndex(0)->sequenceName(), "session 1");
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"clip 1", "clip 2"}));
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(1)), (Names{"clip 4"}));
  EXPECT_EQ(sequenceOnDate(*records, dateAt(13, 30)), records->sequenceAtIndex(0));
  EXPECT_EQ(sequenceOnDate(*records, dateAt(12)), nullptr);
}

// The earlier one would be found, and nothing be left to do in it.
TEST(ManualRecords, LeaveOutTheSessionThatHoldsTheSameDatesWithoutMarkedClips) {
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13)))}, {clipAt(2, dateAt(13))}});
  const TapeValue records = manualRecords(tape, planOf(tape).clips, kFolder);
  ASSERT_EQ(records->allSequences().size(), 1U);
  EXPECT_EQ(namesOf(*sequenceOnDate(*records, dateAt(13))), (Names{"clip 2"}));
}

TEST(ManualRecords, OfWhichTwoOfASessionShareNoSecondAndTheMarkedComeFirst) {
  const CatalogueTape tape = tapeOf({{unmarked(clipAt(1, dateAt(13))), clipAt(2, dateAt(13, 0, 5))}});
  const TapeValue records = manualRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"clip 2"}));
}

TEST(ManualRecords, HoldNoClipThatCannotBeReached) {
  const CatalogueTape tape = tapeOf({{clipAt(1, nullptr), clipAt(2, dateAt(13))}});
  const TapeValue records = manualRecords(tape, planOf(tape).clips, kFolder);
  EXPECT_EQ(namesOf(*records->sequenceAtIndex(0)), (Names{"clip 2"}));
}

}  // namespace
}  // namespace zq::host

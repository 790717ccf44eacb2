#include "host/recapture_plan.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "timecode/timecode_utils.h"

namespace zq::host {
namespace {

// No frame's date is before or behind these: two digits name the years from 1925 to 2024.
const CalendarDate kBeforeAll(1900, 1, 1, 0, 0, 0);  // NOLINT(cert-err58-cpp): a valid date
const CalendarDate kBehindAll(2100, 1, 1, 0, 0, 0);  // NOLINT(cert-err58-cpp): a valid date

DateValue valueOf(const CalendarDate& date) {
  return std::make_shared<const CalendarDate>(date);
}

TimecodeValue valueOf(const std::optional<SMPTETime>& timecode) {
  return timecode ? valueWithSMPTETime(*timecode) : nullptr;
}

std::string reasonAgainst(const CatalogueClip& clip) {
  if (!clip.recordingDate) return "It has no recording date to find it by.";
  if (!clip.startTimecode || !clip.endTimecode) return "It has no timecodes to record it between.";
  const int order = ZQACTimecodeUtils::timecodeCompareWith(*clip.startTimecode, *clip.endTimecode);
  if (order == 0 && !isFromList(clip))
    return "It is one frame long, and the frame at the end timecode is not recorded.";
  if (order > 0) return "Its timecode does not run on from its start to its end.";
  return "";
}

/// Of the frame that closes the recording.
SMPTETime closingTimecodeOf(const CatalogueClip& clip) {
  return isFromList(clip) ? ZQACTimecodeUtils::addNbFrameToTimecode(1, *clip.endTimecode) : *clip.endTimecode;
}

/// From the end and the start, which the recording goes by.
TimecodeValue durationOf(const CatalogueClip& clip) {
  return ZQACTimecodeUtils::subTimecodeFromTimecodeWithTimebase(valueOf(clip.startTimecode), valueOf(clip.endTimecode),
                                                                clip.timebase);
}

ClipRecord recordOf(const CatalogueClip& clip, bool recapture, const std::string& folder) {
  ClipRecord record;
  record.clipId = std::to_string(clip.id);
  record.clipName = clip.name;
  record.startDate = clip.recordingDate;
  record.startTimecode = valueOf(clip.startTimecode);
  record.endTimecode = valueWithSMPTETime(closingTimecodeOf(clip));
  record.duration = durationOf(clip);
  record.recapture = recapture;
  record.timebase = clip.timebase;
  record.recapturePath = folder;
  record.isInTrash = clip.trashed;
  return record;
}

/// A record that no frame is in. It makes its sequence reach to this date.
ClipRecord boundary(const CalendarDate& date) {
  ClipRecord record;
  record.clipName = "boundary";
  record.startDate = valueOf(date);
  record.timebase = 25;
  return record;
}

/// The seconds that a clip's record holds, its last one included.
struct Span {
  double first = 0;
  double last = 0;
};

Span spanOf(const ClipRecord& record) {
  const ZQACClip clip(record);
  return {clip.dateStartClip()->timeIntervalSinceReferenceDate(), clip.dateEndClip()->timeIntervalSinceReferenceDate()};
}

/// Records that share no second with each other.
class Row {
 public:
  bool add(const ClipRecord& record) {
    const Span span = spanOf(record);
    const bool free = std::ranges::none_of(
        records_, [&](const auto& held) { return span.first <= held.first.last && held.first.first <= span.last; });
    if (free) records_.emplace_back(span, record);
    return free;
  }

  /// In the order of their dates.
  std::vector<ClipRecord> sorted() {
    std::ranges::sort(records_, {}, [](const auto& held) { return held.first.first; });
    std::vector<ClipRecord> result;
    for (auto& [span, record] : records_) result.push_back(std::move(record));
    return result;
  }

 private:
  std::vector<std::pair<Span, ClipRecord>> records_;
};

SequenceValue sequenceOf(const std::string& id, const std::string& name, std::vector<ClipRecord> records) {
  std::vector<ClipValue> clips;
  for (ClipRecord& record : records) {
    record.index = static_cast<std::int32_t>(clips.size());
    clips.push_back(std::make_shared<ZQACClip>(std::move(record)));
  }
  return std::make_shared<ZQACSequence>(id, name, std::move(clips), valueOf(kBehindAll));
}

std::set<std::int64_t> idsOf(const std::vector<CatalogueClip>& clips) {
  std::set<std::int64_t> ids;
  for (const CatalogueClip& clip : clips) ids.insert(clip.id);
  return ids;
}

std::int32_t tapeIdOf(const CatalogueTape& tape) {
  return static_cast<std::int32_t>(tape.id);
}

}  // namespace

bool isFromList(const CatalogueClip& clip) {
  return clip.moviePath.empty() && clip.thumbnailPath.empty() && clip.movieFrames == 0;
}

RecapturePlan planOf(const CatalogueTape& tape) {
  RecapturePlan plan;
  for (const CatalogueSequence& sequence : tape.sequences) {
    for (const CatalogueClip& clip : sequence.clips) {
      if (!clip.marked || clip.trashed) continue;
      const std::string reason = reasonAgainst(clip);
      if (reason.empty()) {
        plan.clips.push_back(clip);
      } else {
        plan.unreachable.push_back({clip, reason});
      }
    }
  }
  std::ranges::stable_sort(
      plan.clips, {}, [](const CatalogueClip& clip) { return clip.recordingDate->timeIntervalSinceReferenceDate(); });
  return plan;
}

TapeValue automaticRecords(const CatalogueTape& tape, const std::vector<CatalogueClip>& wanted,
                           const std::string& folder) {
  Row row;
  for (const CatalogueClip& clip : wanted) row.add(recordOf(clip, true, folder));
  const std::set<std::int64_t> wantedIds = idsOf(wanted);
  for (const CatalogueSequence& sequence : tape.sequences) {
    for (const CatalogueClip& clip : sequence.clips) {
      if (!wantedIds.contains(clip.id) && reasonAgainst(clip).empty()) row.add(recordOf(clip, false, folder));
    }
  }
  std::vector<ClipRecord> records = row.sorted();
  if (!wanted.empty()) {
    records.insert(records.begin(), boundary(kBeforeAll));
    records.push_back(boundary(kBehindAll));
  }
  return std::make_shared<ZQACTape>(tapeIdOf(tape), tape.name,
                                    std::vector<SequenceValue>{sequenceOf(tape.name, tape.name, std::move(records))});
}

TapeValue manualRecords(const CatalogueTape& tape, const std::vector<CatalogueClip>& wanted,
                        const std::string& folder) {
  const std::set<std::int64_t> wantedIds = idsOf(wanted);
  std::vector<SequenceValue> sequences;
  for (const CatalogueSequence& sequence : tape.sequences) {
    // A session without marked clips would end the recapture where another one holds the same dates.
    if (std::ranges::none_of(sequence.clips, [&](const auto& clip) { return wantedIds.contains(clip.id); })) continue;
    Row row;
    for (const bool marked : {true, false}) {
      for (const CatalogueClip& clip : sequence.clips) {
        if (wantedIds.contains(clip.id) != marked || !reasonAgainst(clip).empty()) continue;
        row.add(recordOf(clip, marked, folder));
      }
    }
    sequences.push_back(sequenceOf(std::to_string(sequence.id), sequence.name, row.sorted()));
  }
  return std::make_shared<ZQACTape>(tapeIdOf(tape), tape.name, std::move(sequences));
}

}  // namespace zq::host

#include "host/batch_list_dating.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/batch_list_text.h"
#include "host/text.h"

namespace zq::host {
namespace {

/// What a clip that holds the row says about it.
struct Finding {
  std::int64_t clip = 0;
  CalendarDate date;
  int timebase = 25;
  std::int32_t aspectRatio = -1;
};

bool cameFromACapture(const CatalogueClip& clip) {
  return !clip.moviePath.empty() || !clip.thumbnailPath.empty();
}

bool holds(const CatalogueClip& clip, const BatchRow& row) {
  if (clip.trashed || !clip.recordingDate || !clip.startTimecode || !clip.endTimecode) return false;
  if (!cameFromACapture(clip) || row.in.mFrames >= clip.timebase || row.out.mFrames >= clip.timebase) return false;
  const int timebase = clip.timebase;
  return framesTo(*clip.startTimecode, timebase) <= framesTo(row.in, timebase) &&
         framesTo(row.last(timebase), timebase) <= framesTo(*clip.endTimecode, timebase);
}

/// The clip's date, moved to the row's first frame. On the camcorder's clock, which knows no summer time.
CalendarDate dateIn(const CatalogueClip& clip, const BatchRow& row) {
  const std::int64_t frames = framesTo(row.in, clip.timebase) - framesTo(*clip.startTimecode, clip.timebase);
  const CalendarDate& date = *clip.recordingDate;
  return {date.yearOfCommonEra(), date.monthOfYear(),
          date.dayOfMonth(),      date.hourOfDay(),
          date.minuteOfHour(),    date.secondOfMinute() + static_cast<int>(frames / clip.timebase)};
}

std::vector<Finding> findingsIn(const CatalogueTape& tape, const BatchRow& row) {
  std::vector<Finding> findings;
  for (const CatalogueSequence& sequence : tape.sequences) {
    for (const CatalogueClip& clip : sequence.clips) {
      if (holds(clip, row)) findings.push_back({clip.id, dateIn(clip, row), clip.timebase, clip.aspectRatio});
    }
  }
  return findings;
}

/// A tape that was captured twice has each scene twice.
bool agree(const std::vector<Finding>& findings) {
  return !findings.empty() && std::ranges::all_of(findings, [&](const Finding& finding) {
    return finding.date == findings[0].date && finding.timebase == findings[0].timebase;
  });
}

std::string whyNot(const BatchRow& row, const CatalogueTape* tape, const std::vector<Finding>& findings) {
  if (tape == nullptr) return fmt::format("tape \"{}\" has not been captured yet", row.tape);
  const std::string range = fmt::format("{} to {}", textOf(std::optional(row.in)), textOf(std::optional(row.out)));
  if (findings.empty()) return fmt::format("no captured clip of tape \"{}\" holds {}", row.tape, range);
  return fmt::format("captured clips of tape \"{}\" with different dates hold {}, among them {} and {}", row.tape,
                     range, findings.front().clip, findings.back().clip);
}

CatalogueClip clipOf(const BatchRow& row, int timebase) {
  const SMPTETime last = row.last(timebase);
  const std::int64_t first = framesTo(row.in, timebase);
  CatalogueClip clip;
  clip.name = row.name;
  clip.timebase = timebase;
  clip.startTimecode = timecodeAt(first, timebase);
  clip.endTimecode = last;
  clip.duration = timecodeAt(framesTo(last, timebase) - first, timebase);
  return clip;
}

}  // namespace

PlacedRow placeRow(const BatchRow& row, int listTimebase, const CatalogueTape* tape) {
  const std::vector<Finding> findings = tape == nullptr ? std::vector<Finding>() : findingsIn(*tape, row);
  PlacedRow placed;
  if (agree(findings)) {
    placed.clip = clipOf(row, findings[0].timebase);
    placed.clip.recordingDate = std::make_shared<const CalendarDate>(findings[0].date);
    placed.clip.aspectRatio = findings[0].aspectRatio;
  } else {
    placed.clip = clipOf(row, row.timebase.value_or(listTimebase));
    placed.clip.recordingDate = row.recordingDate;
    if (!row.recordingDate) placed.reason = whyNot(row, tape, findings);
  }
  placed.clip.marked = placed.clip.recordingDate != nullptr;
  return placed;
}

}  // namespace zq::host

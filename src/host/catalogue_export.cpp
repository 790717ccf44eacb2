#include "host/catalogue_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "host/batch_list_text.h"
#include "host/catalogue_command_json.h"
#include "host/csv.h"
#include "host/edl_writer.h"
#include "host/text.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

// The first four are what an import needs; it uses recordingDate and timebase too.
const std::vector<std::string> kCsvColumns{"name",
                                           "tape",
                                           "in",
                                           "out",
                                           "clipId",
                                           "sequence",
                                           "recordingDate",
                                           "duration",
                                           "timebase",
                                           "aspectRatio",
                                           "moviePath",
                                           "thumbnailPath",
                                           "recapturedPath",
                                           "movieFrames",
                                           "thumbnailFrames",
                                           "marked",
                                           "recaptured"};

bool isOnClock(const SMPTETime& time, int timebase) {
  const auto isBelow = [](std::int16_t number, int end) { return number >= 0 && number < end; };
  return isBelow(time.mHours, 24) && isBelow(time.mMinutes, 60) && isBelow(time.mSeconds, 60) &&
         isBelow(time.mFrames, timebase);
}

/// Why a clip cannot be a range of timecodes; "" when it can.
std::string whyNoRange(const CatalogueClip& clip) {
  if (!clip.startTimecode || !clip.endTimecode) return "it has no timecodes";
  if (!isOnClock(*clip.startTimecode, clip.timebase) || !isOnClock(*clip.endTimecode, clip.timebase)) {
    return "its timecodes are none of a clock";
  }
  const bool runsBack = framesTo(*clip.endTimecode, clip.timebase) < framesTo(*clip.startTimecode, clip.timebase);
  return runsBack ? "its timecodes run backwards" : "";
}

/// Calls `use` with the clips that are to be listed; it says why one cannot be, or "".
ExportedTape listClips(const CatalogueTape& tape,
                       const std::function<std::string(const CatalogueClip&, const CatalogueSequence&)>& use) {
  ExportedTape exported;
  for (const CatalogueSequence& sequence : tape.sequences) {
    for (const CatalogueClip& clip : sequence.clips) {
      if (clip.trashed) continue;
      std::string reason = whyNoRange(clip);
      if (reason.empty()) reason = use(clip, sequence);
      if (reason.empty()) {
        ++exported.clips;
      } else {
        exported.leftOut.push_back({clip.id, std::move(reason)});
      }
    }
  }
  return exported;
}

std::string csvRow(const CatalogueTape& tape, const CatalogueSequence& sequence, const CatalogueClip& clip) {
  const int timebase = clip.timebase;
  const std::int64_t in = framesTo(*clip.startTimecode, timebase);
  const std::int64_t out = framesTo(*clip.endTimecode, timebase) + 1;
  return csvLine({clip.name, tape.name, timecodeText(timecodeAt(in, timebase)), timecodeText(timecodeAt(out, timebase)),
                  std::to_string(clip.id), sequence.name, textOf(clip.recordingDate),
                  timecodeText(timecodeAt(out - in, timebase)), std::to_string(timebase),
                  std::to_string(clip.aspectRatio), clip.moviePath, clip.thumbnailPath, clip.recapturedPath,
                  std::to_string(clip.movieFrames), std::to_string(clip.thumbnailFrames),
                  clip.marked ? "true" : "false", clip.recaptured ? "true" : "false"});
}

}  // namespace

CatalogueTape markedOf(const CatalogueTape& tape) {
  CatalogueTape marked = tape;
  for (CatalogueSequence& sequence : marked.sequences) {
    std::erase_if(sequence.clips, [](const CatalogueClip& clip) { return !clip.marked; });
  }
  std::erase_if(marked.sequences, [](const CatalogueSequence& sequence) { return sequence.clips.empty(); });
  return marked;
}

ExportedTape exportJson(const CatalogueTape& tape) {
  ExportedTape exported;
  exported.text = printedJson(tapeJson(tape));
  for (const CatalogueSequence& sequence : tape.sequences) {
    exported.clips += static_cast<std::int64_t>(sequence.clips.size());
  }
  return exported;
}

ExportedTape exportCsv(const CatalogueTape& tape) {
  std::string text = csvLine(kCsvColumns);
  ExportedTape exported = listClips(tape, [&](const CatalogueClip& clip, const CatalogueSequence& sequence) {
    text += csvRow(tape, sequence, clip);
    return std::string();
  });
  exported.text = std::move(text);
  return exported;
}

ExportedTape exportEdl(const CatalogueTape& tape, const std::string& reel) {
  int timebase = 0;
  std::vector<EdlEvent> events;
  ExportedTape exported = listClips(tape, [&](const CatalogueClip& clip, const CatalogueSequence&) {
    if (timebase == 0) timebase = clip.timebase;
    if (clip.timebase != timebase) {
      return fmt::format("it has {} frames per second, and the list is of {}", clip.timebase, timebase);
    }
    events.push_back({clip.name, *clip.startTimecode, *clip.endTimecode});
    return std::string();
  });
  exported.text = edlText(tape.name, reel, timebase == 0 ? 25 : timebase, events);
  return exported;
}

}  // namespace zq::host

#include "host/catalogue_command_json.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "capture/clip_info.h"
#include "host/text.h"

namespace zq::host {

using nlohmann::ordered_json;

ordered_json clipJson(const CatalogueClip& clip) {
  return {{kZQACClipId, std::to_string(clip.id)},
          {"name", clip.name},
          {kZQACClipRecordingDate, jsonOf(textOf(clip.recordingDate))},
          {kZQACClipStartTimecode, jsonOf(textOf(clip.startTimecode))},
          {kZQACClipEndTimecode, jsonOf(textOf(clip.endTimecode))},
          {kZQACClipDuration, jsonOf(textOf(clip.duration))},
          {kZQACClipAspectRatio, clip.aspectRatio},
          {"timebase", clip.timebase},
          {kZQACMoviePath, jsonOf(clip.moviePath)},
          {kZQACThumbnailsPath, jsonOf(clip.thumbnailPath)},
          {"recapturedPath", jsonOf(clip.recapturedPath)},
          {"movieFrames", clip.movieFrames},
          {"thumbnailFrames", clip.thumbnailFrames},
          {"marked", clip.marked},
          {"recaptured", clip.recaptured},
          {"trashed", clip.trashed}};
}

ordered_json sequenceJson(const CatalogueSequence& sequence) {
  ordered_json clips = ordered_json::array();
  for (const CatalogueClip& clip : sequence.clips) clips.push_back(clipJson(clip));
  return {{"sequenceId", std::to_string(sequence.id)}, {"name", sequence.name}, {"clips", std::move(clips)}};
}

ordered_json tapeJson(const CatalogueTape& tape) {
  ordered_json sequences = ordered_json::array();
  for (const CatalogueSequence& sequence : tape.sequences) sequences.push_back(sequenceJson(sequence));
  return {{"tape", tape.name}, {"sequences", std::move(sequences)}};
}

ordered_json idsJson(const std::vector<CatalogueClip>& clips) {
  ordered_json ids = ordered_json::array();
  for (const CatalogueClip& clip : clips) ids.push_back(std::to_string(clip.id));
  return ids;
}

std::string printedJson(const ordered_json& json) {
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace zq::host

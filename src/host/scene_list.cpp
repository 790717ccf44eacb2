#include "host/scene_list.h"

#include "capture/date_break.h"

namespace zq::host {

void SceneList::add(const FrameRecord& record) {
  if (scenes_.empty() || isDateBreak(currentDate_, record.recordingDate)) {
    scenes_.push_back({record.frame, 0, record.timecode, {}, nullptr, 0});
  }
  if (record.recordingDate) currentDate_ = record.recordingDate;
  TapeScene& scene = scenes_.back();
  ++scene.frames;
  scene.endTimecode = record.timecode;
  if (!scene.recordingDate) {
    scene.recordingDate = currentDate_;
    scene.aspectRatio = record.aspectRatio;
  }
}

}  // namespace zq::host

#include "host/frame_note.h"

#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"

namespace zq::host {

FrameNote noteOf(const SharedBytes& frame) {
  FrameNote note;
  note.bytes = frame.size();
  if (const auto timecode = firstTimecode(frame)) note.timecode = timecode->time;
  note.recordingDate = scanRecordingDate(frame).date;
  return note;
}

}  // namespace zq::host

#pragma once
// Catalogue records made to order: tapes of sequences of clips, as their first capture left them.

#include <cstddef>
#include <string>
#include <vector>

#include "catalogue/tape.h"
#include "support/capture_buffers.h"

namespace zq::test {

/// One clip. Its last frame is that of the end timecode.
struct ClipPlan {
  /// Of the first frame, as dateAt() takes it; later frames run on by the frame rate.
  int date = 0;
  /// Of the first frame, a count of frames.
  int timecode = 0;
  int frames = 250;
  bool recapture = true;
  DVSystem system = DVSystem::pal625_50;

  int lastTimecode() const { return timecode + frames - 1; }
};

inline constexpr char kRecaptureFolder[] = "/recaptures";

inline ClipRecord recordOf(const ClipPlan& plan) {
  ClipRecord record;
  record.startDate = dateValueAt(plan.date);
  record.startTimecode = valueWithSMPTETime(timecodeAtFrame(plan.system, plan.timecode));
  record.endTimecode = valueWithSMPTETime(timecodeAtFrame(plan.system, plan.lastTimecode()));
  record.duration = valueWithSMPTETime(timecodeAtFrame(plan.system, plan.frames - 1));
  record.recapture = plan.recapture;
  record.timebase = timebaseOf(plan.system);
  record.recapturePath = kRecaptureFolder;
  return record;
}

/// Its clips are named by the sequence's id and their place in it, from "1-1" on.
inline SequenceValue makeSequence(const std::string& id, const std::vector<ClipPlan>& plans) {
  std::vector<ClipValue> clips;
  for (std::size_t i = 0; i < plans.size(); ++i) {
    ClipRecord record = recordOf(plans[i]);
    record.clipId = id + "-" + std::to_string(i + 1);
    record.index = static_cast<std::int32_t>(i);
    clips.push_back(std::make_shared<ZQACClip>(std::move(record)));
  }
  return std::make_shared<ZQACSequence>(id, "Sequence " + id, std::move(clips), dateValueAt(36000));
}

/// Its sequences are named by their places on the tape, from "1" on.
inline TapeValue makeTape(const std::vector<std::vector<ClipPlan>>& sequences) {
  std::vector<SequenceValue> made;
  for (const auto& plans : sequences) made.push_back(makeSequence(std::to_string(made.size() + 1), plans));
  return std::make_shared<ZQACTape>(7, "Holiday", std::move(made));
}

inline ClipValue clipOf(const TapeValue& tape, std::size_t sequence, std::size_t clip) {
  return tape->allSequences().at(sequence)->allClips().at(clip);
}

}  // namespace zq::test

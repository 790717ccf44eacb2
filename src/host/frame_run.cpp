#include "host/frame_run.h"

#include <optional>
#include <utility>

#include "dv/dif_sequence.h"
#include "dv/dv_system.h"
#include "dv/frame_header.h"
#include "dv/frame_timecode.h"

namespace zq::host {

using backend::FrameLocation;
using backend::SparseFrame;

namespace {

/// Whether the frame's own header says that it is one, of this system.
bool isRegular(const SparseFrame& sparse, DVSystem system) {
  const auto bytes = sparse.bytes().bytes();
  return looksLikeFrameHeader(bytes) && systemOfHeader(bytes) == system;
}

/// The aspect ratio that sequence `index` says; the date scan keeps that of the last sequence it decodes.
std::int32_t aspectRatioOf(const SharedBytes& frame, std::uint32_t index) {
  DVDifSequence sequence(frame, index);
  sequence.decodeSequenceBasics();
  sequence.decodeVauxSection();
  return sequence.aspectRatio();
}

/// The record of the frame that `sparse` has begun. VAUX blocks are read of the one sequence only whose aspect ratio
/// counts.
Status describe(SparseFrame& sparse, FrameRecord& record) {
  Status status;
  std::uint32_t last = 0;
  const auto need = [&](std::uint32_t sequence) {
    last = sequence;
    if (Status read = sparse.needSequence(sequence); !read.ok()) status = read;
  };
  const RecordingDateScan scan = scanRecordingDate(sparse.bytes(), nullptr, need);
  record.recordingDate = scan.date;
  // A sequence that ran out of range was not decoded; the one before it counts.
  const bool anyDecoded = !scan.outOfRange || last > 0;
  if (anyDecoded) {
    const std::uint32_t decoded = scan.outOfRange ? last - 1 : last;
    if (Status read = sparse.needVaux(decoded); !read.ok()) status = read;
    record.aspectRatio = aspectRatioOf(sparse.bytes(), decoded);
  }
  const std::optional<SubcodeTimecode> timecode = firstTimecode(sparse.bytes(), need);
  if (timecode) record.timecode = timecode->time;
  record.facts = factsOf(record.frame, timecode.has_value(), scan, sparse.bytes());
  return status;
}

}  // namespace

FrameLocation placeAfter(const FrameLocation& first, std::int64_t frames) {
  return {first.frame + frames, first.offset + static_cast<std::uint64_t>(frames) * frameSizeOf(first.system),
          first.system};
}

void readRun(SparseFrame& sparse, FrameRun& run) {
  run.records.reserve(static_cast<std::size_t>(run.wanted));
  FrameLocation location = run.first;
  for (std::int64_t i = 0; i < run.wanted; ++i) {
    run.status = sparse.begin(location.offset, location.system);
    if (!run.status.ok()) return;
    const bool known = i == 0 && run.firstIsKnown;
    if (!known && !isRegular(sparse, location.system)) return;
    FrameRecord record;
    record.frame = location.frame;
    record.offset = location.offset;
    record.system = location.system;
    run.status = describe(sparse, record);
    if (!run.status.ok()) return;
    run.records.push_back(std::move(record));
    location = placeAfter(location, 1);
  }
  run.status = sparse.checkFile();
}

}  // namespace zq::host

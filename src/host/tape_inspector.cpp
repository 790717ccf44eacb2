#include "host/tape_inspector.h"

#include <algorithm>
#include <utility>

#include "backends/deck/sparse_frame.h"
#include "dv/dif_sequence.h"
#include "dv/dv_system.h"
#include "dv/frame_header.h"
#include "dv/frame_timecode.h"

namespace zq::host {

using backend::FrameIndex;
using backend::FrameLocation;
using backend::SparseFrame;
using backend::TapeFile;

namespace {

// Frames that a thread reads in one go. Long goes keep both threads busy; after a guess went wrong they are short, so
// that little is read in vain on a tape with many damaged headers.
constexpr std::int64_t kFirstGo = 8192;
constexpr std::int64_t kLongestGo = 16384;
constexpr std::int64_t kShortestGo = 128;

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

FrameLocation placeOf(const FrameRecord& record) {
  return {record.frame, record.offset, record.system};
}

FrameLocation placeAfter(const FrameLocation& first, std::int64_t frames) {
  return {first.frame + frames, first.offset + static_cast<std::uint64_t>(frames) * frameSizeOf(first.system),
          first.system};
}

}  // namespace

Expected<std::unique_ptr<TapeInspector>> TapeInspector::open(const std::string& path, platform::Runtime& runtime) {
  auto tape = backend::openTape(path);
  if (!tape.ok()) return tape.error();
  backend::OpenTape& opened = tape.value();
  return std::unique_ptr<TapeInspector>(new TapeInspector(opened.file, std::move(opened.index), opened.first, runtime));
}

TapeInspector::TapeInspector(std::shared_ptr<TapeFile> file, FrameIndex index, FrameLocation first,
                             platform::Runtime& runtime)
    : file_(std::move(file)),
      sameFile_(file_->openedAgain()),
      index_(std::move(index)),
      first_(first),
      runtime_(runtime) {}

std::int64_t TapeInspector::wholeFramesFrom(const FrameLocation& location) const {
  return static_cast<std::int64_t>((file_->size() - location.offset) / frameSizeOf(location.system));
}

// Where frames lie is found from frame to frame, so it cannot be known ahead. It is guessed: from a known frame on, all
// are of its system. Two threads read on under that guess; each stops before the first frame whose header does not bear
// it out, and from there on the index decides again.
Status TapeInspector::run(const Formatter& format, const Taker& take) {
  std::optional<FrameLocation> here = first_;
  std::int64_t go = kFirstGo;
  while (here) {
    const std::int64_t rest = wholeFramesFrom(*here);
    const std::int64_t share = std::min(go, (rest + 1) / 2);
    Chunk one{*here, true, share, {}, {}, {}};
    Chunk other{placeAfter(*here, one.wanted), false, std::min(rest - one.wanted, share), {}, {}, {}};
    readChunks(one, other, format);
    go = one.isComplete() && other.isComplete() ? std::min(go * 2, kLongestGo) : kShortestGo;
    std::vector<Chunk*> chunks{&one};
    if (one.isComplete() && !other.records.empty()) chunks.push_back(&other);
    if (Status status = dropWrongLast(chunks, format); !status.ok()) return status;
    FrameLocation last = *here;
    for (const Chunk* chunk : chunks) {
      if (!chunk->records.empty()) {
        take(chunk->records, chunk->formatted);
        last = placeOf(chunk->records.back());
      }
      if (!chunk->status.ok()) return chunk->status;
    }
    auto next = index_.following(last);
    if (!next.ok()) return next.error();
    here = next.value();
    if (!here) trailingBytes_ = file_->size() - last.end();
  }
  return {};
}

// The header of each frame bore out the frame before it. The last has none behind it, so the index is asked.
Status TapeInspector::dropWrongLast(std::vector<Chunk*>& chunks, const Formatter& format) const {
  std::vector<FrameRecord>& records = chunks.back()->records;
  if (records.empty() || (records.size() == 1 && chunks.size() == 1)) return {};
  const FrameRecord& before = records.size() > 1 ? records[records.size() - 2] : chunks.front()->records.back();
  auto placed = index_.following(placeOf(before));
  if (!placed.ok()) return placed.error();
  if (placed.value() && placed.value()->system == records.back().system) return {};
  records.pop_back();
  chunks.back()->formatted = format(records);
  return {};
}

void TapeInspector::readChunks(Chunk& one, Chunk& other, const Formatter& format) {
  if (other.wanted == 0) return readChunk(*file_, one, format);
  const TapeFile& beside = sameFile_ ? *sameFile_ : *file_;
  const auto thread = runtime_.startThread("inspector", [&] { readChunk(beside, other, format); });
  readChunk(*file_, one, format);
  thread->join();
}

void TapeInspector::readChunk(const TapeFile& file, Chunk& chunk, const Formatter& format) {
  SparseFrame sparse(file);
  chunk.records.reserve(static_cast<std::size_t>(chunk.wanted));
  FrameLocation location = chunk.first;
  for (std::int64_t i = 0; i < chunk.wanted; ++i) {
    chunk.status = sparse.begin(location.offset, location.system);
    if (!chunk.status.ok()) break;
    const bool known = i == 0 && chunk.firstIsKnown;
    if (!known && !isRegular(sparse, location.system)) break;
    FrameRecord record;
    record.frame = location.frame;
    record.offset = location.offset;
    record.system = location.system;
    chunk.status = describe(sparse, record);
    if (!chunk.status.ok()) break;
    chunk.records.push_back(std::move(record));
    location = {location.frame + 1, location.end(), location.system};
  }
  chunk.formatted = format(chunk.records);
}

}  // namespace zq::host

#include "host/inspection_go.h"

#include <algorithm>

#include "backends/deck/sparse_frame.h"

namespace zq::host {

using backend::FrameIndex;
using backend::FrameLocation;

namespace {

// Frames of a piece, which one thread reads: so few that the threads end at about the same time, whichever of them the
// system holds up, and that memory is used again while it is in the processor's cache.
constexpr std::int64_t kPiece = 224;

/// At least one piece, be it empty.
std::size_t piecesOf(std::int64_t frames, std::int64_t length) {
  return static_cast<std::size_t>(std::max<std::int64_t>(1, (frames + length - 1) / length));
}

FrameLocation placeOf(const FrameRecord& record) {
  return {record.frame, record.offset, record.system};
}

}  // namespace

InspectionGo::InspectionGo(const FrameLocation& first, std::int64_t frames, const FrameFormatter& format,
                           const FrameTaker& take)
    : format_(format),
      take_(take),
      pieces_(piecesOf(frames, std::clamp<std::int64_t>((frames + 1) / 2, 1, kPiece))),
      last_(first) {
  const std::int64_t length = std::clamp<std::int64_t>((frames + 1) / 2, 1, kPiece);
  std::int64_t done = 0;
  for (Piece& piece : pieces_) {
    piece.run.first = placeAfter(first, done);
    piece.run.firstIsKnown = done == 0;
    piece.run.wanted = std::min(length, frames - done);
    done += piece.run.wanted;
  }
}

// Pieces are begun in their order, so all before a wrong one are read to their end.
void InspectionGo::read(const backend::TapeFile& file, const std::function<void()>& afterEach) {
  backend::SparseFrame sparse(file);
  while (!isWrong_) {
    const std::size_t index = next_++;
    if (index >= pieces_.size()) return;
    Piece& piece = pieces_[index];
    readRun(sparse, piece.run);
    piece.formatted = format_(piece.run.records);
    if (!piece.run.isComplete()) isWrong_ = true;
    piece.isRead = true;
    afterEach();
  }
}

void InspectionGo::takeReady() {
  while (taken_ + 1 < pieces_.size() && pieces_[taken_].isRead && pieces_[taken_ + 1].isRead) {
    Piece& piece = pieces_[taken_];
    const bool isBorneOut = piece.run.isComplete() && !pieces_[taken_ + 1].run.records.empty();
    if (!isBorneOut || !piece.run.status.ok()) return;
    take(piece);
  }
}

void InspectionGo::take(Piece& piece) {
  ++taken_;
  if (piece.run.records.empty()) return;
  take_(piece.run.records, piece.formatted);
  last_ = placeOf(piece.run.records.back());
  piece.run.records = {};
  piece.formatted = {};
}

// What is left is one piece: the last of all, or the first behind which nothing is borne out.
Status InspectionGo::takeRest(const FrameIndex& index) {
  takeReady();
  Piece& piece = pieces_[taken_];
  guessHeld_ = taken_ + 1 == pieces_.size() && piece.run.isComplete();
  const Status placed = dropWrongLast(index);
  const Status status = piece.run.status.ok() ? placed : piece.run.status;
  take(piece);
  return status;
}

Status InspectionGo::dropWrongLast(const FrameIndex& index) {
  Piece& piece = pieces_[taken_];
  std::vector<FrameRecord>& records = piece.run.records;
  if (records.empty() || (records.size() == 1 && taken_ == 0)) return {};
  auto placed = index.following(records.size() > 1 ? placeOf(records[records.size() - 2]) : last_);
  if (placed.ok() && placed.value() && placed.value()->system == records.back().system) return {};
  records.pop_back();
  piece.formatted = format_(records);
  return placed.ok() ? Status() : placed.error();
}

}  // namespace zq::host

#include "host/tape_findings.h"

#include <fmt/format.h>

#include "dv/frame_header.h"

namespace zq::host {

FrameFacts factsOf(std::int64_t frame, bool hasTimecode, const RecordingDateScan& scan, const SharedBytes& bytes) {
  FrameFacts facts;
  facts.frame = frame;
  facts.hasTimecode = hasTimecode;
  facts.hasDate = scan.date != nullptr;
  facts.impossibleDate = scan.captureDateTime && !isPossibleDate(*scan.captureDateTime);
  facts.outOfRange = scan.outOfRange;
  facts.badHeader = !looksLikeFrameHeader(bytes.bytes());
  return facts;
}

void TapeFindings::Count::add(std::int64_t frame) {
  if (frames++ == 0) first = frame;
}

void TapeFindings::add(const FrameFacts& facts) {
  ++frames_;
  if (!facts.hasDate) undated_.add(facts.frame);
  if (!facts.hasTimecode) untimed_.add(facts.frame);
  if (facts.impossibleDate) impossible_.add(facts.frame);
  if (facts.outOfRange) outOfRange_.add(facts.frame);
  if (facts.badHeader) badHeader_.add(facts.frame);
}

std::string TapeFindings::line(const Count& count, const std::string& what) const {
  return fmt::format("{} of {} frames {} (first: frame {})", count.frames, frames_, what, count.first);
}

std::vector<std::string> TapeFindings::lines() const {
  std::vector<std::string> lines;
  if (badHeader_.frames > 0)
    lines.push_back(line(badHeader_, "do not begin as DV frames do, they are damaged or blank"));
  if (undated_.frames > 0) {
    lines.push_back(line(undated_, "carry no recording date; scenes cannot be cut there"));
  }
  if (impossible_.frames > 0) {
    lines.push_back(line(impossible_, "carry an impossible recording date, as a camcorder whose clock was never set"));
  }
  if (untimed_.frames > 0) lines.push_back(line(untimed_, "carry no timecode"));
  if (outOfRange_.frames > 0) {
    lines.push_back(line(outOfRange_, "point past their own end and were read as undated"));
  }
  if (trailingBytes_ > 0) {
    lines.push_back(fmt::format("the tape ends inside a frame: {} bytes after frame {} were left out", trailingBytes_,
                                frames_ - 1));
  }
  return lines;
}

}  // namespace zq::host

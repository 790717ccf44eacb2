#include "backends/media/movie_text.h"

#include <fmt/format.h>

#include "dv/recording_date_scan.h"
#include "timecode/timecode_text.h"

namespace zq::media {
namespace {

bool within(int value, int limit) {
  return value >= 0 && value < limit;
}

bool isClockTime(const SMPTETime& time, DVSystem system) {
  return within(time.mHours, 24) && within(time.mMinutes, 60) && within(time.mSeconds, 60) &&
         within(time.mFrames, timebaseOf(system));
}

/// Drop-frame counting leaves out the first two numbers of every minute but each tenth.
bool isDroppedNumber(const SMPTETime& time) {
  return time.mFrames < 2 && time.mSeconds == 0 && time.mMinutes % 10 != 0;
}

}  // namespace

std::string movieTimecode(const platform::QTSampleBuffer& frame, DVSystem system) {
  if (!frame.smpteTime || !isClockTime(*frame.smpteTime, system)) return {};
  std::string text = timecodeText(*frame.smpteTime);
  const bool dropFrame = frame.dropFrame && system == DVSystem::ntsc525_60;
  if (!dropFrame) return text;
  if (isDroppedNumber(*frame.smpteTime)) return {};
  text[text.rfind(':')] = ';';
  return text;
}

DateValue movieDate(const SharedBytes& frame) {
  const RecordingDateScan scan = scanRecordingDate(frame);
  return scan.captureDateTime && isPossibleDate(*scan.captureDateTime) ? scan.date : nullptr;
}

Error wrongFrameSize(const std::string& path, std::size_t size) {
  return Error{
      fmt::format("\"{}\" cannot take a frame of {} bytes", path, size),
      "A file holds DV frames of one system, of 120000 or 144000 bytes. Record what follows into another file."};
}

}  // namespace zq::media

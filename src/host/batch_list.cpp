#include "host/batch_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "host/batch_list_text.h"
#include "host/edl.h"
#include "timecode/timecode_text.h"
#include "timecode/timecode_utils.h"

namespace zq::host {
namespace {

constexpr int kPalTimebase = 25;
constexpr int kNtscTimebase = 30;

/// The last frame of a tape that is full to the end of the day is followed by this.
bool isEndOfDay(const SMPTETime& time) {
  return time.mHours == 24 && time.mMinutes == 0 && time.mSeconds == 0 && time.mFrames == 0;
}

bool isOnClock(const SMPTETime& time, int timebase) {
  return time.mHours <= 23 && time.mMinutes <= 59 && time.mSeconds <= 59 && time.mFrames < timebase;
}

std::string noSuchTimecode(const char* column, const SMPTETime& time, int timebase) {
  return fmt::format("there is no timecode {} (\"{}\") at {} frames per second", timecodeText(time), column, timebase);
}

/// What is wrong with a row; "" when nothing is.
std::string wrongIn(const BatchRow& row, int timebase) {
  if (row.tape.empty()) return "no tape is named";
  if (std::ranges::any_of(row.tape, [](unsigned char c) { return c < ' ' || c == 0x7F; })) {
    return "the tape's name has a line end or a control character in it";
  }
  if (!isOnClock(row.in, timebase)) return noSuchTimecode("in", row.in, timebase);
  if (!isOnClock(row.out, timebase) && !isEndOfDay(row.out)) return noSuchTimecode("out", row.out, timebase);
  if (ZQACTimecodeUtils::timecodeCompareWith(row.out, row.in) <= 0) {
    return fmt::format("out {} is not after in {}", timecodeText(row.out), timecodeText(row.in));
  }
  return "";
}

bool hasNtscFrames(const BatchRow& row) {
  const auto isNtscFrame = [](int frame) { return frame >= kPalTimebase && frame < kNtscTimebase; };
  return !row.timebase && (isNtscFrame(row.in.mFrames) || isNtscFrame(row.out.mFrames));
}

}  // namespace

SMPTETime BatchRow::last(int framesPerSecond) const {
  // Of each minute but the tenth, drop frame has no frames 0 and 1.
  const bool afterDropped =
      dropFrame && framesPerSecond == kNtscTimebase && out.mFrames == 2 && out.mSeconds == 0 && out.mMinutes % 10 != 0;
  return timecodeAt(framesTo(out, framesPerSecond) - (afterDropped ? 3 : 1), framesPerSecond);
}

ListKind listKindOf(const std::string& path, std::string_view text) {
  const std::string_view content = trimmed(text);
  if (content.starts_with("{")) return ListKind::json;
  if (looksLikeEdl(content)) return ListKind::edl;
  const std::string extension = lowered(std::filesystem::path(path).extension().string());
  if (extension == ".json") return ListKind::json;
  return extension == ".edl" ? ListKind::edl : ListKind::csv;
}

std::string readTimecode(const char* column, std::string_view text, SMPTETime& timecode) {
  const auto read = timecodeOf(trimmed(text));
  if (!read) return fmt::format("{} \"{}\" is not a timecode HH:MM:SS:FF", column, trimmed(text));
  timecode = *read;
  return "";
}

void settleRows(BatchList& list, bool saysThirty) {
  list.timebase = saysThirty || std::ranges::any_of(list.rows, hasNtscFrames) ? kNtscTimebase : kPalTimebase;
  std::vector<BatchRow> good;
  for (BatchRow& row : list.rows) {
    std::string reason = wrongIn(row, row.timebase.value_or(list.timebase));
    if (reason.empty()) {
      good.push_back(std::move(row));
    } else {
      list.bad.push_back({row.line, std::move(reason)});
    }
  }
  list.rows = std::move(good);
  std::ranges::stable_sort(list.bad, {}, &ListRemark::line);
}

}  // namespace zq::host

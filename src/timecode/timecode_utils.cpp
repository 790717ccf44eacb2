#include "timecode/timecode_utils.h"

#include <array>
#include <limits>
#include <stdexcept>

namespace zq {
namespace {

constexpr std::string_view kSeparators = ":.";

/// Keeps the low 16 bits, as the fields do.
constexpr std::int16_t field(std::int64_t value) {
  return static_cast<std::int16_t>(value);
}

SMPTETime recordOf(const TimecodeValue& value) {
  return value ? *value : nullTimecode;
}

int timebaseOr(int timebase, const SMPTETime& timecode) {
  return timebase != 0 ? timebase : ZQACTimecodeUtils::maxFrameForTimecode(timecode);
}

// Hours are not wrapped at 24: a tape position may pass midnight.
void carryOneSecond(SMPTETime& timecode) {
  timecode.mSeconds = field(timecode.mSeconds + 1);
  if (timecode.mSeconds <= 59) return;
  timecode.mSeconds = 0;
  timecode.mMinutes = field(timecode.mMinutes + 1);
  if (timecode.mMinutes <= 59) return;
  timecode.mMinutes = 0;
  timecode.mHours = field(timecode.mHours + 1);
}

void borrowOneSecond(SMPTETime& timecode) {
  timecode.mSeconds = field(timecode.mSeconds - 1);
  if (timecode.mSeconds >= 0) return;
  timecode.mSeconds = 59;
  timecode.mMinutes = field(timecode.mMinutes - 1);
  if (timecode.mMinutes >= 0) return;
  timecode.mMinutes = 59;
  timecode.mHours = field(timecode.mHours - 1);
}

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Leading white space, a sign and digits; 0 when there are none; saturates at the limits of an int.
int lenientInteger(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && isBlank(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

  constexpr std::int64_t kMax = std::numeric_limits<int>::max();
  const std::int64_t limit = negative ? kMax + 1 : kMax;
  std::int64_t value = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > limit) value = limit;
  }
  return static_cast<int>(negative ? -value : value);
}

/// The part up to the next separator, taken off the front of `rest`. `more` turns false with the last one.
std::string_view takeComponent(std::string_view& rest, bool& more) {
  const std::size_t end = rest.find_first_of(kSeparators);
  more = end != std::string_view::npos;
  const std::string_view component = rest.substr(0, end);
  rest = more ? rest.substr(end + 1) : std::string_view();
  return component;
}

}  // namespace

int ZQACTimecodeUtils::maxFrameForTimecode(const SMPTETime& timecode) {
  switch (timecode.mType) {
    case 0:
      return 24;
    case 1:
      return 25;
    case 6:
    case 7:
      return 60;
    default:
      return 30;
  }
}

int ZQACTimecodeUtils::timecodeCompareWith(const SMPTETime& a, const SMPTETime& b) {
  if (a.mHours != b.mHours) return a.mHours > b.mHours ? 1 : -1;
  if (a.mMinutes != b.mMinutes) return a.mMinutes > b.mMinutes ? 1 : -1;
  if (a.mSeconds != b.mSeconds) return a.mSeconds > b.mSeconds ? 1 : -1;
  if (a.mFrames != b.mFrames) return a.mFrames > b.mFrames ? 1 : -1;
  return 0;
}

SMPTETime ZQACTimecodeUtils::addNbFrameToTimecode(int frameCount, const SMPTETime& timecode) {
  const int max = maxFrameForTimecode(timecode);
  SMPTETime moved = timecode;
  std::int16_t frames = field(std::int64_t{timecode.mFrames} + frameCount);

  if (frames < 0) {
    // Up to max, not up to 0: one second more is borrowed than needed, and the frames hold it. Intended; the frame
    // count is right, and comparisons are tuned to this form.
    do {
      frames = field(frames + max);
      borrowOneSecond(moved);
    } while (frames < max);
  } else {
    while (frames >= max) {
      frames = field(frames - max);
      carryOneSecond(moved);
    }
  }

  moved.mFrames = frames;
  return moved;
}

TimecodeValue ZQACTimecodeUtils::generateTimecodeValueWithHourMinuteSecondFrame(std::int16_t hour, std::int16_t minute,
                                                                                std::int16_t second,
                                                                                std::int16_t frame) {
  SMPTETime timecode;
  timecode.mHours = hour;
  timecode.mMinutes = minute;
  timecode.mSeconds = second;
  timecode.mFrames = frame;
  return valueWithSMPTETime(timecode);
}

TimecodeValue ZQACTimecodeUtils::generateTimecodeValueWithTimecodeString(std::string_view text) {
  std::array<std::int16_t, 4> numbers{};
  bool more = true;
  for (std::int16_t& number : numbers) {
    if (!more) throw std::out_of_range("a timecode has four components");
    number = field(lenientInteger(takeComponent(text, more)));
  }
  return generateTimecodeValueWithHourMinuteSecondFrame(numbers[0], numbers[1], numbers[2], numbers[3]);
}

TimecodeValue ZQACTimecodeUtils::addTimecodeToTimecodeWithTimebase(const TimecodeValue& a, const TimecodeValue& b,
                                                                   int timebase) {
  const SMPTETime first = recordOf(a);
  const SMPTETime second = recordOf(b);
  std::int16_t hours = field(first.mHours + second.mHours);
  std::int16_t minutes = field(first.mMinutes + second.mMinutes);
  std::int16_t seconds = field(first.mSeconds + second.mSeconds);
  const std::int16_t frames = field(first.mFrames + second.mFrames);

  // The frames carry without being reduced, and 60 seconds or minutes are left standing. Intended; the durations of
  // the catalogue are sums made this way and are compared with one another.
  if (frames > timebaseOr(timebase, first)) seconds = field(seconds + 1);
  if (seconds > 60) {
    seconds = field(seconds - 60);
    minutes = field(minutes + 1);
  }
  if (minutes > 60) {
    minutes = field(minutes - 60);
    hours = field(hours + 1);
  }
  return generateTimecodeValueWithHourMinuteSecondFrame(hours, minutes, seconds, frames);
}

TimecodeValue ZQACTimecodeUtils::subTimecodeFromTimecodeWithTimebase(const TimecodeValue& a, const TimecodeValue& b,
                                                                     int timebase) {
  const SMPTETime subtrahend = recordOf(a);
  const SMPTETime minuend = recordOf(b);
  std::int16_t hours = field(minuend.mHours - subtrahend.mHours);
  std::int16_t minutes = field(minuend.mMinutes - subtrahend.mMinutes);
  std::int16_t seconds = field(minuend.mSeconds - subtrahend.mSeconds);
  std::int16_t frames = field(minuend.mFrames - subtrahend.mFrames);

  if (frames < 0) {
    frames = field(std::int64_t{frames} + timebaseOr(timebase, subtrahend));
    seconds = field(seconds - 1);
  }
  if (seconds < 0) {
    seconds = field(seconds + 60);
    minutes = field(minutes - 1);
  }
  if (minutes < 0) {
    minutes = field(minutes + 60);
    hours = field(hours - 1);
  }
  return generateTimecodeValueWithHourMinuteSecondFrame(hours, minutes, seconds, frames);
}

int ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(const TimecodeValue& timecode, int timebase) {
  const SMPTETime time = recordOf(timecode);
  const std::int64_t seconds = std::int64_t{time.mHours} * 3600 + std::int64_t{time.mMinutes} * 60 + time.mSeconds;
  return static_cast<int>(time.mFrames + seconds * timebaseOr(timebase, time));
}

}  // namespace zq

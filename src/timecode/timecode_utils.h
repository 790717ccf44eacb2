#pragma once
// Arithmetic on SMPTE timecodes, in 16-bit signed fields. There is no drop-frame arithmetic: a 525/60 second counts 30
// whole frames.

#include <cstdint>
#include <string_view>

#include "timecode/smpte_time.h"

namespace zq {

/// Stateless. No operation checks ranges: odd input flows through. Every boxed value made here has zero in all fields
/// but the four time fields, so its `mType` counts 24 frames; pass a timebase where that matters.
class ZQACTimecodeUtils {
 public:
  ZQACTimecodeUtils() = delete;

  /// Frames per second of the record's `mType`.
  static int maxFrameForTimecode(const SMPTETime& timecode);

  /// 1 when `a` is later, -1 when earlier, 0 when hours, minutes, seconds and frames are equal.
  static int timecodeCompareWith(const SMPTETime& a, const SMPTETime& b);

  /// `timecode` moved by `frameCount` frames. A negative move that crosses a second returns frames between max and
  /// 2 x max - 1 with one second more borrowed; the frame count is right.
  static SMPTETime addNbFrameToTimecode(int frameCount, const SMPTETime& timecode);

  static TimecodeValue generateTimecodeValueWithHourMinuteSecondFrame(std::int16_t hour, std::int16_t minute,
                                                                      std::int16_t second, std::int16_t frame);

  /// From four numbers separated by ":" or "."; text that is no number counts 0, further components are ignored. Throws
  /// std::out_of_range when there are fewer than four.
  static TimecodeValue generateTimecodeValueWithTimecodeString(std::string_view text);

  /// `a` + `b`, field by field. The frames of the result are the plain sum. Null counts as zero; timebase 0 means that
  /// of `a`.
  static TimecodeValue addTimecodeToTimecodeWithTimebase(const TimecodeValue& a, const TimecodeValue& b, int timebase);

  /// `b` - `a`, with one borrow a field. Null counts as zero; timebase 0 means that of `a`.
  static TimecodeValue subTimecodeFromTimecodeWithTimebase(const TimecodeValue& a, const TimecodeValue& b,
                                                           int timebase);

  /// Frames since 00:00:00:00, wrapping at 32 bits. Null counts as zero; timebase 0 means that of the timecode.
  static int timecodeValueAsFramesWithTimebase(const TimecodeValue& timecode, int timebase);
};

}  // namespace zq

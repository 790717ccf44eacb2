#pragma once
// Makes the sample buffer of a frame: its timecode, and how it follows the frame before it.

#include <cstdint>
#include <optional>

#include "dv/dv_system.h"
#include "platform/sample_buffer.h"

namespace zq::backend {

/// Delivery thread only.
class SampleAttributes {
 public:
  platform::QTSampleBuffer next(const platform::QTFormatDescription& format, const SharedBytes& frame);

 private:
  platform::SceneChangeType sceneChange(std::size_t frameSize, const platform::QTSampleBuffer& buffer) const;

  std::size_t previousSize_ = 0;
  /// The last timecode that a frame carried, and how many frames came since.
  TimecodeValue knownTimecode_;
  std::int64_t framesSinceKnown_ = 0;
};

/// Whether `later` counts `frames` frames after `earlier`, in plain or, at 30 frames per second, drop-frame counting. A
/// count that starts again at midnight does not follow: its numbers go back.
bool timecodeFollows(const SMPTETime& earlier, const SMPTETime& later, std::int64_t frames);

}  // namespace zq::backend

#pragma once
// What the session's outputs have in common, seen from the session.

#include "platform/sample_buffer.h"

namespace zq::backend {

class FrameConsumer {
 public:
  virtual ~FrameConsumer() = default;
  /// Delivery thread. `sourceCanWait`: holding the delivery up loses nothing.
  virtual void consume(const platform::QTSampleBuffer& frame, bool sourceCanWait) = 0;
};

}  // namespace zq::backend

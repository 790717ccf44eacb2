#pragma once
// Which codecs this machine can encode with.

#include <map>
#include <string>

#include "backends/media/compression_settings.h"
#include "base/status.h"

namespace zq::media {

/// Tries each codec once, with small pictures, when it is first asked for.
class EncoderCheck {
 public:
  /// Why `settings` cannot be used here, or nothing.
  Status check(const CompressionSettings& settings);

 private:
  std::map<std::string, Status> results_;
};

}  // namespace zq::media

#pragma once
// How a movie's pictures are written.

#include <string>

namespace zq::platform {

/// One choice; identity matters, so each is made once and shared.
class QTCompressionOptions {
 public:
  virtual ~QTCompressionOptions() = default;
  virtual std::string localizedDisplayName() const = 0;
};

}  // namespace zq::platform

#pragma once
// The pseudo-choice of writing the movie as received.

#include <memory>
#include <string>

#include "platform/compression.h"

namespace zq {

class QTNoCompressionOptions : public platform::QTCompressionOptions {
 public:
  /// The one instance of it.
  static const std::shared_ptr<const QTNoCompressionOptions>& noCompressionOptions();
  std::string localizedDisplayName() const override { return "None"; }
};

}  // namespace zq

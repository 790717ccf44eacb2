#include "capture/compression_options.h"

namespace zq {

const std::shared_ptr<const QTNoCompressionOptions>& QTNoCompressionOptions::noCompressionOptions() {
  static const std::shared_ptr<const QTNoCompressionOptions> instance = std::make_shared<QTNoCompressionOptions>();
  return instance;
}

}  // namespace zq

#include "capture/compression_options.h"

namespace zq {

const std::shared_ptr<const QTNoCompressionOptions>& QTNoCompressionOptions::noCompressionOptions() {
  static const auto instance = std::make_shared<const QTNoCompressionOptions>();
  return instance;
}

const std::shared_ptr<const QTCustomCompressionOptions>& QTCustomCompressionOptions::customCompressionOptions() {
  static const auto instance = std::make_shared<const QTCustomCompressionOptions>();
  return instance;
}

bool isNoCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options) {
  return dynamic_cast<const QTNoCompressionOptions*>(options.get()) != nullptr;
}

}  // namespace zq

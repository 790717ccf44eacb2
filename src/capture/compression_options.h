#pragma once
// The two choices of compression that are not the platform's presets.

#include <memory>
#include <string>

#include "platform/compression.h"

namespace zq {

/// The movie is written as received.
class QTNoCompressionOptions : public platform::QTCompressionOptions {
 public:
  /// The one instance of it.
  static const std::shared_ptr<const QTNoCompressionOptions>& noCompressionOptions();
  std::string localizedDisplayName() const override { return "None"; }
};

/// The user's own settings, which are made into options for the output each time they are applied.
class QTCustomCompressionOptions : public platform::QTCompressionOptions {
 public:
  /// The one instance of it.
  static const std::shared_ptr<const QTCustomCompressionOptions>& customCompressionOptions();
  std::string localizedDisplayName() const override { return "Custom..."; }
};

/// Whether movies are written as received with these; also true of another object of that kind.
bool isNoCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options);

}  // namespace zq

#pragma once
// The compressions that movies can be written with here.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "backends/media/compression_presets.h"
#include "backends/media/standard_compression.h"
#include "base/log.h"
#include "platform/compression.h"

namespace zq::media {

class CompressionPlatform : public platform::CompressionPlatform {
 public:
  /// `log` outlives this and what it makes. `ask` stands for the dialog; without it settings stay as they are.
  explicit CompressionPlatform(Log& log, AskForCompression ask = {});

  std::vector<std::string> compressionOptionsIdentifiersForMediaType(const std::string& mediaType) override;
  std::shared_ptr<const platform::QTCompressionOptions> compressionOptionsWithIdentifier(
      const std::string& identifier) override;
  std::unique_ptr<platform::StandardCompression> openDefaultComponent(platform::FourCharCode type,
                                                                      platform::FourCharCode subType) override;
  /// The session options say the codec too; when they differ from `codecType`, they hold. Null, with an error in the
  /// log, when there is no such codec or no picture can have this size.
  std::shared_ptr<const platform::QTCompressionOptions> videoCompressionOptions(
      platform::FourCharCode codecType, int sizeMode, int width, int height,
      std::shared_ptr<platform::ICMCompressionSessionOptions> compressionSessionOptions) override;

 private:
  Log& log_;
  const AskForCompression ask_;
  std::map<std::string, std::shared_ptr<const platform::QTCompressionOptions>> presets_;
};

}  // namespace zq::media

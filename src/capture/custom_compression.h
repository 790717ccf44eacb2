#pragma once
// The user's own compression settings: asked for, kept in the settings store, and made into options for the output.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "platform/compression.h"
#include "platform/settings.h"

namespace zq {

struct FrameSize {
  int width = 0;
  int height = 0;
  bool operator==(const FrameSize&) const = default;
};

/// The size of custom compression's pictures; 0 x 0 for a tag that is none, which keeps the tape's.
FrameSize fitSize(int tag);

/// Main thread only.
class CustomCompression {
 public:
  using Data = std::vector<std::uint8_t>;

  CustomCompression(platform::CompressionPlatform& platform, platform::Settings& store, Log& log);

  /// The standard compression service's options for these settings: `atomData`, or else what is stored under
  /// `autosaveName`, which the user is then shown and may change. They are stored under `autosaveName` again, unless
  /// that is empty. `codecType` and `frameRate` (pictures a second) are filled where they are not null. Null, with a
  /// line in the log, when the service fails; null without one when the user cancels.
  std::shared_ptr<platform::ICMCompressionSessionOptions> userOptionsFrameRateAtomDataAutosaveNameMediaType(
      platform::FourCharCode* codecType, double* frameRate, const std::optional<Data>& atomData,
      const std::string& autosaveName, const std::string& mediaType) const;

  /// Shows the dialog for the stored settings.
  void change() const;
  /// Options of the stored settings with pictures of this size tag; shows the dialog when there are none stored.
  std::shared_ptr<const platform::QTCompressionOptions> options(int fitSizeTag) const;

 private:
  std::optional<Data> storedData(const std::string& name) const;
  void load(platform::StandardCompression& component, const Data& settings) const;
  bool ask(platform::StandardCompression& component) const;
  void save(platform::StandardCompression& component, const std::string& autosaveName) const;

  // Constant after construction.
  platform::CompressionPlatform& platform_;
  platform::Settings& store_;
  Log& log_;
};

}  // namespace zq

#pragma once
// How a movie's pictures are written: the platform's presets, and its standard compression service for own settings.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/sample_buffer.h"

namespace zq::platform {

/// One choice; identity matters, so each is made once and shared.
class QTCompressionOptions {
 public:
  virtual ~QTCompressionOptions() = default;
  virtual std::string localizedDisplayName() const = 0;
};

/// What the standard compression service made of the user's settings: for the encoder, opaque to everybody else.
class ICMCompressionSessionOptions {
 public:
  virtual ~ICMCompressionSessionOptions() = default;
  /// 0, or an error's number.
  virtual std::int32_t setProperty(FourCharCode propertyClass, FourCharCode property,
                                   std::span<const std::uint8_t> value) = 0;
};

// The standard compression service: one component for pictures, one for sound.
inline constexpr FourCharCode StandardCompressionType = fourCharCode("scdi");
inline constexpr FourCharCode StandardCompressionSubType = fourCharCode("imag");
inline constexpr FourCharCode StandardCompressionSubTypeAudio = fourCharCode("audi");
inline constexpr FourCharCode scPreferenceFlagsType = fourCharCode("pref");
inline constexpr FourCharCode scSpatialSettingsType = fourCharCode("sptl");
inline constexpr FourCharCode scTemporalSettingsType = fourCharCode("tprl");
/// A preference flag: encoding through a compression session is allowed.
inline constexpr std::int32_t scAllowEncodingWithCompressionSession = 256;
/// What requestImageSettings() returns for a dialog that the user cancelled.
inline constexpr std::int32_t scUserCancelled = 1;

struct SCSpatialSettings {
  FourCharCode codecType = 0;
};

struct SCTemporalSettings {
  /// Pictures a second, 16.16 fixed point; 0 for as many as come.
  std::int32_t frameRate = 0;
};

/// An open component; it is closed when it goes. Operations return 0 or an error's number. Main thread only.
class StandardCompression {
 public:
  virtual ~StandardCompression() = default;
  virtual std::int32_t setInfo(FourCharCode selector, std::int32_t flags) = 0;
  /// Settings that cannot be read are an error and change nothing.
  virtual std::int32_t setSettingsFromAtomContainer(std::span<const std::uint8_t> settings) = 0;
  /// The dialog, showing the settings as they are. scUserCancelled leaves them so.
  virtual std::int32_t requestImageSettings() = 0;
  /// The settings as data, which a later version can read.
  virtual std::int32_t getSettingsAsAtomContainer(std::vector<std::uint8_t>& settings) = 0;
  virtual std::int32_t copyCompressionSessionOptions(std::shared_ptr<ICMCompressionSessionOptions>& options) = 0;
  virtual SCSpatialSettings spatialSettings() const = 0;
  virtual SCTemporalSettings temporalSettings() const = 0;
};

/// Makes the choices of compression. Main thread only.
class CompressionPlatform {
 public:
  virtual ~CompressionPlatform() = default;
  /// The presets that this machine can encode with, in the order in which they are offered.
  virtual std::vector<std::string> compressionOptionsIdentifiersForMediaType(const std::string& mediaType) = 0;
  /// The same object each time; null for an identifier that is not listed.
  virtual std::shared_ptr<const QTCompressionOptions> compressionOptionsWithIdentifier(
      const std::string& identifier) = 0;
  /// Null when there is none of this kind.
  virtual std::unique_ptr<StandardCompression> openDefaultComponent(FourCharCode type, FourCharCode subType) = 0;
  /// "QTVideoCompressionOptions": own settings, with pictures of this size; 0 x 0 keeps the tape's. Size mode 0 scales
  /// to it whatever the shape. Without session options, movies are written as received.
  virtual std::shared_ptr<const QTCompressionOptions> videoCompressionOptions(
      FourCharCode codecType, int sizeMode, int width, int height,
      std::shared_ptr<ICMCompressionSessionOptions> compressionSessionOptions) = 0;
};

}  // namespace zq::platform

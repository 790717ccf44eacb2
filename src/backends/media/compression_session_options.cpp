#include "backends/media/compression_session_options.h"

#include "backends/media/compression_errors.h"

namespace zq::media {
namespace {

using platform::fourCharCode;

constexpr platform::FourCharCode kSessionOptions = fourCharCode("icso");
constexpr platform::FourCharCode kImageSettings = fourCharCode("imps");

}  // namespace

std::int32_t CompressionSessionOptions::setProperty(platform::FourCharCode propertyClass,
                                                    platform::FourCharCode property,
                                                    std::span<const std::uint8_t> value) {
  const bool known = propertyClass == kSessionOptions && property == kImageSettings;
  return known && value.size() == sizeof(std::uint32_t) ? 0 : kUnknownParameter;
}

}  // namespace zq::media

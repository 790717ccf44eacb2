#pragma once
// Bytes as text, RFC 4648 with padding: how JSON carries them.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zq::host {

std::string base64Of(std::span<const std::uint8_t> bytes);
/// Nothing when the text is not what base64Of() makes.
std::optional<std::vector<std::uint8_t>> bytesOfBase64(std::string_view text);

}  // namespace zq::host

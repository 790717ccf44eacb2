#include "host/base64.h"

#include <algorithm>

// Three bytes are four letters of six bits each; "=" stands for letters that have no bits of the last bytes:
//
//   bytes    aaaaaaaa bbbbbbbb cccccccc
//   letters  aaaaaa aabbbb bbbbcc cccccc

namespace zq::host {
namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64Of(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) bits = bits << 8U | (i < count ? bytes[at + i] : 0U);
    for (std::size_t i = 0; i < 4; ++i) text += i <= count ? kLetters[bits >> (18 - 6 * i) & 0x3FU] : '=';
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> bytesOfBase64(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  std::uint32_t bits = 0;
  std::size_t letters = 0;
  for (const char letter : text.substr(0, text.find('='))) {
    const std::size_t value = kLetters.find(letter);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6U | static_cast<std::uint32_t>(value);
    const std::size_t wholeBits = ++letters * 6 % 8;
    if (letters % 4 != 1) bytes.push_back(static_cast<std::uint8_t>(bits >> wholeBits));
  }
  // Only one text stands for the same bytes: padding and the bits that are left over are as they are written.
  if (base64Of(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace zq::host

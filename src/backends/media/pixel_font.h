#pragma once
// A small bitmap font: capital letters, digits and the marks of times and dates.

#include <array>
#include <cstdint>

namespace zq::media {

inline constexpr int kGlyphWidth = 5;
inline constexpr int kGlyphHeight = 7;
/// Rows from the top; in each the lowest five bits are the pixels, the leftmost being the highest of them.
using Glyph = std::array<std::uint8_t, kGlyphHeight>;

/// An empty glyph for a character that the font lacks.
const Glyph& glyphFor(char character);

}  // namespace zq::media

#include "controls/sharing_element.h"

#include "controls/control_paint.h"

namespace zq {

namespace {

constexpr int kSharedFontSize = 10;
// Meant as a part of 255, but the colour takes parts of 1: the text is opaque, and looks right that way.
constexpr double kAlpha = 218;

}  // namespace

std::optional<AttributedString> ZQAccurateSharingElement::sharingAttributedStringWithString(const QString& string) {
  if (string.isNull()) return std::nullopt;
  return AttributedString{string, helveticaFont(kSharedFontSize), deviceWhite(1.0, kAlpha)};
}

}  // namespace zq

#pragma once
// The look of the texts of what is shared.

#include <QColor>
#include <QFont>
#include <QString>
#include <optional>

namespace zq {

/// A text with its look.
struct AttributedString {
  QString text;
  QFont font;
  QColor color;
};

class ZQAccurateSharingElement {
 public:
  /// Nothing for the null string; the empty string is a text.
  static std::optional<AttributedString> sharingAttributedStringWithString(const QString& string);
};

}  // namespace zq

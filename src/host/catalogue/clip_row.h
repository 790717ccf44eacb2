#pragma once
// A clip as a row of the catalogue, there and back.

#include <QString>
#include <QVariant>

#include "host/catalogue/catalogue_connection.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

/// The columns that readClip() expects, in its order, and how many they are.
QString clipColumns();
inline constexpr int kClipColumnCount = 19;

/// A statement that adds a clip and answers with its id.
class ClipWriter {
 public:
  explicit ClipWriter(CatalogueConnection& connection);
  /// Returns the id that the clip was given.
  std::int64_t write(const CatalogueClip& clip, std::int64_t sequence, std::int64_t position);

 private:
  CatalogueStatement clip_;
  CatalogueStatement poster_;
};

/// The clip in the statement's row; throws a failure when a date or a timecode in it cannot be read.
CatalogueClip readClip(const CatalogueStatement& row, const std::string& where);

QVariant bytesValue(const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> bytesOf(const QVariant& value);

}  // namespace zq::host

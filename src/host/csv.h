#pragma once
// Tables as comma separated values (RFC 4180), as spreadsheets write them.

#include <string>
#include <string_view>
#include <vector>

namespace zq::host {

struct CsvRow {
  /// Where the row begins, from 1.
  int line = 0;
  std::vector<std::string> fields;
  /// What is wrong with its quoting; then the fields are not all there. Empty when nothing is.
  std::string problem;
};

/// Rows end with LF, CRLF or CR; blank lines are no rows. After a row with broken quoting it goes on with the next
/// line. Takes time in proportion to the text.
std::vector<CsvRow> parseCsv(std::string_view text, char separator);

/// One row with its line end; fields are quoted where they need it.
std::string csvLine(const std::vector<std::string>& fields);

}  // namespace zq::host

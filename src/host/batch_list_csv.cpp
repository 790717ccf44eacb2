// Lists as CSV: a header, then a row for each clip.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>

#include "host/batch_list.h"
#include "host/batch_list_text.h"
#include "host/csv.h"

namespace zq::host {
namespace {

constexpr std::array<const char*, 4> kColumns{"name", "tape", "in", "out"};
constexpr std::array<char, 3> kSeparators{',', ';', '\t'};

/// Where each column stands, by its name in small letters.
using Columns = std::map<std::string, std::size_t>;

std::vector<std::string> missingColumns(const Columns& columns) {
  std::vector<std::string> missing;
  for (const char* name : kColumns) {
    if (!columns.contains(name)) missing.emplace_back(name);
  }
  return missing;
}

/// An error when the header does not say where the columns are.
Expected<Columns> columnsOf(const CsvRow& header) {
  const std::string where = fmt::format("line {}: ", header.line);
  if (!header.problem.empty()) return Error{where + header.problem, ""};
  Columns columns;
  for (std::size_t i = 0; i < header.fields.size(); ++i) {
    const std::string name = lowered(trimmed(header.fields[i]));
    const bool twice = !columns.emplace(name, i).second;
    if (twice && std::ranges::find(kColumns, name) != kColumns.end()) {
      return Error{fmt::format("{}the column \"{}\" stands there twice", where, name), ""};
    }
  }
  const std::vector<std::string> missing = missingColumns(columns);
  if (missing.empty()) return columns;
  return Error{fmt::format("{}there is no column \"{}\"", where, fmt::join(missing, "\", \"")),
               "The first line names the columns: name, tape, in and out are needed, others may follow."};
}

/// The separator with which the header has most of the columns.
char separatorOf(std::string_view text) {
  // A quoted field may hold line ends, but a header's has none.
  const std::string_view header = text.substr(0, text.find_first_of("\r\n", text.find_first_not_of("\r\n")));
  const auto found = [&](char separator) {
    std::size_t count = 0;
    for (const CsvRow& row : parseCsv(header, separator)) {
      count += static_cast<std::size_t>(std::ranges::count_if(kColumns, [&](const char* column) {
        return std::ranges::any_of(row.fields, [&](const auto& field) { return lowered(trimmed(field)) == column; });
      }));
    }
    return count;
  };
  return *std::ranges::max_element(kSeparators, {}, found);
}

class RowReader {
 public:
  explicit RowReader(Columns columns, std::size_t width) : columns_(std::move(columns)), width_(width) {}

  /// What is wrong with it, "" when nothing is.
  std::string read(const CsvRow& from, BatchRow& row, bool& dropFrame) const {
    if (!from.problem.empty()) return from.problem;
    if (!std::ranges::all_of(from.fields, isPlainText)) return "its text is not UTF-8";
    if (from.fields.size() != width_) {
      return fmt::format("it has {} fields, but the header has {}", from.fields.size(), width_);
    }
    row.line = from.line;
    row.name = field(from, "name");
    row.tape = trimmed(field(from, "tape"));
    row.recordingDate = dateOf(trimmed(field(from, "recordingdate")));
    row.timebase = timebaseIn(field(from, "timebase"));
    std::string reason = readTimecode("in", field(from, "in"), row.in);
    if (reason.empty()) reason = readTimecode("out", field(from, "out"), row.out);
    dropFrame = dropFrame || isDropFrame(field(from, "in")) || isDropFrame(field(from, "out"));
    return reason;
  }

 private:
  std::string field(const CsvRow& row, const std::string& column) const {
    const auto at = columns_.find(column);
    return at == columns_.end() ? "" : row.fields[at->second];
  }

  static std::optional<int> timebaseIn(std::string_view text) {
    const std::string_view number = trimmed(text);
    if (number == "25") return 25;
    if (number == "30") return 30;
    return std::nullopt;
  }

  /// "00:01:00;02"
  static bool isDropFrame(std::string_view text) { return text.find(';') != std::string_view::npos; }

  const Columns columns_;
  const std::size_t width_;
};

}  // namespace

Expected<BatchList> parseCsvList(std::string_view text) {
  const std::vector<CsvRow> table = parseCsv(text, separatorOf(text));
  if (table.empty()) return Error{"the list is empty", ""};
  const auto columns = columnsOf(table[0]);
  if (!columns.ok()) return columns.error();
  const RowReader reader(columns.value(), table[0].fields.size());
  BatchList list;
  bool dropFrame = false;
  for (std::size_t i = 1; i < table.size(); ++i) {
    BatchRow row;
    std::string reason = reader.read(table[i], row, dropFrame);
    if (reason.empty()) {
      list.rows.push_back(std::move(row));
    } else {
      list.bad.push_back({table[i].line, std::move(reason)});
    }
  }
  settleRows(list, dropFrame);
  return list;
}

}  // namespace zq::host

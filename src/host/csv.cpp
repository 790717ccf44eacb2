#include "host/csv.h"

namespace zq::host {
namespace {

constexpr char kQuote = '"';

/// Reads the rows one after the other.
class CsvReader {
 public:
  CsvReader(std::string_view text, char separator) : text_(text), separator_(separator) {}

  bool atEnd() const { return at_ == text_.size(); }

  bool takeBlankLine() {
    const bool blank = isLineEnd();
    takeLineEnd();
    return blank;
  }

  CsvRow readRow() {
    CsvRow row;
    row.line = line_;
    bool more = true;
    while (more && row.problem.empty()) {
      row.fields.emplace_back();
      row.problem = isQuote() ? readQuoted(row.fields.back()) : readPlain(row.fields.back());
      more = !atEnd() && text_[at_] == separator_;
      if (more) ++at_;
    }
    if (!row.problem.empty()) skipLine();
    takeLineEnd();
    return row;
  }

 private:
  bool isQuote() const { return !atEnd() && text_[at_] == kQuote; }
  bool isLineEnd() const { return !atEnd() && (text_[at_] == '\n' || text_[at_] == '\r'); }
  bool isFieldEnd() const { return atEnd() || isLineEnd() || text_[at_] == separator_; }

  std::string readPlain(std::string& field) {
    const std::size_t begin = at_;
    while (!isFieldEnd() && !isQuote()) ++at_;
    field = text_.substr(begin, at_ - begin);
    return isQuote() ? "a quotation mark stands inside a field that does not begin with one" : "";
  }

  std::string readQuoted(std::string& field) {
    const std::size_t begin = at_;
    const int beginLine = line_;
    ++at_;
    while (true) {
      if (atEnd()) {
        // What follows was not meant to be in this field, so the lines after it are read as rows.
        at_ = begin;
        line_ = beginLine;
        return "a quotation mark is opened and never closed";
      }
      if (isQuote()) {
        ++at_;
        if (!isQuote()) break;
      }
      takeQuotedCharacter(field);
    }
    return isFieldEnd() ? "" : "something follows a closing quotation mark";
  }

  void takeQuotedCharacter(std::string& field) {
    if (isLineEnd()) {
      const std::size_t begin = at_;
      takeLineEnd();
      field += text_.substr(begin, at_ - begin);
    } else {
      field += text_[at_++];
    }
  }

  void skipLine() {
    while (!atEnd() && !isLineEnd()) ++at_;
  }

  void takeLineEnd() {
    if (!isLineEnd()) return;
    const bool isReturn = text_[at_++] == '\r';
    if (isReturn && !atEnd() && text_[at_] == '\n') ++at_;
    ++line_;
  }

  const std::string_view text_;
  const char separator_;
  std::size_t at_ = 0;
  int line_ = 1;
};

bool needsQuotes(const std::string& field) {
  return field.find_first_of("\",;\t\r\n") != std::string::npos;
}

std::string quoted(const std::string& field) {
  std::string text(1, kQuote);
  for (const char c : field) text.append(c == kQuote ? 2 : 1, c);
  return text + kQuote;
}

}  // namespace

std::vector<CsvRow> parseCsv(std::string_view text, char separator) {
  std::vector<CsvRow> rows;
  CsvReader reader(text, separator);
  while (!reader.atEnd()) {
    if (!reader.takeBlankLine()) rows.push_back(reader.readRow());
  }
  return rows;
}

std::string csvLine(const std::vector<std::string>& fields) {
  // A line with nothing on it would be no row.
  if (fields.size() == 1 && fields[0].empty()) return "\"\"\n";
  std::string line;
  for (const std::string& field : fields) {
    if (&field != fields.data()) line += ',';
    line += needsQuotes(field) ? quoted(field) : field;
  }
  return line + "\n";
}

}  // namespace zq::host

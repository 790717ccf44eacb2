#pragma once
// A list of what to capture from which tape, as other programs make them.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/calendar_date.h"
#include "base/status.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// Timecodes are numbers only: which system they count in may have to be found out.
struct BatchRow {
  int line = 0;
  std::string name;
  std::string tape;
  SMPTETime in;
  /// The frame after the last one.
  SMPTETime out;
  /// `out` skips the numbers that drop frame leaves out.
  bool dropFrame = false;
  /// Where the list says them.
  std::optional<int> timebase;
  DateValue recordingDate;

  /// The timecode of the last frame.
  SMPTETime last(int framesPerSecond) const;
};

struct ListRemark {
  int line = 0;
  std::string reason;
};

struct BatchList {
  std::vector<BatchRow> rows;
  /// Rows that are wrong, and those that are right but nothing to capture.
  std::vector<ListRemark> bad;
  std::vector<ListRemark> leftOut;
  /// Of rows that do not say theirs and are not found on a tape.
  int timebase = 25;
};

enum class ListKind { json, csv, edl };

/// By what the text begins with, else by the path's extension.
ListKind listKindOf(const std::string& path, std::string_view text);

/// Columns name, tape, in, out in any order, among others. An error when these are not there.
Expected<BatchList> parseCsvList(std::string_view text);

// For the parsers.

/// Reads a timecode of a row; returns what is wrong with it, "" when nothing is. Its numbers are checked with the
/// row's.
std::string readTimecode(const char* column, std::string_view text, SMPTETime& timecode);
/// Sets the list's timebase, 30 where the list says so or a frame number is beyond 25; then takes out the rows that are
/// wrong, and sorts what is told by line.
void settleRows(BatchList& list, bool saysThirty);

}  // namespace zq::host

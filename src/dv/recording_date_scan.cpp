#include "dv/recording_date_scan.h"

#include <array>
#include <cstddef>
#include <stdexcept>

#include "dv/dif_sequence.h"
#include "dv/dv_constants.h"
#include "dv/frame_capture_date_time.h"

namespace zq {
namespace {

void scanSequences(const SharedBytes& frame, Log* log, const BeforeSequence& beforeSequence, RecordingDateScan& scan) {
  constexpr std::uint32_t kCount = DIF_SEQ_COUNT_MIN;
  for (std::uint32_t index = 0; index < kCount && !scan.date; ++index) {
    if (beforeSequence) beforeSequence(index);
    DVDifSequence sequence(frame, index, log);
    sequence.decodeSequence();
    scan.aspectRatio = sequence.aspectRatio();
    scan.date = sequence.date();
    if (scan.date) scan.captureDateTime = sequence.captureDateTime();
  }
}

bool isLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// `month` is 1..12.
int daysInMonth(int year, int month) {
  constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

bool isWithin(int value, int low, int high) {
  return value >= low && value <= high;
}

}  // namespace

RecordingDateScan scanRecordingDate(const SharedBytes& frame, Log* log, const BeforeSequence& beforeSequence) {
  RecordingDateScan scan;
  try {
    scanSequences(frame, log, beforeSequence, scan);
  } catch (const std::out_of_range&) {
    scan.outOfRange = true;
  }
  return scan;
}

bool isPossibleDate(const DVFrameCaptureDateTime& dateTime) {
  const int month = dateTime.monthOfYear();
  return isWithin(month, 1, 12) && isWithin(dateTime.dayOfMonth(), 1, daysInMonth(dateTime.year(), month)) &&
         isWithin(dateTime.hourOfDay(), 0, 23) && isWithin(dateTime.minuteOfHour(), 0, 59) &&
         isWithin(dateTime.secondOfMinute(), 0, 59);
}

}  // namespace zq

#include "dv/recording_date_scan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>

#include "dv/dif_sequence.h"
#include "dv/dv_constants.h"
#include "dv/frame_capture_date_time.h"
#include "dv/pack.h"

namespace zq {
namespace {

bool holdsPack(std::span<const std::uint8_t> block, std::uint8_t kind) {
  return std::ranges::any_of(kSubcodePackStarts, [&](std::uint32_t start) { return block[start] == kind; });
}

/// Whether the sequence is in the frame and lacks a date or a time. Tells so without decoding it, which costs ten times
/// as much and would bring to light nothing but its aspect ratio.
bool isSurelyUndated(const SharedBytes& frame, std::uint32_t index) {
  const auto bytes = frame.bytes();
  const std::size_t header = std::size_t{index} * SEQUENCE_SIZE;
  if (header + SEQUENCE_SIZE > bytes.size()) return false;
  // The blocks are those of the sequence that the stream names.
  const std::size_t sequence = std::size_t{bytes[header + 1]} / 16 * SEQUENCE_SIZE;
  if (sequence + SEQUENCE_SIZE > bytes.size()) return false;
  const auto first = bytes.subspan(sequence + BLOCKS_SIZE, BLOCKS_SIZE);
  const auto second = bytes.subspan(sequence + std::size_t{2} * BLOCKS_SIZE, BLOCKS_SIZE);
  const auto lacks = [&](std::uint8_t kind) { return !holdsPack(first, kind) && !holdsPack(second, kind); };
  return lacks(kRecordingDatePack) || lacks(kRecordingTimePack);
}

std::int32_t aspectRatioOf(const SharedBytes& frame, std::uint32_t index) {
  DVDifSequence sequence(frame, index);
  sequence.decodeSequenceBasics();
  sequence.decodeVauxSection();
  return sequence.aspectRatio();
}

void scanSequences(const SharedBytes& frame, Log* log, const BeforeSequence& beforeSequence, RecordingDateScan& scan) {
  constexpr std::uint32_t kCount = DIF_SEQ_COUNT_MIN;
  std::optional<std::uint32_t> passedOver;
  const auto keepItsAspectRatio = [&] {
    if (passedOver) scan.aspectRatio = aspectRatioOf(frame, *passedOver);
    passedOver.reset();
  };
  for (std::uint32_t index = 0; index < kCount && !scan.date; ++index) {
    if (beforeSequence) beforeSequence(index);
    // A log is told what is wrong with each sequence, so each is decoded.
    if (log == nullptr && isSurelyUndated(frame, index)) {
      passedOver = index;
      continue;
    }
    keepItsAspectRatio();
    DVDifSequence sequence(frame, index, log);
    sequence.decodeSequence();
    scan.aspectRatio = sequence.aspectRatio();
    scan.date = sequence.date();
    if (scan.date) scan.captureDateTime = sequence.captureDateTime();
  }
  keepItsAspectRatio();
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

// A sequence is 150 blocks of 80 bytes:
//
//   block    section type   holds
//   0        0 header       ID0 ID1 ID2, then H0: bit 7 is DSF, 1 = 625/50
//   1, 2     1 subcode      six packs each (see pack.h)
//   3..5     2 VAUX         source and source control pack, by the parity of the sequence index
//   6..149   3 audio, 4 video
//
//   pack            PC1                PC2                PC3                PC4
//   0x13 timecode   frames (tens 5-4)  seconds (6-4)      minutes (6-4)      hours (5-4)
//   0x62 date       zone, not read     day (5-4)          month (4)          year (7-4)
//   0x63 time       frames, not read   seconds (6-4)      minutes (6-4)      hours (5-4)
//   0x60 source                                           4-0 sampling type
//   0x61 control                       2-0 display        5 FC, 4 IL
//
// Digits are BCD, units in the low nibble. Camcorders set the bits that no digit uses.

#include "dv/dif_sequence.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "dv/dv_constants.h"
#include "dv/frame_capture_date_time.h"

namespace zq {
namespace {

constexpr std::int32_t kHeaderSection = 0;
constexpr std::int32_t kSubcodeSection = 1;
constexpr std::int32_t kVauxSection = 2;
constexpr std::int32_t kAudioSection = 3;
constexpr std::int32_t kVideoSection = 4;

constexpr std::uint32_t kBlockSize = BLOCKS_SIZE;

constexpr std::uint32_t kTimecodeType25 = 1;
constexpr std::uint32_t kTimecodeType30DropFrame = 2;

int bcd(std::uint8_t byte, unsigned tensMask) {
  return static_cast<int>(((byte >> 4U) & tensMask) * 10U + (byte & 0x0FU));
}

// Two digits cannot name a century. This split is the one that the dates in existing catalogues were made with.
int fullYear(int twoDigits) {
  return twoDigits < 25 ? 2000 + twoDigits : 1900 + twoDigits;
}

bool isExpectedSection(std::uint32_t blockIndex, std::int32_t sectionType) {
  if (blockIndex == 0) return sectionType == kHeaderSection;
  if (blockIndex <= 2) return sectionType == kSubcodeSection;
  if (blockIndex <= 5) return sectionType == kVauxSection;
  return sectionType == kAudioSection || sectionType == kVideoSection;
}

// Information, not a warning: a blank frame tells thirty of these, and whoever decodes a tape knows what it adds up to.
void tell(Log* log, std::string_view text, std::int32_t first, std::int32_t second) {
  if (log != nullptr) log->write(LogLevel::info, fmt::format(fmt::runtime(text), first, second));
}

}  // namespace

DVDifSequence::DVDifSequence(SharedBytes data, std::uint32_t sequenceIndex, Log* log) : log_(log) {
  setSequenceIndex(sequenceIndex);
  setData(std::move(data));
}

DVDifSequence DVDifSequence::difSequenceWithDataForSequenceIndex(SharedBytes data, std::uint32_t sequenceIndex,
                                                                 Log* log) {
  return DVDifSequence(std::move(data), sequenceIndex, log);
}

void DVDifSequence::setSequenceIndex(std::uint32_t sequenceIndex) {
  constexpr std::uint32_t kBlocks = BLOCKS_PER_SEQUENCE;
  sequenceIndex_ = sequenceIndex;
  offset_ = sequenceIndex * kBlockSize * kBlocks;
}

void DVDifSequence::setData(SharedBytes data) {
  if (data_.sameBufferAs(data)) return;
  data_ = std::move(data);
  decoded_ = false;
}

void DVDifSequence::setCaptureDateTime(std::shared_ptr<DVFrameCaptureDateTime> captureDateTime) {
  captureDateTime_ = std::move(captureDateTime);
}

void DVDifSequence::setUndecoded() {
  setCaptureDateTime(nullptr);
  decoded_ = false;
}

void DVDifSequence::decodeSequence() {
  if (!data_) {
    decoded_ = false;
    return;
  }
  if (decoded_) return;
  decodeSequenceBasics();
  decodeSubCodeSection();
  decodeVauxSection();
  decoded_ = true;
}

void DVDifSequence::reDecodeSequence() {
  setUndecoded();
  decodeSequence();
}

void DVDifSequence::decodeSequenceBasics() {
  std::array<std::uint8_t, 4> header{};
  data_.getBytes(header, offset_);
  sectionType_ = header[0] >> 5;
  sequenceChannel_ = (header[1] >> 3) & 1U;
  sequenceNumber_ = header[1] >> 4;
  sequenceFlag_ = header[3] >> 7;
  // The drop-frame bit of the timecode pack has no say: 625/50 recordings set it too.
  timeCode_.mType = sequenceFlag_ != 0 ? kTimecodeType25 : kTimecodeType30DropFrame;
  systemOk_ = true;
}

void DVDifSequence::decodeSubCodeSection() {
  const DVDifSequenceBlock first = getBlockAt(1);
  const DVDifSequenceBlock second = getBlockAt(2);
  if (first.sectionType() != kSubcodeSection || second.sectionType() != kSubcodeSection) {
    tell(log_, "Cannot decode subcode for SC0 and SC1 of type {} and {}", first.sectionType(), second.sectionType());
    return;
  }
  decodeSubCodeSection(first);
  decodeSubCodeSection(second);
}

void DVDifSequence::decodeSubCodeSection(const DVDifSequenceBlock& block) {
  for (const std::uint32_t start : kSubcodePackStarts) {
    Pack pack{};
    block.getBytesStartLength(pack.data(), start, static_cast<std::uint32_t>(pack.size()));
    switch (pack[0]) {
      case kTimecodePack:
        decodeTimecodePack(pack);
        break;
      case kRecordingDatePack:
        decodeRecordingDatePack(pack);
        break;
      case kRecordingTimePack:
        decodeRecordingTimePack(pack);
        break;
      default:
        break;
    }
  }
}

// Every timecode pack overwrites the one before, so the last of the sequence counts.
void DVDifSequence::decodeTimecodePack(const Pack& pack) {
  timeCode_.mFrames = static_cast<std::int16_t>(bcd(pack[1], 0x3));
  timeCode_.mSeconds = static_cast<std::int16_t>(bcd(pack[2], 0x7));
  timeCode_.mMinutes = static_cast<std::int16_t>(bcd(pack[3], 0x7));
  timeCode_.mHours = static_cast<std::int16_t>(bcd(pack[4], 0x3));
  timecodeOk_ = true;
}

// Of dates and times the first of the sequence counts. Nothing is validated: whether the numbers are a possible date is
// for those to ask who care (isPossibleDate).
void DVDifSequence::decodeRecordingDatePack(const Pack& pack) {
  if (captureDateTime_ && captureDateTime_->isDateSet()) return;
  const int year = fullYear(bcd(pack[4], 0xF));
  const int month = bcd(pack[3], 0x1);
  const int day = bcd(pack[2], 0x3);
  if (captureDateTime_) {
    captureDateTime_->setDateWithYearMonthDay(year, month, day);
  } else {
    captureDateTime_ = DVFrameCaptureDateTime::dateWithYearMonthDay(year, month, day);
  }
}

void DVDifSequence::decodeRecordingTimePack(const Pack& pack) {
  if (captureDateTime_ && captureDateTime_->isTimeSet()) return;
  const int hours = bcd(pack[4], 0x3);
  const int minutes = bcd(pack[3], 0x7);
  const int seconds = bcd(pack[2], 0x7);
  if (captureDateTime_) {
    captureDateTime_->setTimeWithHoursMinutesSeconds(hours, minutes, seconds);
  } else {
    captureDateTime_ = DVFrameCaptureDateTime::timeWithHoursMinutesSeconds(hours, minutes, seconds);
  }
}

// PC0 is not tested in either pack: the places are trusted.
void DVDifSequence::decodeVauxSection() {
  const VauxPlace place = vauxPlaceOfSequence(sequenceIndex_);
  const DVDifSequenceBlock block = getBlockAt(place.block);
  if (block.sectionType() == kVauxSection) {
    decodeVauxSourceControlPackAtByteOffset(block, place.sourceControlStart);
    decodeVauxSourcePackAtByteOffset(block, place.sourceStart);
    return;
  }
  const auto blockIndex = static_cast<std::int32_t>(place.block);
  tell(log_, "Cannot decode Vaux Source Control Pack for VA of type {} at block number {}", block.sectionType(),
       blockIndex);
  tell(log_, "Cannot decode Vaux Source Pack for VA of type {} at block number {}", block.sectionType(), blockIndex);
}

void DVDifSequence::decodeVauxSourcePackAtByteOffset(const DVDifSequenceBlock& block, std::uint32_t byteOffset) {
  Pack pack{};
  block.getBytesStartLength(pack.data(), byteOffset, static_cast<std::uint32_t>(pack.size()));
  const std::int32_t type = pack[3] & 0x1F;
  pixelSampling_ = type == 0 || type == 4 ? type : -1;
}

void DVDifSequence::decodeVauxSourceControlPackAtByteOffset(const DVDifSequenceBlock& block, std::uint32_t byteOffset) {
  Pack pack{};
  block.getBytesStartLength(pack.data(), byteOffset, static_cast<std::uint32_t>(pack.size()));
  aspectRatio_ = (pack[2] & 0x07) == 0 ? 1 : 0;
  stillPicture_ = (pack[3] & 0x20) == 0;
  // A clear bit reads as interlaced. That is the sense in which this flag has always been handed on.
  interlaced_ = (pack[3] & 0x10) == 0;
}

bool DVDifSequence::containsExpectedSections() const {
  if (!data_ || data_.size() < kBlockSize) return false;
  constexpr std::size_t kBlocks = BLOCKS_PER_SEQUENCE;
  const std::size_t count = std::min(kBlocks, data_.size() / kBlockSize);
  for (std::uint32_t index = 0; index < count; ++index) {
    if (!isExpectedSection(index, getBlockAt(index).sectionType())) return false;
  }
  return true;
}

DVDifSequenceBlock DVDifSequence::getBlockAt(std::uint32_t blockIndex) const {
  return DVDifSequenceBlock::initWithDataForSequenceIndexBlockIndex(data_, sequenceNumber_, blockIndex);
}

std::string DVDifSequence::sectionCode() const {
  return "UNSET";
}

DateValue DVDifSequence::date() const {
  return captureDateTime_ ? captureDateTime_->date() : nullptr;
}

}  // namespace zq

#pragma once
// What one DIF sequence of a frame says about it: system, timecode, recording date and time, aspect ratio.

#include <cstdint>
#include <memory>
#include <string>

#include "base/calendar_date.h"
#include "base/log.h"
#include "base/shared_bytes.h"
#include "dv/dif_sequence_block.h"
#include "dv/pack.h"
#include "timecode/smpte_time.h"

namespace zq {

class DVFrameCaptureDateTime;

/// Lives for one frame. Picture and sound are never decoded. std::out_of_range of the buffer leaves every decoding
/// operation that reads past its end; a section of an unexpected type is logged and leaves its fields as they were.
class DVDifSequence {
 public:
  /// `log` may be null and outlives the sequence.
  DVDifSequence(SharedBytes data, std::uint32_t sequenceIndex, Log* log = nullptr);
  static DVDifSequence difSequenceWithDataForSequenceIndex(SharedBytes data, std::uint32_t sequenceIndex,
                                                           Log* log = nullptr);

  void setSequenceIndex(std::uint32_t sequenceIndex);
  /// Another buffer makes the sequence undecoded but keeps the capture date and time.
  void setData(SharedBytes data);
  void setCaptureDateTime(std::shared_ptr<DVFrameCaptureDateTime> captureDateTime);
  void setUndecoded();

  /// Decodes once; does nothing without a buffer.
  void decodeSequence();
  void reDecodeSequence();
  void decodeSequenceBasics();
  void decodeSubCodeSection();
  void decodeSubCodeSection(const DVDifSequenceBlock& block);
  void decodeVauxSection();
  void decodeVauxSourcePackAtByteOffset(const DVDifSequenceBlock& block, std::uint32_t byteOffset);
  void decodeVauxSourceControlPackAtByteOffset(const DVDifSequenceBlock& block, std::uint32_t byteOffset);

  /// Whether the blocks, as far as the buffer holds them, have the section types of a sequence.
  bool containsExpectedSections() const;
  /// Addressed by the sequence number that the stream carries, so only after decodeSequenceBasics.
  DVDifSequenceBlock getBlockAt(std::uint32_t blockIndex) const;

  bool decoded() const { return decoded_; }
  std::uint32_t offset() const { return offset_; }
  std::int32_t sectionType() const { return sectionType_; }
  std::uint32_t sequenceChannel() const { return sequenceChannel_; }
  std::uint32_t sequenceNumber() const { return sequenceNumber_; }
  SMPTETime timeCode() const { return timeCode_; }
  bool timecodeOk() const { return timecodeOk_; }
  bool systemOk() const { return systemOk_; }
  const std::shared_ptr<DVFrameCaptureDateTime>& captureDateTime() const { return captureDateTime_; }
  bool stillPicture() const { return stillPicture_; }
  bool interlaced() const { return interlaced_; }
  /// 0 (16:9) until VAUX was decoded.
  std::int32_t aspectRatio() const { return aspectRatio_; }
  /// 0, 4, or -1 for unknown.
  std::int32_t pixelSampling() const { return pixelSampling_; }
  /// Always "UNSET".
  std::string sectionCode() const;
  /// The recording date and time; null unless both were found.
  DateValue date() const;

 private:
  void decodeTimecodePack(const Pack& pack);
  void decodeRecordingDatePack(const Pack& pack);
  void decodeRecordingTimePack(const Pack& pack);

  SharedBytes data_;
  Log* log_ = nullptr;
  std::int32_t sectionType_ = 0;
  std::uint32_t sequenceChannel_ = 0;
  std::uint32_t sequenceNumber_ = 0;
  std::uint32_t sequenceFlag_ = 0;
  std::uint32_t sequenceIndex_ = 0;
  std::uint32_t offset_ = 0;
  SMPTETime timeCode_;
  bool timecodeOk_ = false;
  bool systemOk_ = false;
  std::shared_ptr<DVFrameCaptureDateTime> captureDateTime_;
  std::int32_t pixelSampling_ = -1;
  std::int32_t aspectRatio_ = 0;
  bool stillPicture_ = false;
  bool interlaced_ = false;
  bool decoded_ = false;
};

}  // namespace zq

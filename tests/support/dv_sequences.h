#pragma once
// Sequences decoded for tests, from frames with the one pack that a test is about.

#include <gtest/gtest.h>

#include <memory>

#include "dv/dif_sequence.h"
#include "dv/frame_capture_date_time.h"
#include "support/dv_frames.h"

namespace zq::test {

inline constexpr Pack kDate20241231{0x62, 0xFF, 0x31, 0x12, 0x24};
inline constexpr Pack kTime133045{0x63, 0xFF, 0x45, 0x30, 0x13};

inline DVDifSequence decodedSequence(const FrameBytes& frame, std::uint32_t index, Log* log = nullptr) {
  DVDifSequence sequence(SharedBytes::copyOf(frame), index, log);
  sequence.decodeSequence();
  return sequence;
}

/// A frame whose sequence 0 has this pack in its first subcode slot and nothing else.
inline FrameBytes frameWithPack(const Pack& pack, DVSystem system = DVSystem::ntsc525_60) {
  FrameBytes frame = makeFrameBytes(system);
  setSubcodePack(frame, 0, 0, pack);
  return frame;
}

inline SMPTETime timecodeOfPack(const Pack& pack) {
  return decodedSequence(frameWithPack(pack), 0).timeCode();
}

inline std::shared_ptr<DVFrameCaptureDateTime> captureDateTimeOfPack(const Pack& pack) {
  return decodedSequence(frameWithPack(pack), 0).captureDateTime();
}

inline void expectDate(const std::shared_ptr<DVFrameCaptureDateTime>& value, int year, int month, int day) {
  ASSERT_NE(value, nullptr);
  EXPECT_TRUE(value->isDateSet());
  EXPECT_EQ(value->year(), year);
  EXPECT_EQ(value->monthOfYear(), month);
  EXPECT_EQ(value->dayOfMonth(), day);
}

}  // namespace zq::test

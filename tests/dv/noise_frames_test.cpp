// Whatever bytes a tape yields, what reads every frame answers and stays inside its buffer.

#include <gtest/gtest.h>

#include <random>

#include "dv/dif_sequence.h"
#include "dv/frame_header.h"
#include "dv/frame_sound.h"
#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"

namespace zq {
namespace {

using test::FrameBytes;

class NoiseFrames : public testing::Test {
 protected:
  std::uint32_t number(std::uint32_t below) { return static_cast<std::uint32_t>(generator_()) % below; }

  DVSystem system() { return number(2) == 0 ? DVSystem::ntsc525_60 : DVSystem::pal625_50; }

  FrameBytes noise(std::size_t size) {
    FrameBytes bytes(size);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(generator_() & 0xFFU);
    return bytes;
  }

  /// A good frame with sound in which many bytes of headers, packs and samples are hit.
  FrameBytes damaged() {
    const DVSystem chosen = system();
    FrameBytes frame = test::makeFrameBytes(
        chosen, {.timecode = test::timecodeOf(1, 2, 3, 4), .dateTime = StampDateTime{2004, 7, 15, 13, 30, 45}});
    writeFrameSound(frame, chosen, std::vector<std::int16_t>(2 * static_cast<std::size_t>(samplesInFrame(chosen, 0))));
    for (std::uint32_t hits = number(2000); hits > 0; --hits) {
      const std::uint32_t sequence = number(static_cast<std::uint32_t>(sequenceCountOf(chosen)));
      const std::uint32_t at = number(2) == 0 ? number(480) : number(SEQUENCE_SIZE);
      frame[sequence * SEQUENCE_SIZE + at] = static_cast<std::uint8_t>(generator_() & 0xFFU);
    }
    return frame;
  }

  void readAll(const FrameBytes& bytes) {
    const SharedBytes frame = SharedBytes::copyOf(bytes);
    test::DVRecordingLog log;
    const RecordingDateScan scan = scanRecordingDate(frame, &log);
    EXPECT_EQ(scan.date == nullptr, scan.captureDateTime == nullptr);
    if (scan.captureDateTime) (void)isPossibleDate(*scan.captureDateTime);
    (void)firstTimecode(frame);
    (void)looksLikeFrameHeader(bytes);
    if (!readFrameSound(bytes, sound_)) return;
    EXPECT_LE(sound_.samples, 1944);
  }

 private:
  std::mt19937 generator_{19980401};
  FrameSound sound_;
};

TEST_F(NoiseFrames, PureNoiseIsRead) {
  for (int round = 0; round < 60; ++round) readAll(noise(frameSizeOf(system())));
}

TEST_F(NoiseFrames, NoiseOfAnySizeIsRead) {
  for (int round = 0; round < 200; ++round) readAll(noise(number(30000)));
}

TEST_F(NoiseFrames, DamagedFramesAreRead) {
  for (int round = 0; round < 200; ++round) readAll(damaged());
}

TEST_F(NoiseFrames, CutOffFramesAreRead) {
  for (int round = 0; round < 200; ++round) {
    FrameBytes frame = damaged();
    frame.resize(number(static_cast<std::uint32_t>(frame.size())));
    readAll(frame);
  }
}

TEST_F(NoiseFrames, ZeroFilledAndErasedFramesAreUndated) {
  for (const std::uint8_t filling : {std::uint8_t{0x00}, std::uint8_t{0xFF}}) {
    const FrameBytes bytes(120000, filling);
    const SharedBytes frame = SharedBytes::copyOf(bytes);
    EXPECT_EQ(scanRecordingDate(frame).date, nullptr);
    EXPECT_FALSE(firstTimecode(frame));
    EXPECT_FALSE(soundFormatOf(bytes));
    EXPECT_FALSE(looksLikeFrameHeader(bytes));
  }
}

}  // namespace
}  // namespace zq

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "dv/dif_sequence.h"
#include "dv/frame_capture_date_time.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "support/dv_sequences.h"
#include "timecode/timecode_text.h"

namespace zq {
namespace {

using test::decodedSequence;
using test::FrameBytes;
using test::makeFrameBytes;
using test::setSectionType;
using test::setSequenceNumber;

TEST(DifSequenceSections, WholeSequencesContainTheExpectedSections) {
  const FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  for (std::uint32_t index = 0; index < 12; ++index) {
    EXPECT_TRUE(decodedSequence(frame, index).containsExpectedSections()) << index;
  }
}

TEST(DifSequenceSections, EveryWrongSectionIsFound) {
  for (int block = 0; block < BLOCKS_PER_SEQUENCE; ++block) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    DVDifSequence sequence(SharedBytes(), 0);
    setSectionType(frame, 0, block, 5);
    sequence.setData(SharedBytes::copyOf(frame));
    EXPECT_FALSE(sequence.containsExpectedSections()) << block;
  }
}

TEST(DifSequenceSections, EachBlockHasItsOwnSectionTypes) {
  const auto isExpected = [](int block, int type) {
    if (block == 0) return type == 0;
    if (block <= 2) return type == 1;
    return block <= 5 ? type == 2 : type == 3 || type == 4;
  };
  const FrameBytes whole = makeFrameBytes(DVSystem::ntsc525_60);
  for (const int block : {0, 1, 2, 3, 4, 5, 6, 7, 149}) {
    for (int type = 0; type < 8; ++type) {
      FrameBytes frame = whole;
      setSectionType(frame, 0, block, type);
      EXPECT_EQ(DVDifSequence(SharedBytes::copyOf(frame), 0).containsExpectedSections(), isExpected(block, type))
          << block << " of type " << type;
    }
  }
}

TEST(DifSequenceSections, UndecodedOneChecksTheBlocksOfSequenceZero) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 1, 4);
  DVDifSequence sequence(SharedBytes::copyOf(frame), 3);
  EXPECT_FALSE(sequence.containsExpectedSections());
  sequence.decodeSequenceBasics();
  EXPECT_TRUE(sequence.containsExpectedSections());
}

TEST(DifSequenceSections, SoundAndPictureBlocksMayChangePlaces) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 6, 4);
  setSectionType(frame, 0, 7, 3);
  EXPECT_TRUE(decodedSequence(frame, 0).containsExpectedSections());
}

TEST(DifSequenceSections, ShortBufferIsCheckedAsFarAsItGoes) {
  const FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  const auto isExpected = [&frame](std::size_t size) {
    return DVDifSequence(SharedBytes::copyOf(std::span(frame).first(size)), 0).containsExpectedSections();
  };
  EXPECT_FALSE(isExpected(79));
  EXPECT_TRUE(isExpected(80));
  EXPECT_TRUE(isExpected(500));
}

TEST(DifSequenceSections, BlockThatTheBufferCutsOffIsNotChecked) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 1, 4);
  const auto isExpected = [&frame](std::size_t size) {
    return DVDifSequence(SharedBytes::copyOf(std::span(frame).first(size)), 0).containsExpectedSections();
  };
  EXPECT_TRUE(isExpected(159));
  EXPECT_FALSE(isExpected(160));
}

TEST(DifSequenceSections, BlocksCountedFromTheWholeBufferMayLieOutsideIt) {
  // The buffer has 150 blocks, but those of sequence 1 are behind its end.
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  frame.resize(SEQUENCE_SIZE);
  setSequenceNumber(frame, 0, 1);
  DVDifSequence sequence(SharedBytes::copyOf(frame), 0);
  sequence.decodeSequenceBasics();
  EXPECT_THROW((void)sequence.containsExpectedSections(), std::out_of_range);
}

}  // namespace
}  // namespace zq

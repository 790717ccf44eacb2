// What a worn tape or a dirty head does to the frames.

#include "backends/deck/frame_faults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/deck_rig.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using test::DeckRig;
using test::DeckTape;
using test::kDeckPlay;
using test::ScratchFolder;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

SharedBytes datedFrame(DVSystem system, int number = 0) {
  FrameStamp stamp;
  stamp.timecode = test::timecodeOf(1, 2, 3, number % 25, system == kPal ? 1 : 2);
  stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
  return test::makeFrame(system, stamp);
}

std::span<const std::uint8_t> sequenceOf(const SharedBytes& frame, std::size_t index) {
  return frame.bytes().subspan(index * SEQUENCE_SIZE, SEQUENCE_SIZE);
}

/// Which of the frame's sequences are as in `original`.
std::vector<bool> sameSequences(const SharedBytes& frame, const SharedBytes& original) {
  std::vector<bool> same;
  for (std::size_t i = 0; i < frame.size() / SEQUENCE_SIZE; ++i) {
    same.push_back(std::ranges::equal(sequenceOf(frame, i), sequenceOf(original, i)));
  }
  return same;
}

class FrameFault : public testing::TestWithParam<DVSystem> {
 protected:
  static DeckFaults only(double DeckFaults::*fault, double probability = 1) {
    DeckFaults faults;
    faults.*fault = probability;
    return faults;
  }
};

INSTANTIATE_TEST_SUITE_P(Systems, FrameFault, testing::Values(kPal, kNtsc),
                         [](const auto& each) { return each.param == kPal ? "Pal" : "Ntsc"; });

TEST_P(FrameFault, NoneIsOnByDefault) {
  FrameFaults faults({}, 1);
  const SharedBytes frame = datedFrame(GetParam());
  for (int i = 0; i < 1000; ++i) {
    const auto out = faults.pass(frame, i % 2 == 0);
    ASSERT_TRUE(out);
    ASSERT_TRUE(out->sameBufferAs(frame));
  }
}

TEST_P(FrameFault, ADroppedFrameDoesNotArrive) {
  FrameFaults faults(only(&DeckFaults::droppedFrames), 1);
  EXPECT_FALSE(faults.pass(datedFrame(GetParam()), false));
}

TEST_P(FrameFault, ADamagedFrameLacksASequenceAndConcealsPictureBlocks) {
  FrameFaults faults(only(&DeckFaults::damagedFrames), 1);
  const SharedBytes frame = datedFrame(GetParam());
  const std::vector<std::uint8_t> before(frame.bytes().begin(), frame.bytes().end());
  const auto out = faults.pass(frame, false);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), frame.size());
  int lostSequences = 0;
  int concealed = 0;
  for (std::size_t i = 0; i < out->size() / SEQUENCE_SIZE; ++i) {
    const auto sequence = sequenceOf(*out, i);
    lostSequences += std::ranges::all_of(sequence, [](std::uint8_t byte) { return byte == 0; }) ? 1 : 0;
    for (std::size_t block = 0; block < BLOCKS_PER_SEQUENCE; ++block) {
      const auto bytes = sequence.subspan(block * BLOCKS_SIZE, BLOCKS_SIZE);
      if (bytes[0] >> 5 == 4 && bytes[3] >> 4 == 0xA) ++concealed;
    }
  }
  EXPECT_EQ(lostSequences, 1);
  EXPECT_GT(concealed, 135 * 4);
  EXPECT_TRUE(std::ranges::equal(frame.bytes(), before)) << "the tape itself stays as it is";
}

TEST_P(FrameFault, AnUndatedFrameKeepsItsTimecodeAndItsPicture) {
  FrameFaults faults(only(&DeckFaults::undatedFrames), 1);
  const SharedBytes frame = datedFrame(GetParam());
  ASSERT_TRUE(scanRecordingDate(frame).date);
  const auto out = faults.pass(frame, false);
  ASSERT_TRUE(out);
  EXPECT_FALSE(scanRecordingDate(*out).date);
  EXPECT_EQ(firstTimecode(*out), firstTimecode(frame));
  for (std::size_t i = 0; i < out->size(); ++i) {
    const std::size_t block = i / BLOCKS_SIZE % BLOCKS_PER_SEQUENCE;
    if (block == 1 || block == 2) continue;
    ASSERT_EQ(out->bytes()[i], frame.bytes()[i]) << "byte " << i;
  }
}

TEST_P(FrameFault, AStaleSearchFrameHasHalfItsSequencesFromTheOneBefore) {
  FrameFaults faults(only(&DeckFaults::staleSearchFrames), 1);
  const SharedBytes first = datedFrame(GetParam(), 3);
  const SharedBytes second = datedFrame(GetParam(), 9);
  EXPECT_TRUE(faults.pass(first, true)->sameBufferAs(first)) << "nothing came before it";
  const auto out = faults.pass(second, true);
  ASSERT_TRUE(out);
  const std::vector<bool> fromSecond = sameSequences(*out, second);
  const std::vector<bool> fromFirst = sameSequences(*out, first);
  EXPECT_EQ(std::count(fromSecond.begin(), fromSecond.end(), true), sequenceCountOf(GetParam()) / 2);
  EXPECT_EQ(std::count(fromFirst.begin(), fromFirst.end(), true), sequenceCountOf(GetParam()) / 2);
}

TEST_P(FrameFault, FramesAreStaleInSearchOnly) {
  FrameFaults faults(only(&DeckFaults::staleSearchFrames), 1);
  for (int i = 0; i < 5; ++i) {
    const SharedBytes frame = datedFrame(GetParam(), i);
    EXPECT_TRUE(faults.pass(frame, false)->sameBufferAs(frame));
  }
}

TEST_P(FrameFault, AFrameOfTheOtherSystemIsNeverStale) {
  FrameFaults faults(only(&DeckFaults::staleSearchFrames), 1);
  faults.pass(datedFrame(GetParam() == kPal ? kNtsc : kPal), true);
  const SharedBytes frame = datedFrame(GetParam());
  EXPECT_TRUE(faults.pass(frame, true)->sameBufferAs(frame));
}

TEST_P(FrameFault, StrikesAboutAsOftenAsItIsToldTo) {
  for (const auto fault : {&DeckFaults::droppedFrames, &DeckFaults::undatedFrames}) {
    FrameFaults faults(only(fault, 0.2), 11);
    const SharedBytes frame = datedFrame(GetParam());
    int struck = 0;
    for (int i = 0; i < 1000; ++i) {
      const auto out = faults.pass(frame, false);
      if (!out || !out->sameBufferAs(frame)) ++struck;
    }
    EXPECT_NEAR(struck, 200, 50);
  }
}

TEST_P(FrameFault, TheSameSeedSpoilsTheSameFramesInTheSameWay) {
  DeckFaults mixed;
  mixed.droppedFrames = mixed.damagedFrames = mixed.undatedFrames = mixed.staleSearchFrames = 0.3;
  const auto run = [&](std::uint64_t seed) {
    FrameFaults faults(mixed, seed);
    std::vector<std::vector<std::uint8_t>> out;
    for (int i = 0; i < 30; ++i) {
      const auto passed = faults.pass(datedFrame(GetParam(), i), true);
      out.emplace_back();
      if (passed) out.back().assign(passed->bytes().begin(), passed->bytes().end());
    }
    return out;
  };
  const auto first = run(5);
  EXPECT_TRUE(first == run(5));
  EXPECT_FALSE(first == run(6));
}

class FaultyDeck : public testing::Test {
 protected:
  /// The numbers of the frames that a faulty deck delivers of 400.
  std::vector<std::int64_t> delivered(const DeckFaults& faults, std::uint64_t seed) {
    DeckOptions options;
    options.faults = faults;
    options.seed = seed;
    DeckRig rig(DeckTape(folder_.file("tape.dv")).add(kPal, 400).path(), options);
    rig.command(kDeckPlay);
    rig.runFor(60s);
    return rig.sink.numbers();
  }

  ScratchFolder folder_;
};

TEST_F(FaultyDeck, DropsFramesWithoutLosingItsPlace) {
  DeckFaults faults;
  faults.droppedFrames = 0.25;
  const std::vector<std::int64_t> numbers = delivered(faults, 3);
  EXPECT_NEAR(static_cast<double>(numbers.size()), 300, 45);
  EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
  EXPECT_EQ(numbers, delivered(faults, 3));
  EXPECT_NE(numbers, delivered(faults, 4));
}

TEST_F(FaultyDeck, DeliversEveryFrameWithoutFaults) {
  EXPECT_EQ(delivered({}, 3).size(), 400U);
  EXPECT_EQ(delivered({}, 4).size(), 400U);
}

TEST_F(FaultyDeck, SearchFramesAreStaleOnTheWayOut) {
  DeckOptions options;
  options.faults.staleSearchFrames = 1;
  DeckRig rig(DeckTape(folder_.file("tape.dv")).add(kPal, 100).path(), options);
  rig.sink.keepFrames = true;
  rig.command({1, 13000});
  rig.runFor(test::deckTick(kPal, 3) - 1ms);
  ASSERT_EQ(rig.sink.frames.size(), 3U);
  const auto location = rig.image->locate(2);
  const SharedBytes whole = rig.image->frameBytes(*location.value()).value();
  const std::vector<bool> same = sameSequences(rig.sink.frames[1], whole);
  EXPECT_TRUE(same.front());
  EXPECT_EQ(rig.sink.numbers()[1], 2);
}

}  // namespace
}  // namespace zq::backend

// The frames of a tape image, and files that change while they are read.

#include "backends/deck/tape_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>

#include "support/deck_tapes.h"

namespace zq::backend {
namespace {

using test::DeckTape;
using test::FrameBytes;
using test::ScratchFolder;
using testing::HasSubstr;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

class TapeImages : public testing::Test {
 protected:
  std::shared_ptr<TapeImage> open(const std::string& path) {
    auto tape = TapeImage::open(path);
    if (!tape.ok()) throw std::runtime_error(tape.error().text());
    return tape.value();
  }
  Expected<SharedBytes> frame(TapeImage& tape, std::int64_t number) {
    return tape.frameBytes(*tape.locate(number).value());
  }

  ScratchFolder folder_;
};

TEST_F(TapeImages, FramesAreTheBytesOfTheFile) {
  std::mt19937 random(3);
  FrameBytes file;
  for (int i = 0; i < 130; ++i) {
    FrameBytes bytes = test::makeFrameBytes(i < 70 ? kNtsc : kPal);
    for (std::size_t at = 7 * BLOCKS_SIZE + 4; at < 10 * BLOCKS_SIZE; ++at)
      bytes[at] = static_cast<std::uint8_t>(random());
    file.insert(file.end(), bytes.begin(), bytes.end());
  }
  const auto tape = open(folder_.fileWith("tape.dv", file));
  std::vector<std::int64_t> order(130);
  std::iota(order.begin(), order.end(), 0);
  for (int pass = 0; pass < 3; ++pass) {
    for (const std::int64_t number : order) {
      const auto location = tape->locate(number);
      auto bytes = tape->frameBytes(*location.value());
      ASSERT_TRUE(bytes.ok()) << bytes.error().text();
      ASSERT_EQ(bytes.value().size(), frameSizeOf(location.value()->system));
      ASSERT_TRUE(std::equal(bytes.value().bytes().begin(), bytes.value().bytes().end(),
                             file.begin() + static_cast<std::ptrdiff_t>(location.value()->offset)))
          << "frame " << number << ", pass " << pass;
    }
    pass == 0 ? std::reverse(order.begin(), order.end()) : std::shuffle(order.begin(), order.end(), random);
  }
}

TEST_F(TapeImages, ABufferIsUsedAgainWhenItsFrameHasGone) {
  const auto tape = open(DeckTape(folder_.file("tape.dv")).add(kPal, 6).path());
  const std::uint8_t* first = frame(*tape, 0).value().data();
  EXPECT_EQ(frame(*tape, 1).value().data(), first);
  const SharedBytes held = frame(*tape, 2).value();
  EXPECT_NE(frame(*tape, 3).value().data(), held.data());
}

TEST_F(TapeImages, AHeldFrameStaysAsItIsWhileOthersAreRead) {
  const auto tape = open(DeckTape(folder_.file("tape.dv")).add(kPal, 50).add(kNtsc, 50).path());
  std::mt19937 random(1);
  std::vector<std::pair<std::int64_t, SharedBytes>> held;
  for (int i = 0; i < 2000; ++i) {
    const auto number = static_cast<std::int64_t>(random() % 100);
    held.emplace_back(number, frame(*tape, number).value());
    if (held.size() > 20) held.erase(held.begin() + static_cast<std::ptrdiff_t>(random() % held.size()));
    for (const auto& [heldNumber, bytes] : held) {
      ASSERT_EQ(test::deckFrameNumber(bytes.bytes()), heldNumber);
      ASSERT_EQ(bytes.size(), frameSizeOf(heldNumber < 50 ? kPal : kNtsc));
    }
  }
}

TEST_F(TapeImages, AHeldFrameOutlivesTheTapeAndItsFile) {
  const std::string path = DeckTape(folder_.file("tape.dv")).add(kPal, 6).path();
  SharedBytes held;
  {
    const auto tape = open(path);
    held = frame(*tape, 4).value();
  }
  std::filesystem::resize_file(path, 0);
  std::filesystem::remove(path);
  EXPECT_EQ(test::deckFrameNumber(held.bytes()), 4);
}

/// Kilobytes of the process that no file stands behind.
long anonymousKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long kilobytes = 0;
  while (status >> word) {
    if (word == "RssAnon:") status >> kilobytes;
  }
  return kilobytes;
}

TEST_F(TapeImages, PlayingALongTapeTakesNoMoreMemoryThanTheFramesThatAreHeld) {
  const auto tape = open(DeckTape(folder_.file("tape.dv")).add(kPal, 400).path());
  const long before = anonymousKilobytes();
  std::deque<SharedBytes> held;
  for (std::int64_t number = 0; number < 400; ++number) {
    held.push_back(frame(*tape, number).value());
    if (held.size() > 10) held.pop_front();
  }
  EXPECT_LT(anonymousKilobytes() - before, 20'000) << "400 frames are 57 megabytes, 11 are less than two";
}

TEST_F(TapeImages, AFrameThatTheFileHasLostIsAnErrorAndThoseBeforeItAreNot) {
  DeckTape file(folder_.file("tape.dv"));
  const auto tape = open(file.add(kPal, 20).path());
  ASSERT_TRUE(tape->locate(19).value().has_value());
  const SharedBytes held = frame(*tape, 15).value();
  file.setSize(10 * frameSizeOf(kPal) + 5000);
  EXPECT_EQ(test::deckFrameNumber(frame(*tape, 9).value().bytes()), 9);
  for (const std::int64_t lost : {10, 11, 19}) {
    const auto next = frame(*tape, lost);
    ASSERT_FALSE(next.ok()) << "frame " << lost;
    EXPECT_THAT(next.error().text(), HasSubstr("became shorter while it was read"));
    EXPECT_THAT(next.error().text(), HasSubstr("tape.dv"));
  }
  EXPECT_EQ(test::deckFrameNumber(held.bytes()), 15);
}

TEST_F(TapeImages, LocatingInAFileThatShrankIsAnError) {
  DeckTape file(folder_.file("tape.dv"));
  const auto tape = open(file.add(kPal, 20).path());
  file.setSize(3 * frameSizeOf(kPal));
  const auto location = tape->locate(15);
  ASSERT_FALSE(location.ok());
  EXPECT_THAT(location.error().text(), HasSubstr("became shorter while it was read"));
  EXPECT_FALSE(tape->trailingBytes().ok());
}

TEST_F(TapeImages, AFileThatGrowsIsPlayedAsItWasWhenItWasOpened) {
  DeckTape file(folder_.file("tape.dv"));
  const auto tape = open(file.add(kPal, 5).path());
  file.setSize(9 * frameSizeOf(kPal));
  EXPECT_TRUE(tape->locate(4).value().has_value());
  EXPECT_FALSE(tape->locate(5).value().has_value());
}

TEST_F(TapeImages, AFileThatIsOpenedAgainIsTheSameOneWhateverHasItsPathNow) {
  const FrameBytes first = test::makeFrameBytes(kNtsc);
  const std::string path = folder_.fileWith("tape.dv", first);
  const auto file = TapeFile::open(path);
  ASSERT_TRUE(file.ok());
  std::filesystem::remove(path);
  folder_.fileWith("tape.dv", test::makeFrameBytes(kPal));
  const auto again = file.value()->openedAgain();
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->size(), first.size());
  FrameBytes bytes(first.size());
  ASSERT_TRUE(again->read(bytes, 0).ok());
  EXPECT_EQ(bytes, first);
}

}  // namespace
}  // namespace zq::backend

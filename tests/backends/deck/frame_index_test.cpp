// Where the frames of a tape lie, damaged ones among them.

#include "backends/deck/frame_index.h"

#include <gtest/gtest.h>

#include <chrono>

#include "backends/deck/tape_image.h"
#include "support/deck_tapes.h"

namespace zq::backend {

inline void PrintTo(const FrameLocation& location, std::ostream* out) {
  *out << "frame " << location.frame << " at " << location.offset << ", " << nameOf(location.system);
}

namespace {

using test::DeckTape;
using test::ScratchFolder;
using Frame = DeckTape::Frame;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

class FrameIndexing : public testing::TestWithParam<DVSystem> {
 protected:
  /// The index finds each frame where the tape has it, and no more.
  void expectFramesOf(DeckTape& tape) { expectFrames(tape.path(), tape.places()); }

  static void expectFrames(const std::string& path, const std::vector<DeckTape::Place>& places) {
    auto file = TapeFile::open(path);
    ASSERT_TRUE(file.ok()) << file.error().text();
    auto index = FrameIndex::open(file.value());
    ASSERT_TRUE(index.ok()) << index.error().text();
    std::vector<DeckTape::Place> found;
    for (std::int64_t frame = 0;; ++frame) {
      auto location = index.value().locate(frame);
      ASSERT_TRUE(location.ok()) << location.error().text();
      if (!location.value()) break;
      EXPECT_EQ(location.value()->frame, frame);
      found.push_back({location.value()->offset, location.value()->system});
    }
    ASSERT_EQ(found.size(), places.size());
    for (std::size_t i = 0; i < places.size(); ++i) EXPECT_EQ(found[i], places[i]) << "frame " << i;
  }

  std::uint64_t trailingBytesOf(const std::string& path) {
    auto image = TapeImage::open(path);
    EXPECT_TRUE(image.ok());
    auto trailing = image.value()->trailingBytes();
    EXPECT_TRUE(trailing.ok());
    EXPECT_EQ(image.value()->trailingBytes().value(), trailing.value()) << "the second time";
    return trailing.value();
  }

  DVSystem system() const { return GetParam(); }
  DVSystem other() const { return system() == kPal ? kNtsc : kPal; }

  ScratchFolder folder_;
  DeckTape tape_{folder_.file("tape.dv")};
};

INSTANTIATE_TEST_SUITE_P(Systems, FrameIndexing, testing::Values(kPal, kNtsc),
                         [](const auto& each) { return each.param == kPal ? "Pal" : "Ntsc"; });

TEST_P(FrameIndexing, FindsTheFramesOfOneSystem) {
  tape_.add(system(), 12);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, FollowsAChangeOfSystemInMidFileAndBack) {
  tape_.add(system(), 4).add(other(), 3).add(system(), 5).add(other(), 1);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, FollowsAChangeAtEachFrame) {
  for (int i = 0; i < 6; ++i) tape_.add(system()).add(other());
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ABlankFrameInTheMiddleHasTheSizeOfItsNeighbours) {
  tape_.add(system(), 3).blank(system()).add(system(), 3).blank(system(), 4).add(system(), 2);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ABlankFirstFrameHasTheSystemOfTheOneAfterIt) {
  tape_.blank(system()).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ManyBlankFramesMayLeadIn) {
  tape_.blank(system(), 30).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AMinuteOfBlankFramesMayLeadIn) {
  tape_.blank(system(), 1500).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ABlankLastFrameIsAFrame) {
  tape_.add(system(), 3).blank(system());
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, SeveralBlankLastFramesAreFrames) {
  tape_.add(system(), 3).blank(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AFlippedSystemBitChangesNothing) {
  tape_.add(system(), 3).add(system(), 1, Frame::flippedSystem).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AFlippedSystemBitInTheFirstFrameChangesNothing) {
  tape_.add(system(), 1, Frame::flippedSystem).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AFlippedSystemBitInTheLastFrameChangesNothing) {
  tape_.add(system(), 3).add(system(), 1, Frame::flippedSystem);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AFlippedSystemBitBesideABlankFrameChangesNothing) {
  tape_.add(system(), 3).add(system(), 1, Frame::flippedSystem).blank(system()).add(system(), 3);
  tape_.blank(system()).add(system(), 2, Frame::flippedSystem).blank(system(), 2).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ABlankLastFrameBeforeAChangeOfSystemHasItsOwnSize) {
  tape_.add(system(), 3).blank(system()).add(other(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ABlankFirstFrameAfterAChangeOfSystemHasItsOwnSize) {
  tape_.add(system(), 3).blank(other()).add(other(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AFlippedSystemBitAtAChangeOfSystemChangesNothing) {
  tape_.add(system(), 3).add(system(), 1, Frame::flippedSystem).add(other(), 3);
  tape_.add(system(), 1, Frame::flippedSystem).add(system(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, AChangeOfSystemBeforeABlankFrameIsSeen) {
  tape_.add(system(), 3).add(other()).blank(other()).add(other(), 3);
  expectFramesOf(tape_);
}

TEST_P(FrameIndexing, ATapeThatEndsInsideAFrameHasAllItsWholeFrames) {
  tape_.add(system(), 4);
  const std::uint64_t whole = tape_.size();
  const std::vector<DeckTape::Place> places = tape_.places();
  tape_.add(system());
  const std::string path = tape_.path();
  for (const std::uint64_t rest :
       {std::uint64_t{1}, std::uint64_t{239}, std::uint64_t{240}, std::uint64_t{12000}, std::uint64_t{24000},
        std::uint64_t{100000}, std::uint64_t{119999}, frameSizeOf(system()) - 1}) {
    tape_.setSize(whole + rest);
    SCOPED_TRACE(rest);
    expectFrames(path, places);
    EXPECT_EQ(trailingBytesOf(path), rest);
  }
}

TEST_P(FrameIndexing, BytesAfterTheLastFrameAreCounted) {
  tape_.add(system(), 3);
  const std::string path = tape_.path();
  for (const std::uint64_t rest : {std::uint64_t{0}, std::uint64_t{512}, std::uint64_t{24000}, std::uint64_t{96000}}) {
    tape_.setSize(tape_.size() + rest);
    SCOPED_TRACE(rest);
    expectFrames(path, tape_.places());
    EXPECT_EQ(trailingBytesOf(path), rest);
  }
}

// 120000 bytes of a 625/50 frame are as many as a whole 525/60 frame has.
TEST(FrameIndexAtTheEnd, A625FrameCutByTheDifferenceOfTheSystemsIsNo525Frame) {
  const ScratchFolder folder;
  DeckTape tape(folder.file("tape.dv"));
  const std::string path = tape.add(kPal, 4).path();
  tape.setSize(tape.size() - 24000);
  auto image = TapeImage::open(path);
  ASSERT_TRUE(image.ok());
  EXPECT_TRUE(image.value()->locate(2).value().has_value());
  EXPECT_FALSE(image.value()->locate(3).value().has_value());
  EXPECT_EQ(image.value()->trailingBytes().value(), 120000U);
}

TEST(FrameIndexAtTheEnd, ABlankFrameOfTheOtherSystemCanEndATape) {
  const ScratchFolder folder;
  DeckTape tape(folder.file("tape.dv"));
  const std::string path = tape.add(kPal, 3).blank(kNtsc).path();
  auto image = TapeImage::open(path);
  ASSERT_TRUE(image.ok());
  EXPECT_EQ(image.value()->locate(3).value()->system, kNtsc);
  EXPECT_EQ(image.value()->trailingBytes().value(), 0U);
}

TEST_P(FrameIndexing, FramesCanBeAskedForInAnyOrder) {
  tape_.add(system(), 5).add(other(), 5).add(system(), 5);
  auto image = TapeImage::open(tape_.path());
  ASSERT_TRUE(image.ok());
  for (const std::int64_t frame : {14, 0, 9, 10, 4, 5, 13, 1, 14}) {
    const auto place = tape_.places()[static_cast<std::size_t>(frame)];
    const auto location = image.value()->locate(frame);
    ASSERT_TRUE(location.ok() && location.value());
    EXPECT_EQ(location.value()->offset, place.offset);
    EXPECT_EQ(location.value()->system, place.system);
    EXPECT_EQ(location.value()->end(), place.offset + frameSizeOf(place.system));
  }
  EXPECT_FALSE(image.value()->locate(15).value().has_value());
  EXPECT_FALSE(image.value()->locate(1'000'000).value().has_value());
}

TEST_P(FrameIndexing, GoingFromFrameToFrameFindsTheSameOnes) {
  tape_.add(system(), 3).blank(system()).add(other(), 3).add(other(), 1, Frame::flippedSystem).add(system(), 2);
  auto file = TapeFile::open(tape_.path());
  auto index = FrameIndex::open(file.value());
  ASSERT_TRUE(index.ok());
  std::optional<FrameLocation> location = index.value().locate(0).value();
  for (std::size_t i = 0; i < tape_.places().size(); ++i) {
    ASSERT_TRUE(location.has_value()) << "frame " << i;
    EXPECT_EQ(location->offset, tape_.places()[i].offset);
    EXPECT_EQ(location->system, tape_.places()[i].system);
    location = index.value().following(*location).value();
  }
  EXPECT_FALSE(location.has_value());
}

// Nothing but the headers is read of thirteen hours of tape.
TEST(FrameIndexOfALongTape, OpensAtOnceAndFindsAFarFrame) {
  const ScratchFolder folder;
  DeckTape tape(folder.file("long.dv"));
  const std::string path = tape.add(kPal, 3).path();
  constexpr std::int64_t kFrames = 100'000;
  const std::uint64_t size = kFrames * frameSizeOf(kPal);
  ASSERT_GT(size, 13'000'000'000U);
  tape.setSize(size);
  auto image = TapeImage::open(path);
  ASSERT_TRUE(image.ok()) << image.error().text();
  for (std::int64_t frame = 0; frame < 3; ++frame) {
    const auto location = image.value()->locate(frame);
    auto bytes = image.value()->frameBytes(*location.value());
    ASSERT_TRUE(bytes.ok());
    EXPECT_EQ(test::deckFrameNumber(bytes.value().bytes()), frame);
  }
  const auto last = image.value()->locate(kFrames - 1);
  ASSERT_TRUE(last.ok() && last.value());
  EXPECT_EQ(last.value()->end(), size);
  auto bytes = image.value()->frameBytes(*last.value());
  ASSERT_TRUE(bytes.ok());
  EXPECT_EQ(bytes.value().bytes().back(), 0);
  EXPECT_FALSE(image.value()->locate(kFrames).value().has_value());
}

}  // namespace
}  // namespace zq::backend

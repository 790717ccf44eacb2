// Random tapes against what their generator knows. A failure names its seed.

#include <gtest/gtest.h>

#include <random>

#include "backends/deck/tape_image.h"
#include "support/deck_tapes.h"

namespace zq::backend {
namespace {

using test::DeckTape;
using test::ScratchFolder;
using Frame = DeckTape::Frame;

/// Runs of both systems with damaged frames; two neighbours around a change of system are never both damaged.
class TapeGenerator {
 public:
  TapeGenerator(std::uint64_t seed, DeckTape& tape) : random_(seed), tape_(tape) {
    DVSystem system = chance(50) ? DVSystem::pal625_50 : DVSystem::ntsc525_60;
    const std::int64_t runs = 1 + pick(6);
    for (std::int64_t run = 0; run < runs; ++run) {
      addRun(system, run > 0, run + 1 < runs);
      system = system == DVSystem::pal625_50 ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
    }
  }

 private:
  // Of the three frames before a change and the three after it at most one is damaged, and the tape begins with at
  // least one frame that says its system in each run.
  void addRun(DVSystem system, bool changeBefore, bool changeAfter) {
    const std::int64_t length = 4 + pick(12);
    std::vector<Frame> frames(static_cast<std::size_t>(length), Frame::whole);
    for (std::size_t i = 0; i < frames.size(); ++i) {
      const bool nearChange = (changeBefore && i < 3) || (changeAfter && i + 3 >= frames.size());
      if (!nearChange && chance(30)) frames[i] = damage();
    }
    if (changeBefore && !damagedBeforeChange_ && chance(50)) frames.front() = damage();
    frames[frames.size() - 2] = Frame::whole;
    damagedBeforeChange_ = changeAfter && chance(50);
    if (damagedBeforeChange_) frames.back() = damage();
    for (const Frame frame : frames) tape_.add(system, 1, frame);
  }

  Frame damage() { return chance(60) ? Frame::blank : Frame::flippedSystem; }
  std::int64_t pick(std::uint64_t below) { return static_cast<std::int64_t>(random_() % below); }
  bool chance(int percent) { return pick(100) < percent; }

  std::mt19937_64 random_;
  DeckTape& tape_;
  bool damagedBeforeChange_ = false;
};

void expectEveryFrame(DeckTape& tape) {
  auto image = TapeImage::open(tape.path());
  ASSERT_TRUE(image.ok()) << image.error().text();
  for (std::size_t i = 0; i < tape.places().size(); ++i) {
    const auto location = image.value()->locate(static_cast<std::int64_t>(i));
    ASSERT_TRUE(location.ok()) << location.error().text();
    ASSERT_TRUE(location.value()) << "frame " << i;
    ASSERT_EQ(location.value()->offset, tape.places()[i].offset) << "frame " << i;
    ASSERT_EQ(location.value()->system, tape.places()[i].system) << "frame " << i;
  }
  EXPECT_FALSE(image.value()->locate(static_cast<std::int64_t>(tape.places().size())).value().has_value());
  EXPECT_EQ(image.value()->trailingBytes().value(), 0U);
}

constexpr std::uint64_t kSeedsATest = 30;

class FrameIndexSwarm : public testing::TestWithParam<std::uint64_t> {};

INSTANTIATE_TEST_SUITE_P(FromSeed, FrameIndexSwarm, testing::Range<std::uint64_t>(0, 300, kSeedsATest));

TEST_P(FrameIndexSwarm, FindsEveryFrameOfARandomTape) {
  const ScratchFolder folder;
  for (std::uint64_t seed = GetParam(); seed < GetParam() + kSeedsATest; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    DeckTape tape(folder.file("tape.dv"));
    const TapeGenerator generator(seed, tape);
    expectEveryFrame(tape);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace zq::backend

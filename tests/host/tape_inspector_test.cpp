// Going through a tape image with two threads, piece by piece, under a guess where its frames lie.

#include "host/tape_inspector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <vector>

#include "backends/time/real_runtime.h"
#include "support/deck_tapes.h"

namespace zq::host {
namespace {

using test::DeckTape;
using test::ScratchFolder;
using testing::HasSubstr;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

std::string numbersOf(std::span<const FrameRecord> records) {
  std::string text;
  for (const FrameRecord& record : records) text += std::to_string(record.frame) + ' ';
  return text;
}

class Inspecting : public testing::Test {
 protected:
  struct Result {
    std::vector<DeckTape::Place> places;
    std::string formatted;
    Status status;
    std::uint64_t trailingBytes = 0;
  };

  Result inspect(const std::string& path, const FrameFormatter& format = &numbersOf) {
    backend::RealRuntime runtime;
    auto inspector = TapeInspector::open(path, runtime);
    EXPECT_TRUE(inspector.ok()) << inspector.error().text();
    Result result;
    result.status = inspector.value()->run(format, [&](std::span<const FrameRecord> records, const std::string& text) {
      EXPECT_FALSE(records.empty());
      for (const FrameRecord& record : records) {
        EXPECT_EQ(record.frame, static_cast<std::int64_t>(result.places.size()));
        result.places.push_back({record.offset, record.system});
      }
      result.formatted += text;
    });
    result.trailingBytes = inspector.value()->trailingBytes();
    return result;
  }

  void expectFramesOf(DeckTape& tape) {
    const Result result = inspect(tape.path());
    EXPECT_TRUE(result.status.ok()) << result.status.error().text();
    ASSERT_EQ(result.places.size(), tape.places().size());
    std::string numbers;
    for (std::size_t i = 0; i < result.places.size(); ++i) {
      ASSERT_EQ(result.places[i], tape.places()[i]) << "frame " << i;
      numbers += std::to_string(i) + ' ';
    }
    EXPECT_EQ(result.formatted, numbers);
    EXPECT_EQ(result.trailingBytes, 0U);
  }

  ScratchFolder folder_;
};

TEST_F(Inspecting, GivesEachFrameOnceWhateverTheNumberOfPieces) {
  for (const int frames : {1, 2, 3, 223, 224, 225, 447, 448, 449, 900, 1500}) {
    SCOPED_TRACE(frames);
    DeckTape tape(folder_.file("tape.dv"));
    tape.add(kPal, frames);
    expectFramesOf(tape);
  }
}

TEST_F(Inspecting, FollowsAChangeOfSystemAtTheEdgesOfPieces) {
  for (const int frames : {222, 223, 224, 225, 447, 448, 449}) {
    SCOPED_TRACE(frames);
    DeckTape tape(folder_.file("tape.dv"));
    tape.add(kPal, frames).add(kNtsc, 300).add(kPal, 2);
    expectFramesOf(tape);
  }
}

TEST_F(Inspecting, FindsTheFramesOfRandomTapesWhereTheyAre) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    DeckTape tape(folder_.file("tape.dv"));
    tape.add(random() % 2 == 0 ? kPal : kNtsc, 2);
    for (int i = 0; i < 6; ++i) {
      const DVSystem system = random() % 3 == 0 ? kNtsc : kPal;
      tape.add(system, 1 + random() % 400);
      if (random() % 2 == 0) tape.blank(system, 1 + random() % 2);
      tape.add(system, 2);
    }
    expectFramesOf(tape);
  }
}

TEST_F(Inspecting, CountsTheBytesBehindTheLastWholeFrame) {
  DeckTape tape(folder_.file("tape.dv"));
  tape.add(kPal, 700).path();
  tape.setSize(tape.size() - 1000);
  const Result result = inspect(folder_.file("tape.dv"));
  EXPECT_TRUE(result.status.ok());
  EXPECT_EQ(result.places.size(), 699U);
  EXPECT_EQ(result.trailingBytes, 143000U);
}

// The pieces behind the first two are not begun before the first one is formatted. The last frame that was read has
// nothing behind it that bears it out.
TEST_F(Inspecting, ATapeThatIsCutShortMeanwhileIsAnErrorAndWhatCameBeforeIsKept) {
  DeckTape tape(folder_.file("tape.dv"));
  tape.add(kPal, 2000).path();
  std::atomic<bool> isCut = false;
  const auto result = inspect(folder_.file("tape.dv"), [&](std::span<const FrameRecord> records) {
    if (!isCut.exchange(true)) tape.setSize(100 * frameSizeOf(kPal));
    return numbersOf(records);
  });
  ASSERT_FALSE(result.status.ok());
  EXPECT_THAT(result.status.error().text(), HasSubstr("became shorter while it was read"));
  EXPECT_GE(result.places.size(), 99U);
  EXPECT_LT(result.places.size(), 2000U);
  for (std::size_t i = 0; i < result.places.size(); ++i) EXPECT_EQ(result.places[i], tape.places()[i]);
}

}  // namespace
}  // namespace zq::host

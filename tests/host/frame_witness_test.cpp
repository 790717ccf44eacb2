#include "host/frame_witness.h"

#include <gtest/gtest.h>

#include "backends/time/real_runtime.h"
#include "support/tape_script.h"

namespace zq::host {
namespace {

using test::framesOf;
using test::timecodeOf;

/// Takes frames up to a bound, and forgets them.
class BoundedWriter final : public platform::MovieWriter {
 public:
  explicit BoundedWriter(int bound) : left_(bound) {}
  Status append(const platform::QTSampleBuffer& /*frame*/) override {
    return left_-- > 0 ? Status() : Status(Error{"full", ""});
  }
  Status finish() override { return {}; }

 private:
  int left_;
};

class BoundedWriters final : public platform::MovieWriterFactory {
 public:
  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) override {
    lastCompression = compression;
    if (path == "wrong") return Error{"no such place", ""};
    return std::unique_ptr<platform::MovieWriter>(std::make_unique<BoundedWriter>(bound));
  }
  int bound = 100;
  std::shared_ptr<const platform::QTCompressionOptions> lastCompression;
};

class FrameWitnessTest : public ::testing::Test {
 protected:
  /// Returns the status of the last frame.
  Status write(const std::string& path, int frames) {
    auto writer = witness.create(path, nullptr);
    EXPECT_TRUE(writer.ok());
    Status last;
    for (const test::ScriptFrame& frame :
         framesOf({{frames, StampDateTime{2004, 7, 15, 13, 30, 45}, timecodeOf(0, 0, 1, 0)}})) {
      platform::QTSampleBuffer buffer;
      buffer.bytesForAllSamples = SharedBytes::copyOf(frame.bytes);
      last = writer.value()->append(buffer);
    }
    EXPECT_TRUE(writer.value()->finish().ok());
    return last;
  }

  backend::RealRuntime runtime;
  BoundedWriters writers;
  FrameWitness witness{runtime, writers};
};

TEST_F(FrameWitnessTest, RemembersWhatTheFramesOfAFileSaid) {
  ASSERT_TRUE(write("a", 3).ok());
  const std::vector<FrameNote> frames = witness.takeFramesOf("a");
  ASSERT_EQ(frames.size(), 3U);
  EXPECT_EQ(frames[2].bytes, 144000U);
  EXPECT_EQ(frames[2].timecode, timecodeOf(0, 0, 1, 2, 1));
  EXPECT_EQ(frames[2].recordingDate->isoString(), "2004-07-15T13:30:45");
}

TEST_F(FrameWitnessTest, TellsEachFileOnceAndKnowsNoOther) {
  ASSERT_TRUE(write("a", 3).ok());
  ASSERT_TRUE(write("b", 2).ok());
  EXPECT_EQ(witness.takeFramesOf("b").size(), 2U);
  EXPECT_EQ(witness.takeFramesOf("a").size(), 3U);
  EXPECT_EQ(witness.takeFramesOf("a").size(), 0U);
  EXPECT_EQ(witness.takeFramesOf("c").size(), 0U);
}

TEST_F(FrameWitnessTest, AFrameThatTheWriterDidNotTakeIsNone) {
  writers.bound = 2;
  EXPECT_FALSE(write("a", 5).ok());
  EXPECT_EQ(witness.takeFramesOf("a").size(), 2U);
}

TEST_F(FrameWitnessTest, PassesOnTheErrorOfTheWriters) {
  const auto writer = witness.create("wrong", nullptr);
  ASSERT_FALSE(writer.ok());
  EXPECT_EQ(writer.error().message, "no such place");
}

}  // namespace
}  // namespace zq::host

#include "backends/session/sample_attributes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dv_frames.h"

namespace zq::backend {
namespace {

using platform::SceneChangeType;
using test::timecodeOf;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr SceneChangeType kNone = SceneChangeType::none;
constexpr SceneChangeType kBreak = SceneChangeType::timeStampDiscontinuity;
constexpr SceneChangeType kExplicit = SceneChangeType::explicitChange;

class SampleAttributesTest : public testing::Test {
 protected:
  platform::QTSampleBuffer frame(DVSystem system, const FrameStamp& stamp) {
    return attributes_.next({platform::QTMediaTypeVideo, platform::fourCharCode("dvc ")},
                            test::makeFrame(system, stamp));
  }
  SceneChangeType at(DVSystem system, int hours, int minutes, int seconds, int frames) {
    FrameStamp stamp;
    stamp.timecode = timecodeOf(hours, minutes, seconds, frames);
    return frame(system, stamp).sceneChangeType;
  }
  SceneChangeType pal(int hours, int minutes, int seconds, int frames) {
    return at(kPal, hours, minutes, seconds, frames);
  }
  SceneChangeType ntsc(int hours, int minutes, int seconds, int frames) {
    return at(kNtsc, hours, minutes, seconds, frames);
  }
  SceneChangeType withoutTimecode(DVSystem system) { return frame(system, {}).sceneChangeType; }

 private:
  SampleAttributes attributes_;
};

TEST_F(SampleAttributesTest, AFrameWithoutATimecodeHasNoTimecodeAttribute) {
  const auto buffer = frame(kPal, {});
  EXPECT_EQ(buffer.smpteTime, nullptr);
  EXPECT_FALSE(buffer.dropFrame);
  EXPECT_EQ(buffer.sceneChangeType, kNone);
}

TEST_F(SampleAttributesTest, TheTimecodeSaysItsSystem) {
  FrameStamp stamp;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  const auto palBuffer = frame(kPal, stamp);
  ASSERT_NE(palBuffer.smpteTime, nullptr);
  EXPECT_EQ(*palBuffer.smpteTime, timecodeOf(1, 2, 3, 4, 1));
  const auto ntscBuffer = frame(kNtsc, stamp);
  ASSERT_NE(ntscBuffer.smpteTime, nullptr);
  EXPECT_EQ(*ntscBuffer.smpteTime, timecodeOf(1, 2, 3, 4, 2));
}

TEST_F(SampleAttributesTest, TheDropFrameFlagIsThatOf525Frames) {
  FrameStamp stamp;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  EXPECT_FALSE(frame(kNtsc, stamp).dropFrame);
  stamp.dropFrame = true;
  EXPECT_TRUE(frame(kNtsc, stamp).dropFrame);
  EXPECT_FALSE(frame(kPal, stamp).dropFrame);
}

TEST_F(SampleAttributesTest, TheBytesAndTheFormatAreTheDevicesOwn) {
  SampleAttributes attributes;
  const SharedBytes bytes = test::makeFrame(kPal);
  const auto buffer = attributes.next({"kind", 77}, bytes);
  EXPECT_TRUE(buffer.bytesForAllSamples.sameBufferAs(bytes));
  EXPECT_EQ(buffer.lengthForAllSamples(), frameSizeOf(kPal));
  EXPECT_EQ(buffer.formatDescription.mediaType, "kind");
  EXPECT_EQ(buffer.formatDescription.formatType, 77U);
}

TEST_F(SampleAttributesTest, AFrameThatIsNoFrameHasNothing) {
  SampleAttributes attributes;
  const auto buffer = attributes.next({}, test::makeFrame(kPal).size() == 0 ? SharedBytes() : SharedBytes::copyOf({}));
  EXPECT_EQ(buffer.smpteTime, nullptr);
  EXPECT_EQ(buffer.sceneChangeType, kNone);
}

TEST_F(SampleAttributesTest, TheFirstFrameFollowsNothing) {
  EXPECT_EQ(pal(10, 20, 30, 5), kNone);
}

TEST_F(SampleAttributesTest, ARunningTimecodeFollows) {
  EXPECT_EQ(pal(0, 59, 59, 23), kNone);
  EXPECT_EQ(pal(0, 59, 59, 24), kNone);
  EXPECT_EQ(pal(1, 0, 0, 0), kNone);
  EXPECT_EQ(pal(1, 0, 0, 1), kNone);
}

TEST_F(SampleAttributesTest, ATimecodeThatStartsAgainAtZeroDoesNotFollow) {
  pal(0, 3, 20, 11);
  EXPECT_EQ(pal(0, 0, 0, 0), kBreak);
  EXPECT_EQ(pal(0, 0, 0, 1), kNone);
}

TEST_F(SampleAttributesTest, ARepeatedTimecodeDoesNotFollow) {
  pal(0, 3, 20, 11);
  EXPECT_EQ(pal(0, 3, 20, 11), kBreak);
  EXPECT_EQ(pal(0, 3, 20, 12), kNone);
}

TEST_F(SampleAttributesTest, ASkippedFrameDoesNotFollow) {
  pal(0, 3, 20, 11);
  EXPECT_EQ(pal(0, 3, 20, 13), kBreak);
  EXPECT_EQ(pal(0, 3, 20, 12), kBreak);
}

TEST_F(SampleAttributesTest, MidnightDoesNotFollow) {
  pal(23, 59, 59, 24);
  EXPECT_EQ(pal(0, 0, 0, 0), kBreak);
}

TEST_F(SampleAttributesTest, DropFrameCountingLeavesTwoNumbersOutEachMinuteButTheTenth) {
  EXPECT_EQ(ntsc(0, 0, 59, 28), kNone);
  EXPECT_EQ(ntsc(0, 0, 59, 29), kNone);
  EXPECT_EQ(ntsc(0, 1, 0, 2), kNone);
  EXPECT_EQ(ntsc(0, 1, 0, 3), kNone);
  EXPECT_EQ(ntsc(0, 9, 59, 29), kBreak);
  EXPECT_EQ(ntsc(0, 10, 0, 0), kNone);
  EXPECT_EQ(ntsc(0, 10, 0, 1), kNone);
}

TEST_F(SampleAttributesTest, TheTenthMinuteLeavesNothingOut) {
  ntsc(0, 9, 59, 29);
  EXPECT_EQ(ntsc(0, 10, 0, 2), kBreak);
}

TEST_F(SampleAttributesTest, PlainCountingAt30FramesFollowsToo) {
  EXPECT_EQ(ntsc(0, 0, 59, 29), kNone);
  EXPECT_EQ(ntsc(0, 1, 0, 0), kNone);
  EXPECT_EQ(ntsc(0, 1, 0, 1), kNone);
  EXPECT_EQ(ntsc(0, 1, 0, 2), kNone);
}

// Drop-frame counting has no 00:01:00:00, so nothing but the plain count can say whether it follows.
TEST_F(SampleAttributesTest, TwoFramesThatAreMissingAtAMinuteOfAPlainCountAreSeen) {
  ntsc(0, 0, 59, 27);
  EXPECT_EQ(ntsc(0, 1, 0, 0), kBreak);
  EXPECT_EQ(ntsc(0, 1, 0, 4), kBreak);
}

TEST_F(SampleAttributesTest, ThereIsNoDropFrameCountingAt25Frames) {
  pal(0, 0, 59, 24);
  EXPECT_EQ(pal(0, 1, 0, 2), kBreak);
}

TEST_F(SampleAttributesTest, FramesThatLostTheirTimecodeAreCountedIn) {
  pal(0, 0, 10, 20);
  EXPECT_EQ(withoutTimecode(kPal), kNone);
  EXPECT_EQ(pal(0, 0, 10, 22), kNone);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(withoutTimecode(kPal), kNone);
  EXPECT_EQ(pal(0, 0, 11, 8), kNone);
  EXPECT_EQ(withoutTimecode(kPal), kNone);
  EXPECT_EQ(pal(0, 0, 11, 9), kBreak);
}

TEST_F(SampleAttributesTest, FramesThatLostTheirTimecodeAtADroppedMinuteAreCountedIn) {
  ntsc(0, 0, 59, 28);
  withoutTimecode(kNtsc);
  EXPECT_EQ(ntsc(0, 1, 0, 2), kNone);
}

TEST_F(SampleAttributesTest, TheFirstTimecodeAfterALeadInWithoutOneFollowsNothing) {
  EXPECT_EQ(withoutTimecode(kPal), kNone);
  EXPECT_EQ(withoutTimecode(kPal), kNone);
  EXPECT_EQ(pal(5, 0, 0, 0), kNone);
}

TEST_F(SampleAttributesTest, AChangeOfSystemIsExplicitWhateverTheTimecode) {
  pal(0, 0, 10, 20);
  EXPECT_EQ(ntsc(0, 0, 10, 21), kExplicit);
  EXPECT_EQ(ntsc(0, 0, 10, 22), kNone);
  EXPECT_EQ(pal(0, 0, 10, 23), kExplicit);
  EXPECT_EQ(pal(0, 0, 10, 24), kNone);
}

TEST_F(SampleAttributesTest, AChangeOfSystemIsExplicitWithoutTimecodesToo) {
  withoutTimecode(kPal);
  EXPECT_EQ(withoutTimecode(kNtsc), kExplicit);
  EXPECT_EQ(withoutTimecode(kNtsc), kNone);
}

TEST_F(SampleAttributesTest, AChangeOfSystemIsOneChangeEvenWhenItLosesTheTimecode) {
  pal(0, 0, 10, 20);
  EXPECT_EQ(withoutTimecode(kNtsc), kExplicit);
  EXPECT_EQ(ntsc(0, 0, 10, 22), kNone);
  EXPECT_EQ(ntsc(0, 0, 10, 23), kNone);
}

}  // namespace
}  // namespace zq::backend

// Random sequences of timecodes against a model that counts on one frame at a time. A failure names its seed: run it
// alone with --gtest_filter=*TimecodeSwarm.*/SEED.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

#include "backends/session/sample_attributes.h"
#include "support/dv_frames.h"
#include "timecode/timecode_text.h"

namespace zq::backend {
namespace {

using platform::SceneChangeType;

/// Counts one frame on, as a camcorder's counter does, but on past midnight.
SMPTETime afterOne(SMPTETime time, bool dropFrame) {
  const int timebase = time.mType == 1 ? 25 : 30;
  if (++time.mFrames < timebase) return time;
  time.mFrames = 0;
  if (++time.mSeconds < 60) return time;
  time.mSeconds = 0;
  if (++time.mMinutes == 60) {
    time.mMinutes = 0;
    ++time.mHours;
  }
  if (dropFrame && time.mMinutes % 10 != 0) time.mFrames = 2;
  return time;
}

SMPTETime after(SMPTETime time, std::int64_t frames, bool dropFrame) {
  for (std::int64_t i = 0; i < frames; ++i) time = afterOne(time, dropFrame);
  return time;
}

bool isDropFrameNumber(const SMPTETime& time) {
  return time.mType == 2 && (time.mFrames >= 2 || time.mSeconds != 0 || time.mMinutes % 10 == 0);
}

bool follows(const SMPTETime& earlier, const SMPTETime& later, std::int64_t frames) {
  if (earlier.mType != later.mType) return false;
  return after(earlier, frames, false) == later ||
         (isDropFrameNumber(earlier) && isDropFrameNumber(later) && after(earlier, frames, true) == later);
}

struct Frame {
  DVSystem system;
  std::optional<SMPTETime> timecode;
};

/// Near the ends of minutes, where it matters.
class TapeOfTimecodes {
 public:
  explicit TapeOfTimecodes(std::uint64_t seed) : random_(seed), system_(randomSystem()) { jump(); }

  Frame next() {
    if (pick(40) == 0) {
      system_ = randomSystem();
      jump();
    }
    if (pick(12) == 0) jump();
    if (pick(15) != 0) time_ = afterOne(time_, dropFrame_);
    if (pick(10) == 0) lost_ = 1 + pick(4);
    if (lost_ > 0) return {system_, (--lost_, std::nullopt)};
    return {system_, time_};
  }

 private:
  void jump() {
    dropFrame_ = system_ == DVSystem::ntsc525_60 && pick(2) == 0;
    const bool isPal = system_ == DVSystem::pal625_50;
    const int timebase = isPal ? 25 : 30;
    // Often only a few frames away from where it was, at either side of a minute.
    time_ = test::timecodeOf(pick(6) == 0 ? 23 : 0, 8 + pick(3), 59, timebase - 1 - pick(4), isPal ? 1 : 2);
    time_ = after(time_, pick(8), dropFrame_);
    if (time_.mHours == 24) time_.mHours = 0;
  }
  DVSystem randomSystem() { return pick(2) == 0 ? DVSystem::pal625_50 : DVSystem::ntsc525_60; }
  int pick(unsigned below) { return static_cast<int>(random_() % below); }

  std::mt19937_64 random_;
  DVSystem system_;
  bool dropFrame_ = false;
  SMPTETime time_;
  int lost_ = 0;
};

/// What each frame should say.
class NaiveModel {
 public:
  SceneChangeType next(const Frame& frame) {
    ++sinceKnown_;
    SceneChangeType change = SceneChangeType::none;
    if (system_ && *system_ != frame.system) {
      change = SceneChangeType::explicitChange;
      known_.reset();
    } else if (known_ && frame.timecode && !follows(*known_, *frame.timecode, sinceKnown_)) {
      change = SceneChangeType::timeStampDiscontinuity;
    }
    system_ = frame.system;
    if (frame.timecode) {
      known_ = frame.timecode;
      sinceKnown_ = 0;
    }
    return change;
  }

 private:
  std::optional<DVSystem> system_;
  std::optional<SMPTETime> known_;
  std::int64_t sinceKnown_ = 0;
};

class TimecodeSwarm : public testing::TestWithParam<std::uint64_t> {};

INSTANTIATE_TEST_SUITE_P(Seeds, TimecodeSwarm, testing::Range<std::uint64_t>(0, 20));

TEST_P(TimecodeSwarm, SaysOfEachFrameWhatTheModelSays) {
  TapeOfTimecodes tape(GetParam());
  NaiveModel model;
  SampleAttributes attributes;
  std::string story;
  for (int i = 0; i < 100; ++i) {
    const Frame frame = tape.next();
    story += std::string(" ") + (frame.timecode ? timecodeText(*frame.timecode) : "lost");
    FrameStamp stamp;
    stamp.timecode = frame.timecode;
    const auto buffer = attributes.next({}, test::makeFrame(frame.system, stamp));
    ASSERT_EQ(buffer.smpteTime != nullptr, frame.timecode.has_value());
    ASSERT_EQ(buffer.sceneChangeType, model.next(frame)) << "frame " << i << ":" << story;
  }
}

TEST_P(TimecodeSwarm, FollowsOverAnyDistanceAsTheModelDoes) {
  std::mt19937_64 random(GetParam());
  for (int i = 0; i < 200; ++i) {
    const std::uint32_t type = random() % 2 == 0 ? 1 : 2;
    const bool dropFrame = type == 2 && random() % 2 == 0;
    SMPTETime earlier = test::timecodeOf(static_cast<int>(random() % 23), static_cast<int>(random() % 60),
                                         static_cast<int>(random() % 60), static_cast<int>(random() % 25), type);
    if (dropFrame && !isDropFrameNumber(earlier)) earlier.mFrames = 2;
    const auto distance = static_cast<std::int64_t>(random() % 3000);
    const SMPTETime later = after(earlier, distance, dropFrame);
    EXPECT_TRUE(timecodeFollows(earlier, later, distance))
        << timecodeText(earlier) << " + " << distance << " = " << timecodeText(later);
    const std::int64_t wrong = std::max<std::int64_t>(0, distance + static_cast<std::int64_t>(random() % 7) - 3);
    EXPECT_EQ(timecodeFollows(earlier, later, wrong), follows(earlier, later, wrong))
        << timecodeText(earlier) << " + " << wrong << " = " << timecodeText(later);
  }
}

}  // namespace
}  // namespace zq::backend

// The bounded queue before a writer that is slower than the source.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "backends/session/movie_recorder.h"
#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::Duration;
using platform::TimePoint;
using test::sessionFrame;
using test::sessionNumbers;
using test::sessionRange;
using testing::ElementsAre;
using testing::IsEmpty;

/// The writer needs a second for a frame.
class RecorderQueue : public testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    movies_.onAppend = [this](const SharedBytes&) { runtime_.clock().sleepFor(frameTime_); };
  }

  void makeRecorder(std::size_t queueFrames) {
    recorder_ = std::make_unique<MovieRecorder>(runtime_, movies_, log_, reports_.observer(runtime_), queueFrames);
    recorder_->open("a.dv");
  }
  void finish() {
    recorder_->finish();
    test::sessionDrain(runtime_);
  }
  std::vector<int> written(const std::string& path = "a.dv") { return sessionNumbers(movies_[path].frames); }

  /// A frame that counts itself while anybody holds it.
  platform::QTSampleBuffer countedFrame(int number) {
    const SharedBytes bytes = test::sessionBytes(number);
    ++held_;
    const std::shared_ptr<const void> owner(bytes.data(), [this, bytes](const void*) { --held_; });
    platform::QTSampleBuffer frame;
    frame.bytesForAllSamples = SharedBytes(owner, bytes.bytes());
    return frame;
  }

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  Duration frameTime_ = 1s;
  int held_ = 0;
  std::unique_ptr<MovieRecorder> recorder_;
};

INSTANTIATE_TEST_SUITE_P(Sizes, RecorderQueue, testing::Values(1, 2, 3, 7, 8, 9, 16, 40),
                         [](const auto& each) { return "Of" + std::to_string(each.param); });

TEST_P(RecorderQueue, ASourceThatCanWaitIsHeldUpAndLosesNothing) {
  makeRecorder(GetParam());
  for (int number = 0; number < 100; ++number) {
    recorder_->waitForSpace();
    recorder_->push(sessionFrame(number));
  }
  EXPECT_GE(runtime_.clock().now(), TimePoint(100s - 1s * static_cast<int>(GetParam()) - 8s));
  finish();
  EXPECT_EQ(written(), sessionRange(0, 100));
  EXPECT_EQ(recorder_->droppedFrames(), 0);
  EXPECT_EQ(runtime_.clock().now(), TimePoint(100s)) << "the writer was never idle";
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_P(RecorderQueue, HoldsNoMoreFramesThanItMayAndAWaitingSourceStaysCloseBehind) {
  makeRecorder(GetParam());
  movies_.keepsBytes = false;
  int most = 0;
  for (int number = 0; number < 100; ++number) {
    recorder_->waitForSpace();
    recorder_->push(countedFrame(number));
    most = std::max(most, held_);
  }
  EXPECT_EQ(most, static_cast<int>(std::min(GetParam(), MovieRecorder::kFramesAhead)));
  finish();
  EXPECT_EQ(held_, 0);
}

TEST_P(RecorderQueue, NeverHoldsMoreFramesThanItMayOfALiveSource) {
  makeRecorder(GetParam());
  movies_.keepsBytes = false;
  for (int number = 0; number < 300; ++number) {
    recorder_->push(countedFrame(number));
    EXPECT_LE(held_, static_cast<int>(GetParam()));
    runtime_.clock().sleepFor(40ms);
  }
  finish();
  EXPECT_EQ(held_, 0);
  EXPECT_EQ(recorder_->recordedFrames() + recorder_->droppedFrames(), 300);
}

TEST_P(RecorderQueue, ASourceThatCannotWaitLosesNothingToAWriterThatKeepsUp) {
  frameTime_ = 10ms;
  makeRecorder(GetParam());
  for (int number = 0; number < 100; ++number) {
    recorder_->push(sessionFrame(number));
    runtime_.clock().sleepFor(40ms);
  }
  finish();
  EXPECT_EQ(written(), sessionRange(0, 100));
  EXPECT_EQ(recorder_->droppedFrames(), 0);
}

TEST_P(RecorderQueue, WhatASourceThatCannotWaitLosesIsCountedAndLogged) {
  makeRecorder(GetParam());
  const Duration start = runtime_.clock().now().time_since_epoch();
  for (int number = 0; number < 200; ++number) {
    auto frame = sessionFrame(number);
    frame.smpteTime = valueWithSMPTETime(test::timecodeOf(0, 0, number / 25, number % 25, 1));
    recorder_->push(frame);
    runtime_.clock().sleepFor(40ms);
  }
  EXPECT_EQ(runtime_.clock().now().time_since_epoch() - start, 8s) << "the source was not held up";
  finish();
  const std::vector<int> kept = written();
  EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end()));
  const auto dropped = 200 - static_cast<std::int64_t>(kept.size());
  EXPECT_GT(dropped, 100);
  EXPECT_EQ(recorder_->droppedFrames(), dropped);
  EXPECT_EQ(recorder_->recordedFrames(), 200 - dropped);
  ASSERT_EQ(reports_.finished.size(), 1U);
  EXPECT_EQ(reports_.finished[0].dropped, dropped);
  EXPECT_EQ(reports_.finished[0].frames, 200 - dropped);
  EXPECT_FALSE(reports_.finished[0].error);
  EXPECT_THAT(reports_.failures, IsEmpty());
  std::vector<std::string> expected;
  for (int number = 0; number < 200; ++number) {
    if (std::binary_search(kept.begin(), kept.end(), number)) continue;
    char text[80];
    std::snprintf(text, sizeof text, "Frame 00:00:%02d:%02d dropped: the disk does not keep up", number / 25,
                  number % 25);
    expected.emplace_back(text);
  }
  EXPECT_EQ(log_.messages(), expected);
}

TEST_F(RecorderQueue, ADroppedFrameWithoutATimecodeIsLoggedToo) {
  makeRecorder(1);
  recorder_->push(sessionFrame(0));
  recorder_->push(sessionFrame(1));
  EXPECT_THAT(log_.messages(), ElementsAre("Frame without a timecode dropped: the disk does not keep up"));
}

TEST_F(RecorderQueue, DroppedFramesCountForTheFileThatTheyWereMeantFor) {
  makeRecorder(4);
  for (int number = 0; number < 6; ++number) recorder_->push(sessionFrame(number));
  recorder_->open("b.dv");
  for (int number = 6; number < 9; ++number) recorder_->push(sessionFrame(number));
  recorder_->close();
  runtime_.clock().sleepFor(1h);
  recorder_->open("c.dv");
  for (int number = 9; number < 11; ++number) recorder_->push(sessionFrame(number));
  finish();
  ASSERT_EQ(reports_.finished.size(), 3U);
  EXPECT_EQ(reports_.finished[0].frames, 4);
  EXPECT_EQ(reports_.finished[0].dropped, 2);
  EXPECT_EQ(reports_.finished[1].frames, 0);
  EXPECT_EQ(reports_.finished[1].dropped, 3);
  EXPECT_EQ(reports_.finished[2].frames, 2);
  EXPECT_EQ(reports_.finished[2].dropped, 0);
  EXPECT_EQ(recorder_->droppedFrames(), 5);
}

TEST_F(RecorderQueue, ChangesOfFileAreNeverDroppedAndTakeNoFramesPlace) {
  makeRecorder(2);
  for (int file = 0; file < 50; ++file) recorder_->open(std::to_string(file));
  recorder_->push(sessionFrame(0));
  recorder_->push(sessionFrame(1));
  EXPECT_EQ(recorder_->droppedFrames(), 0);
  for (int file = 50; file < 100; ++file) recorder_->open(std::to_string(file));
  finish();
  EXPECT_EQ(movies_.order.size(), 101U);
  EXPECT_EQ(written("49"), sessionRange(0, 2));
}

TEST_F(RecorderQueue, ASlowTrailerHoldsAWaitingSourceUpAndLosesNothing) {
  makeRecorder(4);
  frameTime_ = 1ms;
  movies_.onCreate = [this](const std::string& path) {
    if (path == "b.dv") runtime_.clock().sleepFor(30s);
  };
  for (int number = 0; number < 40; ++number) {
    if (number == 20) recorder_->open("b.dv");
    recorder_->waitForSpace();
    recorder_->push(sessionFrame(number));
  }
  finish();
  EXPECT_EQ(written("a.dv"), sessionRange(0, 20));
  EXPECT_EQ(written("b.dv"), sessionRange(20, 40));
}

TEST_F(RecorderQueue, AFileThatFailedDoesNotHoldTheSourceUp) {
  makeRecorder(4);
  recorder_->open("bad.dv");
  movies_["bad.dv"].failsToCreate = true;
  for (int number = 0; number < 100; ++number) {
    recorder_->waitForSpace();
    recorder_->push(sessionFrame(number));
  }
  finish();
  EXPECT_EQ(runtime_.clock().now(), TimePoint(0s));
  EXPECT_EQ(recorder_->droppedFrames(), 100);
}

TEST_F(RecorderQueue, TheEndOfTheRecorderLetsAWaitingSourceGo) {
  makeRecorder(2);
  bool released = false;
  const auto source = runtime_.startThread("source", [&] {
    for (int number = 0; number < 2; ++number) recorder_->push(sessionFrame(number));
    recorder_->waitForSpace();
    released = true;
  });
  runtime_.clock().sleepFor(500ms);
  ASSERT_FALSE(released);
  finish();
  source->join();
  EXPECT_TRUE(released);
  EXPECT_EQ(written(), sessionRange(0, 2));
}

}  // namespace
}  // namespace zq::backend

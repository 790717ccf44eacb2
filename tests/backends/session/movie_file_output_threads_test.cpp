// A file output between the delivery thread and the main thread.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <thread>

#include "backends/session/movie_file_output.h"
#include "backends/time/real_runtime.h"
#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::QTSampleBuffer;
using test::sessionFrame;
using test::sessionNumbers;
using test::sessionRange;
using testing::ElementsAre;

class OutputThreads : public testing::Test {
 protected:
  static constexpr std::size_t kQueue = 4;

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  test::SessionDelegate delegate_;
  MovieFileOutput output_{runtime_, movies_, log_, reports_.observer(runtime_), nullptr, kQueue};
};

TEST_F(OutputThreads, SettingTheDelegateWaitsForTheCallThatIsUnderWay) {
  bool inside = false;
  delegate_.onFrame = [&](auto&, const QTSampleBuffer&, auto&) {
    inside = true;
    runtime_.clock().sleepFor(3s);
    inside = false;
  };
  output_.setDelegate(&delegate_);
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int i = 0; i < 3; ++i) {
      output_.consume(sessionFrame(i), true);
      runtime_.clock().sleepFor(40ms);
    }
  });
  runtime_.clock().sleepFor(1s);
  ASSERT_TRUE(inside);
  output_.setDelegate(nullptr);
  EXPECT_FALSE(inside);
  EXPECT_EQ(runtime_.clock().now(), platform::TimePoint(3s));
  delivery->join();
  EXPECT_EQ(runtime_.clock().now(), platform::TimePoint(3120ms)) << "nobody is asked any more";
}

TEST_F(OutputThreads, AFileCanBeChangedFromTheMainThread) {
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int i = 0; i < 30; ++i) {
      output_.consume(sessionFrame(i), true);
      runtime_.clock().sleepFor(40ms);
    }
  });
  runtime_.clock().sleepFor(390ms);
  output_.recordToOutputFileURL("a.dv");
  runtime_.clock().sleepFor(400ms);
  output_.recordToOutputFileURL("b.dv");
  runtime_.clock().sleepFor(200ms);
  output_.recordToOutputFileURL(std::nullopt);
  delivery->join();
  output_.finish();
  EXPECT_EQ(sessionNumbers(movies_["a.dv"].frames), sessionRange(10, 20));
  EXPECT_EQ(sessionNumbers(movies_["b.dv"].frames), sessionRange(20, 25));
}

// A frame that waits for the disk belongs to the file that was open when the delegate saw it.
TEST_F(OutputThreads, ChangingTheFileDoesNotWaitForTheFrameThatWaitsForTheDisk) {
  movies_.onAppend = [&](const SharedBytes&) { runtime_.clock().sleepFor(10s); };
  output_.recordToOutputFileURL("a.dv");
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int i = 0; i < 8; ++i) output_.consume(sessionFrame(i, 144), true);
    for (int i = 8; i < 10; ++i) output_.consume(sessionFrame(i, 120), true);
  });
  runtime_.clock().sleepFor(1s);
  output_.recordToOutputFileURL("b.dv");
  EXPECT_EQ(runtime_.clock().now(), platform::TimePoint(1s));
  delivery->join();
  output_.finish();
  EXPECT_EQ(sessionNumbers(movies_["a.dv"].frames), sessionRange(0, 5));
  EXPECT_EQ(sessionNumbers(movies_["b.dv"].frames), sessionRange(5, 8));
  EXPECT_EQ(sessionNumbers(movies_["b-part2.dv"].frames), sessionRange(8, 10));
  EXPECT_EQ(output_.recorder().droppedFrames(), 0);
}

// The frame that the change of file overtook says nothing of the system of the new file.
TEST_F(OutputThreads, TheFirstFrameOfAFileThatWasChangedMeanwhileSaysItsSystem) {
  movies_.onAppend = [&](const SharedBytes&) { runtime_.clock().sleepFor(10s); };
  output_.recordToOutputFileURL("a.dv");
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int i = 0; i < 5; ++i) output_.consume(sessionFrame(i, 144), true);
    output_.consume(sessionFrame(5, 120), true);
  });
  runtime_.clock().sleepFor(1s);
  output_.recordToOutputFileURL("b.dv");
  delivery->join();
  output_.finish();
  EXPECT_EQ(sessionNumbers(movies_["a.dv"].frames), sessionRange(0, 5));
  EXPECT_EQ(sessionNumbers(movies_["b.dv"].frames), sessionRange(5, 6));
  EXPECT_EQ(movies_.order, (std::vector<std::string>{"a.dv", "b.dv"}));
}

TEST_F(OutputThreads, AFrameThatWaitsWhenTheRecordingEndsIsWrittenStill) {
  movies_.onAppend = [&](const SharedBytes&) { runtime_.clock().sleepFor(10s); };
  output_.recordToOutputFileURL("a.dv");
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int i = 0; i < 8; ++i) output_.consume(sessionFrame(i), true);
  });
  runtime_.clock().sleepFor(1s);
  output_.recordToOutputFileURL(std::nullopt);
  delivery->join();
  output_.finish();
  EXPECT_EQ(sessionNumbers(movies_["a.dv"].frames), sessionRange(0, 5));
  EXPECT_EQ(output_.recorder().droppedFrames(), 0);
}

TEST_F(OutputThreads, ASourceThatCannotWaitIsNeverHeldUp) {
  movies_.onAppend = [&](const SharedBytes&) { runtime_.clock().sleepFor(10s); };
  output_.recordToOutputFileURL("a.dv");
  for (int i = 0; i < 20; ++i) output_.consume(sessionFrame(i), false);
  EXPECT_EQ(runtime_.clock().now(), platform::TimePoint(0s));
  output_.finish();
  EXPECT_EQ(output_.recorder().droppedFrames(), 16);
}

// Real threads: the delivery thread, the writer, and the main thread that changes files and delegates as it likes.
TEST(OutputRealThreads, NoFrameIsLostTwiceOrOutOfOrderWhileFilesAndDelegatesChange) {
  RealRuntime runtime;
  test::SessionLog log;
  test::SessionMovies movies;
  test::SessionReports reports;
  MovieFileOutput output(runtime, movies, log, reports.observer(runtime), nullptr, 16);
  constexpr int kFrames = 20'000;
  std::atomic<bool> hasDelegate{false};
  std::atomic<bool> calledWithout{false};
  std::atomic<int> consumed{0};
  test::SessionDelegate delegate;
  delegate.onFrame = [&](auto&, const QTSampleBuffer&, auto&) {
    if (!hasDelegate) calledWithout = true;
  };
  output.recordToOutputFileURL("0.dv");
  const auto delivery = runtime.startThread("delivery", [&] {
    for (int i = 0; i < kFrames; ++i) {
      output.consume(sessionFrame(i, i / 1000 % 2 == 0 ? 144 : 120), true);
      ++consumed;
    }
  });
  for (int file = 1; consumed < kFrames; ++file) {
    const int next = std::min(kFrames, consumed + 20);
    while (consumed < next) std::this_thread::yield();
    output.recordToOutputFileURL(std::to_string(file) + ".dv");
    hasDelegate = true;
    output.setDelegate(&delegate);
    output.setDelegate(nullptr);
    hasDelegate = false;
  }
  delivery->join();
  output.finish();
  test::sessionDrain(runtime);
  EXPECT_FALSE(calledWithout);
  std::vector<int> all;
  std::int64_t reported = 0;
  for (const std::string& path : movies.order) {
    std::set<std::size_t> sizes;
    for (const SharedBytes& frame : movies[path].frames) {
      all.push_back(test::sessionNumber(frame));
      sizes.insert(frame.size());
    }
    EXPECT_LE(sizes.size(), 1U) << path << " has frames of both systems";
    EXPECT_TRUE(movies[path].finished);
  }
  for (const FinishedFile& file : reports.finished) reported += file.frames;
  EXPECT_EQ(all, sessionRange(0, kFrames));
  EXPECT_EQ(reported, kFrames);
  EXPECT_EQ(output.recorder().recordedFrames(), kFrames);
  EXPECT_EQ(output.recorder().droppedFrames(), 0);
  EXPECT_EQ(reports.finished.size(), movies.order.size());
}

}  // namespace
}  // namespace zq::backend

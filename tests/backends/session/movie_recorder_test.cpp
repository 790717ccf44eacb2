// What the writer makes of frames and changes of file, and of errors.

#include "backends/session/movie_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using test::sessionFrame;
using test::sessionNumbers;
using test::sessionRange;
using testing::ElementsAre;
using testing::IsEmpty;
using Failure = test::SessionReports::Failure;

class MovieRecorders : public testing::Test {
 protected:
  void frames(int from, int to) {
    for (int number = from; number < to; ++number) {
      recorder_->waitForSpace();
      recorder_->push(sessionFrame(number));
    }
  }
  std::vector<int> movie(const std::string& path) { return sessionNumbers(movies_[path].frames); }
  void finish() {
    recorder_->finish();
    test::sessionDrain(runtime_);
  }
  /// Lets the writer do what it can.
  void letItWrite() { runtime_.clock().sleepFor(1s); }

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  std::unique_ptr<MovieRecorder> recorder_ =
      std::make_unique<MovieRecorder>(runtime_, movies_, log_, reports_.observer(runtime_), 240);
};

TEST_F(MovieRecorders, WritesTheFramesInTheirOrderByteForByte) {
  recorder_->open("a.dv");
  std::vector<SharedBytes> pushed;
  for (int number = 0; number < 100; ++number) {
    const auto frame = sessionFrame(number, 1000);
    pushed.push_back(frame.bytesForAllSamples);
    recorder_->push(frame);
  }
  finish();
  const std::vector<SharedBytes>& written = movies_["a.dv"].frames;
  ASSERT_EQ(written.size(), 100U);
  for (std::size_t i = 0; i < 100; ++i) EXPECT_TRUE(written[i].sameBufferAs(pushed[i])) << "frame " << i;
}

TEST_F(MovieRecorders, WritesABatchWithoutBeingAskedTo) {
  recorder_->open("a.dv");
  letItWrite();
  frames(0, 24);
  letItWrite();
  EXPECT_EQ(recorder_->recordedFrames(), 24);
  frames(24, 27);
  letItWrite();
  EXPECT_EQ(recorder_->recordedFrames(), 24) << "three frames are not worth waking for";
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 27));
}

TEST_F(MovieRecorders, CompletesAFileAtOnceHoweverFewItsFrames) {
  recorder_->open("a.dv");
  frames(0, 3);
  recorder_->close();
  letItWrite();
  test::sessionDrain(runtime_);
  EXPECT_TRUE(movies_["a.dv"].finished);
  ASSERT_EQ(reports_.finished.size(), 1U);
  EXPECT_EQ(reports_.finished[0].path, "a.dv");
  EXPECT_EQ(reports_.finished[0].frames, 3);
  EXPECT_EQ(reports_.finished[0].dropped, 0);
  EXPECT_FALSE(reports_.finished[0].error);
}

TEST_F(MovieRecorders, AFileIsAnnouncedOnTheMainThreadWhenItIsComplete) {
  bool complete = false;
  reports_.onFinished = [&](const FinishedFile& file) { complete = movies_[file.path].finished; };
  recorder_->open("a.dv");
  frames(0, 30);
  recorder_->finish();
  EXPECT_THAT(reports_.finished, IsEmpty());
  test::sessionDrain(runtime_);
  EXPECT_EQ(reports_.finished.size(), 1U);
  EXPECT_TRUE(complete);
  EXPECT_TRUE(reports_.allOnMainThread);
}

TEST_F(MovieRecorders, OneFileFollowsTheOther) {
  recorder_->open("a.dv");
  frames(0, 10);
  recorder_->open("b.dv");
  frames(10, 13);
  recorder_->close();
  recorder_->open("c.dv");
  frames(13, 40);
  finish();
  EXPECT_THAT(movies_.order, ElementsAre("a.dv", "b.dv", "c.dv"));
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 10));
  EXPECT_EQ(movie("b.dv"), sessionRange(10, 13));
  EXPECT_EQ(movie("c.dv"), sessionRange(13, 40));
  ASSERT_EQ(reports_.finished.size(), 3U);
  EXPECT_EQ(reports_.finished[1].path, "b.dv");
  EXPECT_EQ(recorder_->recordedFrames(), 40);
}

TEST_F(MovieRecorders, FramesWithoutAFileAreNobodys) {
  frames(0, 20);
  recorder_->open("a.dv");
  frames(20, 22);
  recorder_->close();
  frames(22, 40);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(20, 22));
  EXPECT_EQ(recorder_->recordedFrames(), 2);
  EXPECT_EQ(recorder_->droppedFrames(), 0);
}

TEST_F(MovieRecorders, ClosingWithoutAFileDoesNothing) {
  recorder_->close();
  finish();
  recorder_->finish();
  EXPECT_THAT(reports_.finished, IsEmpty());
}

TEST_F(MovieRecorders, WhatIsQueuedWhenItGoesIsWritten) {
  movies_.onAppend = [&](const SharedBytes&) { runtime_.clock().sleepFor(1s); };
  recorder_->open("a.dv");
  frames(0, 100);
  recorder_.reset();
  test::sessionDrain(runtime_);
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 100));
  EXPECT_TRUE(movies_["a.dv"].finished);
  EXPECT_EQ(reports_.finished.size(), 1U);
}

TEST_F(MovieRecorders, AFileThatCannotBeCreatedIsToldOnceAndTheNextOneWorks) {
  movies_["a.dv"].failsToCreate = true;
  recorder_->open("a.dv");
  frames(0, 20);
  recorder_->open("b.dv");
  frames(20, 40);
  finish();
  EXPECT_THAT(reports_.failures, ElementsAre(Failure{"a.dv", "Cannot create a.dv"}));
  EXPECT_THAT(log_.messages(), ElementsAre(testing::HasSubstr("Cannot create a.dv")));
  ASSERT_EQ(reports_.finished.size(), 2U);
  EXPECT_EQ(reports_.finished[0].frames, 0);
  EXPECT_EQ(reports_.finished[0].dropped, 20);
  EXPECT_EQ(reports_.finished[0].error->message, "Cannot create a.dv");
  EXPECT_EQ(reports_.finished[1].frames, 20);
  EXPECT_FALSE(reports_.finished[1].error);
  EXPECT_EQ(movie("b.dv"), sessionRange(20, 40));
  EXPECT_EQ(recorder_->recordedFrames(), 20);
  EXPECT_EQ(recorder_->droppedFrames(), 20);
  EXPECT_TRUE(reports_.allOnMainThread);
}

TEST_F(MovieRecorders, AFileThatTakesNoMoreIsToldOnceAndKeepsWhatItHas) {
  movies_["a.dv"].failsAtFrame = 7;
  recorder_->open("a.dv");
  frames(0, 20);
  recorder_->open("b.dv");
  frames(20, 40);
  finish();
  EXPECT_THAT(reports_.failures, ElementsAre(Failure{"a.dv", "Cannot write a.dv"}));
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 7));
  EXPECT_TRUE(movies_["a.dv"].finished) << "what was written is completed";
  ASSERT_EQ(reports_.finished.size(), 2U);
  EXPECT_EQ(reports_.finished[0].frames, 7);
  EXPECT_EQ(reports_.finished[0].dropped, 13);
  EXPECT_TRUE(reports_.finished[0].error);
  EXPECT_EQ(movie("b.dv"), sessionRange(20, 40));
  EXPECT_EQ(recorder_->recordedFrames(), 27);
  EXPECT_EQ(recorder_->droppedFrames(), 13);
}

TEST_F(MovieRecorders, AFileThatCannotBeCompletedIsToldOnce) {
  movies_["a.dv"].failsToFinish = true;
  recorder_->open("a.dv");
  frames(0, 20);
  recorder_->open("b.dv");
  frames(20, 40);
  finish();
  EXPECT_THAT(reports_.failures, ElementsAre(Failure{"a.dv", "Cannot complete a.dv"}));
  ASSERT_EQ(reports_.finished.size(), 2U);
  EXPECT_TRUE(reports_.finished[0].error);
  EXPECT_FALSE(reports_.finished[1].error);
  EXPECT_TRUE(movies_["b.dv"].finished);
}

TEST_F(MovieRecorders, AFileThatFailsTwiceIsToldOnce) {
  movies_["a.dv"].failsAtFrame = 7;
  movies_["a.dv"].failsToFinish = true;
  recorder_->open("a.dv");
  frames(0, 20);
  finish();
  EXPECT_THAT(reports_.failures, ElementsAre(Failure{"a.dv", "Cannot write a.dv"}));
  ASSERT_EQ(reports_.finished.size(), 1U);
}

TEST_F(MovieRecorders, FailureIsToldBeforeTheEnd) {
  movies_["a.dv"].failsToCreate = true;
  std::size_t failuresAtTheEnd = 0;
  reports_.onFinished = [&](const FinishedFile&) { failuresAtTheEnd = reports_.failures.size(); };
  recorder_->open("a.dv");
  finish();
  EXPECT_EQ(failuresAtTheEnd, 1U);
}

TEST_F(MovieRecorders, WorksWithNobodyToTell) {
  movies_["a.dv"].failsToCreate = true;
  recorder_ = std::make_unique<MovieRecorder>(runtime_, movies_, log_, RecorderObserver{}, 240);
  recorder_->open("a.dv");
  recorder_->open("b.dv");
  frames(0, 20);
  finish();
  EXPECT_EQ(movie("b.dv"), sessionRange(0, 20));
}

TEST_F(MovieRecorders, TheSameRunIsTheSameOnEverySeed) {
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    VirtualOptions options;
    options.seed = seed;
    VirtualRuntime runtime(options);
    test::SessionMovies movies;
    movies.onAppend = [&](const SharedBytes&) { runtime.clock().sleepFor(7ms); };
    MovieRecorder recorder(runtime, movies, log_, reports_.observer(runtime), 9);
    int number = 0;
    for (int file = 0; file < 10; ++file) {
      recorder.open(std::to_string(file));
      for (int i = 0; i < file * 3; ++i) {
        recorder.waitForSpace();
        recorder.push(sessionFrame(number++));
        if (number % 5 == 0) runtime.clock().sleepFor(11ms);
      }
    }
    recorder.finish();
    number = 0;
    for (int file = 0; file < 10; ++file) {
      ASSERT_EQ(sessionNumbers(movies[std::to_string(file)].frames), sessionRange(number, number + file * 3));
      number += file * 3;
    }
    ASSERT_EQ(recorder.droppedFrames(), 0);
  }
}

}  // namespace
}  // namespace zq::backend

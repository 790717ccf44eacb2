#include "backends/session/movie_file_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using platform::QTSampleBuffer;
using test::sessionFrame;
using test::sessionNumbers;
using test::sessionRange;
using testing::ElementsAre;
using testing::IsEmpty;

// Stand-ins for the frames of the two systems; an output looks at nothing but their sizes.
constexpr std::size_t kBig = 144;
constexpr std::size_t kSmall = 120;

class MovieFileOutputs : public testing::Test {
 protected:
  void SetUp() override {
    delegate_.onFrame = [this](platform::QTCaptureOutput& output, const QTSampleBuffer& frame,
                               const platform::QTCaptureConnection& connection) {
      EXPECT_EQ(&output, output_.get());
      EXPECT_EQ(connection.mediaType, platform::QTMediaTypeVideo);
      const int number = test::sessionNumber(frame.bytesForAllSamples);
      journal_.push_back("frame " + std::to_string(number));
      if (onFrame_) onFrame_(number);
    };
    delegate_.onMustChange = [this](platform::QTCaptureFileOutput& output, const std::string& path,
                                    const std::vector<platform::QTCaptureConnection>& connections, const Error& error) {
      EXPECT_EQ(&output, output_.get());
      EXPECT_EQ(connections.size(), 2U);
      EXPECT_FALSE(error.message.empty());
      journal_.push_back("must change " + path);
      if (onMustChange_) onMustChange_();
    };
    output_->setDelegate(&delegate_);
  }

  void record(const std::string& path) { output_->recordToOutputFileURL(path); }
  void stop() { output_->recordToOutputFileURL(std::nullopt); }
  void frames(int from, int to, std::size_t size = kBig) {
    for (int number = from; number < to; ++number) output_->consume(sessionFrame(number, size), true);
  }
  std::vector<int> movie(const std::string& path) { return sessionNumbers(movies_[path].frames); }
  /// Ends the writer, after which the movies can be looked at.
  void finish() {
    output_->finish();
    test::sessionDrain(runtime_);
  }

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  test::SessionDelegate delegate_;
  std::vector<std::string> journal_;
  std::function<void(int)> onFrame_;
  std::function<void()> onMustChange_;
  FrameHook hook_ = [this](platform::QTCaptureFileOutput&, const QTSampleBuffer& frame) {
    journal_.push_back("hook " + std::to_string(test::sessionNumber(frame.bytesForAllSamples)));
  };
  std::unique_ptr<MovieFileOutput> output_ =
      std::make_unique<MovieFileOutput>(runtime_, movies_, log_, reports_.observer(runtime_), nullptr, 240);
};

TEST_F(MovieFileOutputs, NothingIsWrittenWithoutAFile) {
  frames(0, 5);
  finish();
  EXPECT_THAT(movies_.order, IsEmpty());
  EXPECT_EQ(journal_.size(), 5U);
  EXPECT_EQ(output_->outputFileURL(), std::nullopt);
}

TEST_F(MovieFileOutputs, AFileHasTheFramesFromItsBeginningToItsEnd) {
  frames(0, 2);
  record("a.dv");
  EXPECT_EQ(output_->outputFileURL(), "a.dv");
  frames(2, 30);
  stop();
  EXPECT_EQ(output_->outputFileURL(), std::nullopt);
  frames(30, 33);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(2, 30));
  EXPECT_TRUE(movies_["a.dv"].finished);
  EXPECT_EQ(output_->recorder().recordedFrames(), 28);
}

TEST_F(MovieFileOutputs, AFileThatBeginsInsideTheDelegateHasThatVeryFrame) {
  onFrame_ = [this](int number) {
    if (number == 3) record("a.dv");
    if (number == 6) record("b.dv");
  };
  frames(0, 9);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(3, 6));
  EXPECT_EQ(movie("b.dv"), sessionRange(6, 9));
  EXPECT_THAT(movies_.order, ElementsAre("a.dv", "b.dv"));
}

TEST_F(MovieFileOutputs, AFileThatEndsInsideTheDelegateLacksThatVeryFrame) {
  record("a.dv");
  onFrame_ = [this](int number) {
    if (number == 4) stop();
  };
  frames(0, 9);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 4));
}

TEST_F(MovieFileOutputs, TheSamePathAgainGoesOn) {
  record("a.dv");
  frames(0, 3);
  record("a.dv");
  onFrame_ = [this](int) { record("a.dv"); };
  frames(3, 6);
  finish();
  EXPECT_THAT(movies_.order, ElementsAre("a.dv"));
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 6));
}

TEST_F(MovieFileOutputs, AFileMayHaveNoFrame) {
  record("a.dv");
  record("b.dv");
  frames(0, 3);
  finish();
  EXPECT_THAT(movie("a.dv"), IsEmpty());
  EXPECT_TRUE(movies_["a.dv"].finished);
  EXPECT_EQ(movie("b.dv"), sessionRange(0, 3));
}

TEST_F(MovieFileOutputs, TheDelegateComesFirstThenTheHookThenTheFile) {
  output_ = std::make_unique<MovieFileOutput>(runtime_, movies_, log_, reports_.observer(runtime_), hook_, 240);
  output_->setDelegate(&delegate_);
  onFrame_ = [this](int) { EXPECT_EQ(output_->recorder().recordedFrames(), 0); };
  record("a.dv");
  frames(0, 2);
  EXPECT_THAT(journal_, ElementsAre("frame 0", "hook 0", "frame 1", "hook 1"));
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 2));
}

TEST_F(MovieFileOutputs, AFileCanBeChangedInTheHookToo) {
  hook_ = [this](platform::QTCaptureFileOutput& output, const QTSampleBuffer& frame) {
    EXPECT_EQ(&output, output_.get());
    if (test::sessionNumber(frame.bytesForAllSamples) == 2) record("b.dv");
  };
  output_ = std::make_unique<MovieFileOutput>(runtime_, movies_, log_, reports_.observer(runtime_), hook_, 240);
  output_->setDelegate(&delegate_);
  record("a.dv");
  frames(0, 4);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 2));
  EXPECT_EQ(movie("b.dv"), sessionRange(2, 4));
}

TEST_F(MovieFileOutputs, TheHookSeesNothingWithoutADelegate) {
  output_ = std::make_unique<MovieFileOutput>(runtime_, movies_, log_, reports_.observer(runtime_), hook_, 240);
  frames(0, 3);
  output_->setDelegate(&delegate_);
  onFrame_ = [this](int number) {
    if (number == 4) output_->setDelegate(nullptr);
  };
  frames(3, 6);
  finish();
  EXPECT_THAT(journal_, ElementsAre("frame 3", "hook 3", "frame 4"));
}

TEST_F(MovieFileOutputs, ADelegateThatTakesItselfAwayHearsNoMore) {
  onFrame_ = [this](int number) {
    if (number == 1) output_->setDelegate(nullptr);
  };
  record("a.dv");
  frames(0, 4);
  finish();
  EXPECT_THAT(journal_, ElementsAre("frame 0", "frame 1"));
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 4));
}

TEST_F(MovieFileOutputs, AChangeOfSystemIsToldBeforeTheFrame) {
  record("a.dv");
  frames(0, 2);
  frames(2, 3, kSmall);
  EXPECT_THAT(journal_, ElementsAre("frame 0", "frame 1", "must change a.dv", "frame 2"));
}

TEST_F(MovieFileOutputs, AChangeOfSystemIsNoMatterWithoutAFile) {
  frames(0, 2);
  frames(2, 3, kSmall);
  record("a.dv");
  frames(3, 4, kBig);
  stop();
  frames(4, 5, kSmall);
  record("b.dv");
  frames(5, 6, kBig);
  finish();
  EXPECT_EQ(journal_.size(), 6U);
  EXPECT_EQ(movie("a.dv"), sessionRange(3, 4));
  EXPECT_EQ(movie("b.dv"), sessionRange(5, 6));
}

TEST_F(MovieFileOutputs, TheDelegateCanChangeTheFileWhenItMust) {
  onMustChange_ = [this] { record("b.dv"); };
  record("a.dv");
  frames(0, 3);
  frames(3, 6, kSmall);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 3));
  EXPECT_EQ(movie("b.dv"), sessionRange(3, 6));
  EXPECT_EQ(movies_.order.size(), 2U);
}

TEST_F(MovieFileOutputs, TheDelegateCanChangeTheFileWithTheFrameItself) {
  onFrame_ = [this](int number) {
    if (number == 3) record("b.dv");
  };
  record("a.dv");
  frames(0, 3);
  frames(3, 6, kSmall);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 3));
  EXPECT_EQ(movie("b.dv"), sessionRange(3, 6));
  EXPECT_EQ(movies_.order.size(), 2U);
}

TEST_F(MovieFileOutputs, TheDelegateCanEndTheFileWhenItMustChange) {
  onMustChange_ = [this] { stop(); };
  record("a.dv");
  frames(0, 3);
  frames(3, 6, kSmall);
  finish();
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 3));
  EXPECT_EQ(movies_.order.size(), 1U);
}

TEST_F(MovieFileOutputs, ADelegateThatGoesWhenItMustChangeHearsNoFrame) {
  onMustChange_ = [this] { output_->setDelegate(nullptr); };
  record("a.dv");
  frames(0, 1);
  frames(1, 3, kSmall);
  EXPECT_THAT(journal_, ElementsAre("frame 0", "must change a.dv"));
}

TEST_F(MovieFileOutputs, TheClipGoesOnBesideItselfWhenNobodyChangesTheFile) {
  record("clip.dv");
  frames(0, 3);
  frames(3, 6, kSmall);
  frames(6, 9, kBig);
  EXPECT_EQ(output_->outputFileURL(), "clip.dv");
  record("clip.dv");
  frames(9, 10, kBig);
  record("next.dv");
  frames(10, 11, kBig);
  frames(11, 12, kSmall);
  finish();
  EXPECT_THAT(movies_.order, ElementsAre("clip.dv", "clip-part2.dv", "clip-part3.dv", "next.dv", "next-part2.dv"));
  EXPECT_EQ(movie("clip.dv"), sessionRange(0, 3));
  EXPECT_EQ(movie("clip-part2.dv"), sessionRange(3, 6));
  EXPECT_EQ(movie("clip-part3.dv"), sessionRange(6, 10));
  EXPECT_EQ(movie("next.dv"), sessionRange(10, 11));
  EXPECT_EQ(movie("next-part2.dv"), sessionRange(11, 12));
  EXPECT_EQ(reports_.finished.size(), 5U);
}

TEST_F(MovieFileOutputs, WithoutADelegateTheClipGoesOnTheSameWay) {
  output_->setDelegate(nullptr);
  record("clip.dv");
  frames(0, 3);
  frames(3, 6, kSmall);
  finish();
  EXPECT_EQ(movie("clip.dv"), sessionRange(0, 3));
  EXPECT_EQ(movie("clip-part2.dv"), sessionRange(3, 6));
}

TEST_F(MovieFileOutputs, AnOutputThatGoesWritesWhatItHas) {
  record("a.dv");
  frames(0, 5);
  output_.reset();
  test::sessionDrain(runtime_);
  EXPECT_EQ(movie("a.dv"), sessionRange(0, 5));
  EXPECT_TRUE(movies_["a.dv"].finished);
  ASSERT_EQ(reports_.finished.size(), 1U);
}

TEST(ContinuationPath, ComesBetweenTheNameAndItsExtension) {
  EXPECT_EQ(continuationPath("/a/clip.mov", 2), "/a/clip-part2.mov");
  EXPECT_EQ(continuationPath("clip", 3), "clip-part3");
  EXPECT_EQ(continuationPath("/a.b/clip", 2), "/a.b/clip-part2");
  EXPECT_EQ(continuationPath("/a/2004-07-15T13-30-45.dv", 12), "/a/2004-07-15T13-30-45-part12.dv");
}

}  // namespace
}  // namespace zq::backend

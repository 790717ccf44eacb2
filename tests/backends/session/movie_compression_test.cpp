// How compression options reach the movies of a file output, and what falls behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/session/movie_file_output.h"
#include "backends/session/session_platform.h"
#include "backends/time/virtual_runtime.h"
#include "support/compression_fakes.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using test::sessionFrame;
using testing::ElementsAre;

class MovieCompression : public testing::Test {
 protected:
  void setOptions(const std::shared_ptr<const platform::QTCompressionOptions>& options,
                  const char* mediaType = platform::QTMediaTypeVideo) {
    output_->setCompressionOptionsForConnection(options, {mediaType});
  }
  void frames(int count, std::size_t size = 144) {
    for (int number = 0; number < count; ++number) output_->consume(sessionFrame(number, size), true);
  }
  void finish() {
    output_->finish();
    test::sessionDrain(runtime_);
  }

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  const std::shared_ptr<const platform::QTCompressionOptions> preset_ = std::make_shared<test::FakePreset>("one");
  std::unique_ptr<MovieFileOutput> output_ =
      std::make_unique<MovieFileOutput>(runtime_, movies_, log_, reports_.observer(runtime_), nullptr, 240);
};

TEST_F(MovieCompression, IsNoneUntilItIsSet) {
  output_->recordToOutputFileURL("a.mov");
  finish();
  EXPECT_EQ(movies_.compressions.at("a.mov"), nullptr);
}

TEST_F(MovieCompression, HoldsForTheFilesThatAreOpenedFromThenOn) {
  output_->recordToOutputFileURL("a.mov");
  setOptions(preset_);
  output_->recordToOutputFileURL("b.mp4");
  setOptions(nullptr);
  output_->recordToOutputFileURL("c.mov");
  finish();
  EXPECT_EQ(movies_.compressions.at("a.mov"), nullptr);
  EXPECT_EQ(movies_.compressions.at("b.mp4"), preset_);
  EXPECT_EQ(movies_.compressions.at("c.mov"), nullptr);
}

TEST_F(MovieCompression, OptionsForTheSoundDoNotCompressThePictures) {
  setOptions(preset_, platform::QTMediaTypeSound);
  output_->recordToOutputFileURL("a.mov");
  finish();
  EXPECT_EQ(movies_.compressions.at("a.mov"), nullptr);
}

TEST_F(MovieCompression, TheFileThatCarriesAClipOnIsCompressedTheSameWay) {
  setOptions(preset_);
  output_->recordToOutputFileURL("a.mp4");
  frames(2);
  setOptions(nullptr);
  frames(2, 120);
  finish();
  EXPECT_EQ(movies_.compressions.at("a-part2.mp4"), preset_);
}

TEST_F(MovieCompression, FramesThatItLosesAreToldWithTheirTimecode) {
  movies_.onAppend = [this](const SharedBytes&) { runtime_.clock().sleepFor(1s); };
  MovieRecorder recorder(runtime_, movies_, log_, reports_.observer(runtime_), 1);
  recorder.open("a.mp4", preset_);
  recorder.push(sessionFrame(0));
  recorder.push(sessionFrame(1));
  EXPECT_THAT(log_.messages(), ElementsAre("Frame without a timecode dropped: the compression does not keep up"));
}

TEST_F(MovieCompression, TheQueueLevelIsThatOfTheFullestQueue) {
  movies_.onAppend = [this](const SharedBytes&) { runtime_.clock().sleepFor(1s); };
  SessionPlatform platform(runtime_, movies_, log_, {}, 50);
  EXPECT_EQ(platform.queueLevel().held, 0U);
  EXPECT_EQ(platform.queueLevel().capacity, 50U);
  const auto idle = std::dynamic_pointer_cast<MovieFileOutput>(platform.makeMovieFileOutput());
  const auto busy = std::dynamic_pointer_cast<MovieFileOutput>(platform.makeMovieFileOutput());
  ASSERT_NE(busy, nullptr);
  busy->recordToOutputFileURL("a.mp4");
  for (int number = 0; number < 5; ++number) busy->consume(sessionFrame(number), false);
  EXPECT_EQ(platform.queueLevel().held, 5U);
  platform.finishFiles();
  EXPECT_EQ(platform.queueLevel().held, 0U);
}

}  // namespace
}  // namespace zq::backend

#include "backends/session/session_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using test::SessionDevice;
using testing::ElementsAre;
using testing::IsEmpty;

class SessionPlatforms : public testing::Test {
 protected:
  SessionPlatform::Observer observer() {
    SessionPlatform::Observer result;
    result.files = reports_.observer(runtime_);
    result.deviceFailed = [this](const Error& error) { errors_.push_back(error.message); };
    result.frameSeen = [this](platform::QTCaptureFileOutput&, const platform::QTSampleBuffer&) { ++framesSeen_; };
    return result;
  }

  VirtualRuntime runtime_;
  test::SessionLog log_;
  test::SessionMovies movies_;
  test::SessionReports reports_;
  std::vector<std::string> errors_;
  int framesSeen_ = 0;
  SessionPlatform platform_{runtime_, movies_, log_, observer()};
};

TEST_F(SessionPlatforms, EightSecondsOfFramesMayWait) {
  EXPECT_EQ(SessionPlatform::kQueueFrames, 8U * 30U);
}

TEST_F(SessionPlatforms, FramesGoFromTheDeviceToTheFile) {
  const auto session = platform_.makeSession();
  const auto output = platform_.makeMovieFileOutput();
  const auto other = platform_.makeMovieFileOutput();
  const auto device = std::make_shared<SessionDevice>();
  ASSERT_TRUE(session->addOutput(platform_.makeVideoPreviewOutput()).ok());
  ASSERT_TRUE(session->addOutput(platform_.makeAudioPreviewOutput()).ok());
  ASSERT_TRUE(session->addOutput(output).ok());
  ASSERT_TRUE(session->addOutput(other).ok());
  ASSERT_TRUE(session->addInput(platform_.makeDeviceInput(device)).ok());
  test::SessionDelegate delegate;
  output->setDelegate(&delegate);
  session->startRunning();
  output->recordToOutputFileURL("a.dv");
  for (int i = 0; i < 10; ++i) device->deliver(test::makeFrame(DVSystem::pal625_50));
  other->recordToOutputFileURL("b.dv");
  for (int i = 0; i < 5; ++i) device->deliver(test::makeFrame(DVSystem::pal625_50));
  session->stopRunning();
  platform_.finishFiles();
  test::sessionDrain(runtime_);
  EXPECT_EQ(movies_["a.dv"].frames.size(), 15U);
  EXPECT_EQ(movies_["b.dv"].frames.size(), 5U);
  EXPECT_EQ(reports_.finished.size(), 2U);
  EXPECT_EQ(platform_.frameCounts().recorded, 20);
  EXPECT_EQ(platform_.frameCounts().dropped, 0);
  output->setDelegate(nullptr);
  EXPECT_EQ(framesSeen_, 15) << "the other output has no delegate";
  EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(SessionPlatforms, DroppedFramesAreCountedOverAllOutputs) {
  movies_["a.dv"].failsToCreate = true;
  movies_["b.dv"].failsAtFrame = 1;
  const auto session = platform_.makeSession();
  const auto device = std::make_shared<SessionDevice>();
  for (const char* path : {"a.dv", "b.dv"}) {
    const auto output = platform_.makeMovieFileOutput();
    ASSERT_TRUE(session->addOutput(output).ok());
    output->recordToOutputFileURL(path);
  }
  ASSERT_TRUE(session->addInput(platform_.makeDeviceInput(device)).ok());
  session->startRunning();
  for (int i = 0; i < 4; ++i) device->deliver(test::makeFrame(DVSystem::pal625_50));
  platform_.finishFiles();
  EXPECT_EQ(platform_.frameCounts().recorded, 1);
  EXPECT_EQ(platform_.frameCounts().dropped, 7);
}

TEST_F(SessionPlatforms, AFailureOfTheDeviceReachesTheHost) {
  const auto session = platform_.makeSession();
  const auto device = std::make_shared<SessionDevice>();
  ASSERT_TRUE(session->addInput(platform_.makeDeviceInput(device)).ok());
  session->startRunning();
  device->sink->deliveryFailed({"The tape tore", ""});
  test::sessionDrain(runtime_);
  EXPECT_THAT(errors_, ElementsAre("The tape tore"));
}

TEST_F(SessionPlatforms, AnInputIsThatOfItsDevice) {
  const auto device = std::make_shared<SessionDevice>();
  EXPECT_EQ(platform_.makeDeviceInput(device)->device(), device);
}

TEST_F(SessionPlatforms, TheSoundPreviewKeepsItsVolume) {
  const auto preview = platform_.makeAudioPreviewOutput();
  EXPECT_EQ(preview->volume(), 1.0F);
  preview->setVolume(0.25F);
  EXPECT_EQ(preview->volume(), 0.25F);
}

TEST_F(SessionPlatforms, AFileOutputTakesPictureAndSound) {
  std::vector<std::string> types;
  for (const auto& connection : platform_.makeMovieFileOutput()->connections()) types.push_back(connection.mediaType);
  EXPECT_THAT(types, ElementsAre(platform::QTMediaTypeVideo, platform::QTMediaTypeSound));
}

}  // namespace
}  // namespace zq::backend

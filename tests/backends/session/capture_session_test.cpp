#include "backends/session/capture_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/session/frame_consumer.h"
#include "backends/time/virtual_runtime.h"
#include "support/session_fakes.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using test::SessionDevice;
using test::SessionInput;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

/// Writes down the frames that it gets, and, in a list that it shares with others, when.
class NotingOutput : public platform::QTCaptureOutput, public FrameConsumer {
 public:
  NotingOutput(std::string name, std::vector<std::string>& journal) : name_(std::move(name)), journal_(journal) {}

  void consume(const platform::QTSampleBuffer& frame, bool sourceCanWait) override {
    frames.push_back(frame);
    canWait.push_back(sourceCanWait);
    journal_.push_back(name_);
    if (onFrame) onFrame();
  }

  std::vector<platform::QTSampleBuffer> frames;
  std::vector<bool> canWait;
  std::function<void()> onFrame;

 private:
  const std::string name_;
  std::vector<std::string>& journal_;
};

/// An output that shows nothing, as without a window.
class IdleOutput : public platform::QTCaptureOutput {};

class CaptureSessions : public testing::Test {
 protected:
  void SetUp() override { EXPECT_TRUE(session_->addOutput(output_).ok()); }

  void addInput() { ASSERT_TRUE(session_->addInput(input_).ok()); }
  SharedBytes palFrame(int frames = 0) {
    FrameStamp stamp;
    stamp.timecode = test::timecodeOf(0, 0, 10, frames);
    return test::makeFrame(kPal, stamp);
  }

  VirtualRuntime runtime_;
  std::vector<std::string> journal_;
  std::vector<Error> errors_;
  const std::shared_ptr<SessionDevice> device_ = std::make_shared<SessionDevice>();
  const std::shared_ptr<SessionInput> input_ = std::make_shared<SessionInput>(device_);
  const std::shared_ptr<NotingOutput> output_ = std::make_shared<NotingOutput>("first", journal_);
  std::unique_ptr<CaptureSession> session_ =
      std::make_unique<CaptureSession>(runtime_, [this](const Error& error) { errors_.push_back(error); });
};

TEST_F(CaptureSessions, EachFrameGoesToTheOutputsInTheOrderInWhichTheyWereAdded) {
  const auto second = std::make_shared<NotingOutput>("second", journal_);
  const auto third = std::make_shared<NotingOutput>("third", journal_);
  ASSERT_TRUE(session_->addOutput(std::make_shared<IdleOutput>()).ok());
  ASSERT_TRUE(session_->addOutput(second).ok());
  ASSERT_TRUE(session_->addOutput(third).ok());
  addInput();
  session_->startRunning();
  device_->deliver(palFrame(0));
  device_->deliver(palFrame(1));
  EXPECT_THAT(journal_, ElementsAre("first", "second", "third", "first", "second", "third"));
}

TEST_F(CaptureSessions, TheOutputsShareOneFrameAndItsAttributes) {
  const auto second = std::make_shared<NotingOutput>("second", journal_);
  ASSERT_TRUE(session_->addOutput(second).ok());
  addInput();
  session_->startRunning();
  const SharedBytes frame = palFrame(7);
  device_->deliver(frame);
  ASSERT_EQ(output_->frames.size(), 1U);
  EXPECT_TRUE(output_->frames[0].bytesForAllSamples.sameBufferAs(frame));
  EXPECT_TRUE(second->frames[0].bytesForAllSamples.sameBufferAs(frame));
  EXPECT_EQ(output_->frames[0].smpteTime, second->frames[0].smpteTime);
  EXPECT_EQ(output_->frames[0].smpteTime->mFrames, 7);
  EXPECT_EQ(output_->frames[0].formatDescription.formatType, device_->format.formatType);
  EXPECT_EQ(output_->frames[0].formatDescription.mediaType, device_->format.mediaType);
}

TEST_F(CaptureSessions, AFrameSaysHowItFollowsTheOneBeforeIt) {
  addInput();
  session_->startRunning();
  device_->deliver(palFrame(7));
  device_->deliver(palFrame(8));
  device_->deliver(palFrame(3));
  device_->deliver(test::makeFrame(kNtsc));
  std::vector<platform::SceneChangeType> changes;
  for (const auto& frame : output_->frames) changes.push_back(frame.sceneChangeType);
  EXPECT_THAT(changes, ElementsAre(platform::SceneChangeType::none, platform::SceneChangeType::none,
                                   platform::SceneChangeType::timeStampDiscontinuity,
                                   platform::SceneChangeType::explicitChange));
}

TEST_F(CaptureSessions, NothingIsDeliveredBeforeItRunsAndAfterItStops) {
  addInput();
  EXPECT_EQ(device_->sink, nullptr);
  session_->deliverFrame(device_->format, palFrame());
  EXPECT_THAT(output_->frames, IsEmpty());
  session_->startRunning();
  EXPECT_TRUE(session_->isRunning());
  device_->deliver(palFrame());
  session_->stopRunning();
  EXPECT_FALSE(session_->isRunning());
  EXPECT_EQ(device_->sink, nullptr);
  // A frame that was under way when it stopped.
  session_->deliverFrame(device_->format, palFrame());
  EXPECT_EQ(output_->frames.size(), 1U);
  session_->startRunning();
  device_->deliver(palFrame());
  EXPECT_EQ(output_->frames.size(), 2U);
}

TEST_F(CaptureSessions, NothingIsDeliveredWithoutAnInput) {
  session_->startRunning();
  session_->deliverFrame(device_->format, palFrame());
  EXPECT_THAT(output_->frames, IsEmpty());
  EXPECT_EQ(session_->inputCount(), 0U);
}

TEST_F(CaptureSessions, AnInputThatComesWhileItRunsIsConnectedAtOnce) {
  session_->startRunning();
  addInput();
  device_->deliver(palFrame());
  EXPECT_EQ(output_->frames.size(), 1U);
}

TEST_F(CaptureSessions, ASecondInputIsRefused) {
  addInput();
  const Status second = session_->addInput(std::make_shared<SessionInput>(std::make_shared<SessionDevice>()));
  ASSERT_FALSE(second.ok());
  EXPECT_THAT(second.error().text(), HasSubstr("has a device already"));
  EXPECT_EQ(session_->inputCount(), 1U);
}

TEST_F(CaptureSessions, TheInputOfAClosedDeviceIsRefused) {
  device_->close();
  const Status added = session_->addInput(input_);
  ASSERT_FALSE(added.ok());
  EXPECT_THAT(added.error().text(), HasSubstr("The fake camcorder is not open"));
  EXPECT_EQ(session_->inputCount(), 0U);
}

TEST_F(CaptureSessions, ARemovedInputDeliversNothingAndLeavesRoomForAnother) {
  addInput();
  session_->startRunning();
  session_->removeInput(input_);
  EXPECT_EQ(session_->inputCount(), 0U);
  EXPECT_EQ(device_->sink, nullptr);
  session_->deliverFrame(device_->format, palFrame());
  EXPECT_THAT(output_->frames, IsEmpty());
  const auto other = std::make_shared<SessionDevice>();
  ASSERT_TRUE(session_->addInput(std::make_shared<SessionInput>(other)).ok());
  other->deliver(palFrame());
  EXPECT_EQ(output_->frames.size(), 1U);
}

TEST_F(CaptureSessions, RemovingAnInputThatItDoesNotHaveDoesNothing) {
  addInput();
  session_->startRunning();
  session_->removeInput(std::make_shared<SessionInput>(device_));
  session_->removeInput(nullptr);
  EXPECT_EQ(session_->inputCount(), 1U);
  EXPECT_EQ(device_->sink, session_.get());
}

TEST_F(CaptureSessions, TheOutputsLearnWhetherTheSourceCanWait) {
  addInput();
  session_->startRunning();
  device_->deliver(palFrame());
  device_->waits = false;
  device_->deliver(palFrame());
  EXPECT_THAT(output_->canWait, ElementsAre(true, false));
}

TEST_F(CaptureSessions, ItMayBeStoppedFromADelivery) {
  const auto second = std::make_shared<NotingOutput>("second", journal_);
  ASSERT_TRUE(session_->addOutput(second).ok());
  addInput();
  session_->startRunning();
  output_->onFrame = [&] { session_->stopRunning(); };
  device_->deliver(palFrame());
  device_->deliver(palFrame());
  EXPECT_THAT(journal_, ElementsAre("first", "second")) << "the frame at hand still reaches everybody";
}

TEST_F(CaptureSessions, AFailureOfTheDeviceIsToldOnTheMainThread) {
  addInput();
  session_->startRunning();
  runtime_.startThread("delivery", [&] { session_->deliveryFailed({"The tape tore", ""}); })->join();
  EXPECT_THAT(errors_, IsEmpty());
  test::sessionDrain(runtime_);
  ASSERT_EQ(errors_.size(), 1U);
  EXPECT_EQ(errors_[0].message, "The tape tore");
}

TEST_F(CaptureSessions, AFailureThatNobodyAskedForIsNoTrouble) {
  CaptureSession session(runtime_, nullptr);
  session.deliveryFailed({"The tape tore", ""});
  test::sessionDrain(runtime_);
}

TEST_F(CaptureSessions, ItGoesWhenTheDeliveryUnderWayHasEnded) {
  addInput();
  session_->startRunning();
  bool delivered = false;
  output_->onFrame = [&] {
    runtime_.clock().sleepFor(3s);
    delivered = true;
  };
  const auto delivery = runtime_.startThread("delivery", [&] { device_->deliver(palFrame()); });
  runtime_.clock().sleepFor(1s);
  device_->onWait = [&] { delivery->join(); };
  session_.reset();
  EXPECT_TRUE(delivered);
  EXPECT_EQ(device_->sink, nullptr);
}

// The device may still be delivering to the session that it was taken out of.
TEST_F(CaptureSessions, ItWaitsForTheDeviceThatWasRemovedToo) {
  addInput();
  session_->startRunning();
  bool delivered = false;
  output_->onFrame = [&] {
    runtime_.clock().sleepFor(3s);
    delivered = true;
  };
  const auto delivery = runtime_.startThread("delivery", [&] { device_->deliver(palFrame()); });
  runtime_.clock().sleepFor(1s);
  device_->onWait = [&] { delivery->join(); };
  session_->removeInput(input_);
  EXPECT_FALSE(delivered) << "removing it does not wait";
  session_.reset();
  EXPECT_TRUE(delivered);
}

TEST_F(CaptureSessions, ARemovedDeviceMayGoBeforeTheSession) {
  auto device = std::make_shared<SessionDevice>();
  const std::weak_ptr<SessionDevice> gone = device;
  auto input = std::make_shared<SessionInput>(std::move(device));
  ASSERT_TRUE(session_->addInput(input).ok());
  session_->removeInput(input);
  input.reset();
  EXPECT_TRUE(gone.expired());
  session_.reset();
}

}  // namespace
}  // namespace zq::backend

// Transport commands and queries, row by row.

#include "capture/transport.h"

#include <gmock/gmock.h>

#include <set>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using platform::AVCTransportControls;
using testing::ElementsAre;
using testing::IsEmpty;

struct Command {
  const char* name;
  std::function<void(ZQACController&)> give;
  AVCTransportControls before;
  AVCTransportControls sent;

  friend void PrintTo(const Command& command, std::ostream* out) { *out << command.name; }
};

const std::vector<Command>& commands() {
  static const std::vector<Command> rows{
      {"play", [](ZQACController& c) { c.setDevicePlaying(true); }, {0, 0}, {1, 10000}},
      {"pause", [](ZQACController& c) { c.setDevicePlaying(false); }, {1, 10000}, {1, 0}},
      {"pause a stopped tape", [](ZQACController& c) { c.setDevicePlaying(false); }, {0, 0}, {1, 0}},
      {"stop", [](ZQACController& c) { c.stopDevice(); }, {1, 10000}, {0, 0}},
      {"wind on", [](ZQACController& c) { c.setDeviceFastForwarding(true); }, {0, 0}, {0, 13000}},
      {"search forward", [](ZQACController& c) { c.setDeviceFastForwarding(true); }, {1, 10000}, {1, 13000}},
      {"wind on off", [](ZQACController& c) { c.setDeviceFastForwarding(false); }, {0, 13000}, {0, 0}},
      {"search forward off", [](ZQACController& c) { c.setDeviceFastForwarding(false); }, {1, 13000}, {1, 0}},
      {"rewind", [](ZQACController& c) { c.setDeviceRewinding(true); }, {0, 0}, {0, -13000}},
      {"search back", [](ZQACController& c) { c.setDeviceRewinding(true); }, {1, 0}, {1, -13000}},
      {"rewind off", [](ZQACController& c) { c.setDeviceRewinding(false); }, {0, -13000}, {0, 0}},
      {"search back off", [](ZQACController& c) { c.setDeviceRewinding(false); }, {1, -13000}, {1, 0}}};
  return rows;
}

class TransportCommand : public CaptureTest, public testing::WithParamInterface<Command> {};

INSTANTIATE_TEST_SUITE_P(Table, TransportCommand, testing::ValuesIn(commands()));

TEST_P(TransportCommand, IsSentToTheDevice) {
  const auto device = selectDevice(GetParam().before);
  GetParam().give(*controller_);
  const AVCTransportControls& sent = GetParam().sent;
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode " + std::to_string(sent.playbackMode) + " speed " +
                                            std::to_string(sent.speed)));
}

TEST_P(TransportCommand, SendsNothingToADeviceThatHasNoTransport) {
  selectDevice(std::nullopt);
  GetParam().give(*controller_);
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

TEST_P(TransportCommand, SendsNothingToADeviceThatMayOnlyBeRead) {
  const auto device = selectDevice(GetParam().before);
  device->readOnly = true;
  GetParam().give(*controller_);
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

TEST_P(TransportCommand, WithoutADeviceDoesNoHarm) {
  GetParam().give(*controller_);
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

class TransportQueries : public CaptureTest {
 protected:
  /// The names of the queries that are true.
  std::set<std::string> answers() {
    std::set<std::string> names;
    if (controller_->isDevicePlaying()) names.insert("playing");
    if (controller_->isDevicePause()) names.insert("pause");
    if (controller_->isDeviceFastForwarding()) names.insert("forward");
    if (controller_->isDeviceRewinding()) names.insert("rewind");
    return names;
  }
};

TEST_F(TransportQueries, AnswerForEverySpeedAndMode) {
  using Names = std::set<std::string>;
  const auto device = selectDevice(AVCTransportControls{0, 0});
  const auto answersFor = [&](unsigned long mode, long speed) {
    device->controls = {mode, speed};
    return answers();
  };
  EXPECT_EQ(answersFor(1, 10000), Names{"playing"});
  EXPECT_EQ(answersFor(0, 10000), Names{});
  EXPECT_EQ(answersFor(2, 10000), Names{});
  EXPECT_EQ(answersFor(1, 0), Names{"pause"});
  EXPECT_EQ(answersFor(0, 0), Names{});
  for (const unsigned long mode : {0UL, 1UL}) {
    for (const long speed : {1000, 4000, 7000, 13000, 16000, 19000}) {
      EXPECT_EQ(answersFor(mode, speed), Names{"forward"}) << speed;
    }
    for (const long speed : {-1000, -4000, -7000, -10000, -13000, -16000, -19000}) {
      EXPECT_EQ(answersFor(mode, speed), Names{"rewind"}) << speed;
    }
    for (const long speed : {1, 999, 1001, 9999, 10001, 12999, 20000, -1, -9999, -20000}) {
      EXPECT_EQ(answersFor(mode, speed), Names{}) << speed;
    }
  }
}

TEST_F(TransportQueries, AreFalseWithoutADevice) {
  EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(TransportQueries, AreFalseWithoutATransport) {
  selectDevice(std::nullopt);
  EXPECT_THAT(answers(), IsEmpty());
  EXPECT_EQ(controller_->controllableDevice(), nullptr);
  EXPECT_TRUE(controller_->hasRecordingDevice());
}

TEST_F(TransportQueries, AreFalseWhereTheTransportMayOnlyBeRead) {
  const auto device = selectDevice(AVCTransportControls{1, 10000});
  device->readOnly = true;
  EXPECT_THAT(answers(), IsEmpty());
  EXPECT_EQ(controller_->controllableDevice(), nullptr);
}

class TransportAndSession : public CaptureTest {};

TEST_F(TransportAndSession, PlayAndPauseStartASessionThatStands) {
  selectDevice(AVCTransportControls{0, 0});
  controller_->stopDevice();
  journal_.clear();
  controller_->setDevicePlaying(true);
  EXPECT_THAT(journal_.lines(), ElementsAre("device: mode 1 speed 10000", "session: start"));
  controller_->stopDevice();
  journal_.clear();
  controller_->setDevicePlaying(false);
  EXPECT_THAT(journal_.lines(), ElementsAre("device: mode 1 speed 0", "session: start"));
}

TEST_F(TransportAndSession, PlayLeavesARunningSession) {
  selectDevice(AVCTransportControls{0, 0});
  controller_->setDevicePlaying(true);
  EXPECT_THAT(linesOf({"session"}), IsEmpty());
}

TEST_F(TransportAndSession, StopStopsTheSessionOnce) {
  selectDevice(AVCTransportControls{1, 10000});
  controller_->stopDevice();
  controller_->stopDevice();
  EXPECT_THAT(journal_.lines(), ElementsAre("device: mode 0 speed 0", "session: stop", "device: mode 0 speed 0"));
}

TEST_F(TransportAndSession, WithoutAControllableDeviceTheSessionStillStartsAndStops) {
  selectDevice(std::nullopt);
  controller_->stopDevice();
  controller_->setDevicePlaying(true);
  EXPECT_THAT(journal_.lines(), ElementsAre("session: stop", "session: start"));
}

TEST_F(TransportAndSession, WindingLeavesTheSessionAlone) {
  selectDevice(AVCTransportControls{0, 0});
  controller_->stopDevice();
  journal_.clear();
  controller_->setDeviceFastForwarding(true);
  controller_->setDeviceRewinding(true);
  EXPECT_THAT(linesOf({"session"}), IsEmpty());
}

class AskingForPlaying : public CaptureTest {
 protected:
  AskingForPlaying() { device_ = selectDevice(AVCTransportControls{1, 10000}); }
  std::shared_ptr<FakeCaptureDevice> device_;
};

TEST_F(AskingForPlaying, EndsARecordingOnATapeThatDoesNotPlay) {
  for (const AVCTransportControls controls : {AVCTransportControls{0, 0}, AVCTransportControls{1, 0},
                                              AVCTransportControls{1, 13000}, AVCTransportControls{1, -10000}}) {
    startRecording();
    device_->controls = controls;
    EXPECT_FALSE(controller_->isDevicePlaying());
    EXPECT_FALSE(controller_->isRecording());
    device_->controls = {1, 10000};
  }
}

TEST_F(AskingForPlaying, LeavesARecordingOnATapeThatPlays) {
  startRecording();
  EXPECT_TRUE(controller_->isDevicePlaying());
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(AskingForPlaying, EndsARecordingOfADeviceThatWentAway) {
  startRecording();
  device_->controls = std::nullopt;
  EXPECT_FALSE(controller_->isDevicePlaying());
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(AskingForPlaying, WhileNothingIsRecordedTellsNobody) {
  device_->controls = {0, 0};
  EXPECT_FALSE(controller_->isDevicePlaying());
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(AskingForPlaying, TheOtherQueriesEndNothing) {
  startRecording();
  device_->controls = {0, 0};
  EXPECT_FALSE(controller_->isDevicePause());
  EXPECT_FALSE(controller_->isDeviceFastForwarding());
  EXPECT_FALSE(controller_->isDeviceRewinding());
  EXPECT_TRUE(controller_->isRecording());
}

}  // namespace
}  // namespace zq::test

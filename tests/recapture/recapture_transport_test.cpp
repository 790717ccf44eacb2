// The commands and queries of the transport, and the actions by which the tape is moved.

#include <gmock/gmock.h>

#include <set>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using platform::AVCTransportControls;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct Command {
  const char* name;
  std::function<void(ZQACRecaptureController&)> give;
  AVCTransportControls before;
  AVCTransportControls sent;

  friend void PrintTo(const Command& command, std::ostream* out) { *out << command.name; }
};

const std::vector<Command>& commands() {
  using Controller = ZQACRecaptureController;
  static const std::vector<Command> rows{
      {"stop", [](Controller& c) { c.stopPlaying(); }, {1, 10000}, {0, 0}},
      {"play", [](Controller& c) { c.setDevicePlaying(true); }, {0, 0}, {1, 10000}},
      {"pause", [](Controller& c) { c.setDevicePlaying(false); }, {0, 0}, {1, 0}},
      {"rewind", [](Controller& c) { c.setDeviceRewinding(true); }, {0, 0}, {0, -13000}},
      {"search back", [](Controller& c) { c.setDeviceRewinding(true); }, {1, 10000}, {1, -13000}},
      {"rewind off", [](Controller& c) { c.setDeviceRewinding(false); }, {0, -13000}, {0, 0}},
      {"search back off", [](Controller& c) { c.setDeviceRewinding(false); }, {1, -13000}, {1, 0}},
      {"wind on", [](Controller& c) { c.setDeviceFastForwarding(true); }, {0, 0}, {0, 13000}},
      {"search forward", [](Controller& c) { c.setDeviceFastForwarding(true); }, {1, 10000}, {1, 13000}},
      {"search forward off", [](Controller& c) { c.setDeviceFastForwarding(false); }, {1, 13000}, {1, 0}},
      {"back at a speed", [](Controller& c) { c.setDeviceRewindingInSpeed(-7000); }, {0, 0}, {1, -7000}},
      {"back at a forward speed", [](Controller& c) { c.setDeviceRewindingInSpeed(123); }, {0, 0}, {1, 123}},
      {"forward at a speed", [](Controller& c) { c.setDeviceForwardingInSpeed(4000); }, {0, 0}, {1, 4000}},
      {"forward at a reverse speed", [](Controller& c) { c.setDeviceForwardingInSpeed(-1); }, {0, 0}, {1, -1}}};
  return rows;
}

class RecaptureCommand : public RecaptureTest, public testing::WithParamInterface<Command> {};

INSTANTIATE_TEST_SUITE_P(Table, RecaptureCommand, testing::ValuesIn(commands()));

TEST_P(RecaptureCommand, IsSentToTheDevice) {
  selectDevice(GetParam().before);
  GetParam().give(*controller_);
  const AVCTransportControls& sent = GetParam().sent;
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode " + std::to_string(sent.playbackMode) + " speed " +
                                            std::to_string(sent.speed)));
}

TEST_P(RecaptureCommand, IsIgnoredWithoutATransportThatMayBeSet) {
  selectDevice(std::nullopt);
  GetParam().give(*controller_);
  selectDevice(GetParam().before)->readOnly = true;
  GetParam().give(*controller_);
  controller_->setSelectedVideoDevice(nullptr);
  journal_.clear();
  GetParam().give(*controller_);
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

class RecaptureTransport : public RecaptureTest {
 protected:
  /// The names of the queries that are true.
  std::set<std::string> answers() {
    std::set<std::string> names;
    if (controller_->isDevicePlaying()) names.insert("playing");
    if (controller_->isDevicePause()) names.insert("pause");
    if (controller_->isDeviceFastforwarding()) names.insert("forward");
    if (controller_->isDeviceRewinding()) names.insert("rewind");
    return names;
  }
};

TEST_F(RecaptureTransport, AnswersForEverySpeedAndMode) {
  using Names = std::set<std::string>;
  const auto device = selectDevice(kStopped);
  const auto answersFor = [&](unsigned long mode, long speed) {
    device->controls = {mode, speed};
    return answers();
  };
  EXPECT_EQ(answersFor(1, 10000), Names{"playing"});
  EXPECT_EQ(answersFor(0, 10000), Names{});
  EXPECT_EQ(answersFor(1, 0), Names{"pause"});
  EXPECT_EQ(answersFor(0, 0), Names{});
  for (const unsigned long mode : {0UL, 1UL}) {
    for (const long speed : {1000, 4000, 7000, 13000, 16000, 19000}) {
      EXPECT_EQ(answersFor(mode, speed), Names{"forward"}) << speed;
    }
    for (const long speed : {-1000, -4000, -7000, -10000, -13000, -16000, -19000}) {
      EXPECT_EQ(answersFor(mode, speed), Names{"rewind"}) << speed;
    }
    for (const long speed : {1, 12999, -1, -20000, 20000}) EXPECT_EQ(answersFor(mode, speed), Names{}) << speed;
  }
}

TEST_F(RecaptureTransport, AnswersNoWithoutATransportThatMayBeSet) {
  EXPECT_THAT(answers(), IsEmpty());
  for (const AVCTransportControls& controls : {kPlaying, {1, 0}, {1, 13000}, {1, -13000}}) {
    selectDevice(controls)->readOnly = true;
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_EQ(controller_->controllableDevice(), nullptr);
  }
  selectDevice(std::nullopt);
  EXPECT_THAT(answers(), IsEmpty());
  EXPECT_TRUE(controller_->hasRecordingDevice());
}

TEST_F(RecaptureTransport, PlayAndPauseStartTheSessionWhateverTheDevice) {
  const Lines twice{"session: start", "session: start"};
  const auto linesOfBoth = [this] {
    journal_.clear();
    controller_->setDevicePlaying(true);
    controller_->setDevicePlaying(false);
    return linesOf({"session"});
  };
  EXPECT_EQ(linesOfBoth(), twice);
  selectDevice(std::nullopt);
  EXPECT_EQ(linesOfBoth(), twice);
  selectDevice(kPlaying)->readOnly = true;
  EXPECT_EQ(linesOfBoth(), twice);
}

TEST_F(RecaptureTransport, NoOtherCommandTouchesTheSession) {
  selectDevice(kPlaying);
  controller_->stopPlaying();
  controller_->setDeviceRewinding(true);
  controller_->setDeviceFastForwarding(true);
  controller_->setDeviceRewindingInSpeed(-7000);
  EXPECT_THAT(linesOf({"session"}), IsEmpty());
}

TEST_F(RecaptureTransport, SeekingWindsForFourSeconds) {
  const auto device = selectDevice(kPlaying);
  std::vector<double> times;
  device->beforeObeying = [&](const AVCTransportControls&) { times.push_back(secondsNow()); };
  controller_->seeking();
  EXPECT_THAT(journal_.lines(), ElementsAre("device: mode 0 speed 0", "device: mode 0 speed 13000",
                                            "device: mode 1 speed 10000", "session: start", "note: Searching...."));
  EXPECT_THAT(times, ElementsAre(0, 0, 4));
}

TEST_F(RecaptureTransport, SeekingLetsOtherThreadsAsk) {
  double asked = -1;
  const auto other = runtime_.startThread("other", [&] {
    runtime_.clock().sleepFor(std::chrono::seconds(1));
    if (!controller_->isRecording()) asked = secondsNow();
  });
  controller_->seeking();
  other->join();
  EXPECT_EQ(asked, 1);
}

TEST_F(RecaptureTransport, RestartsTheSessionAfterASecond) {
  controller_->restartSession();
  EXPECT_THAT(journal_.lines(), ElementsAre("session: stop", "session: start"));
  EXPECT_EQ(secondsNow(), 1);
}

struct ActionRow {
  DeviceAction action;
  AVCTransportControls before;
  std::vector<std::string> lines;
};

class RecaptureAction : public RecaptureTest, public testing::WithParamInterface<ActionRow> {};

const std::vector<ActionRow>& actions() {
  static const std::vector<ActionRow> rows{
      {DeviceAction::nothing, {1, 13000}, {}},
      {DeviceAction::play, {0, 0}, {"device: mode 1 speed 10000", "session: start"}},
      {DeviceAction::play, {1, 10000}, {}},
      {DeviceAction::stop, {1, 10000}, {"device: mode 0 speed 0"}},
      {DeviceAction::pause, {0, 0}, {"device: mode 1 speed 0", "session: start"}},
      {DeviceAction::pause, {1, 0}, {"device: mode 1 speed 0", "session: start"}},
      {DeviceAction::forward, {1, 10000}, {"device: mode 1 speed 13000"}},
      {DeviceAction::forward, {1, 1000}, {}},
      {DeviceAction::stopThenForward, {1, 13000}, {"device: mode 0 speed 0", "device: mode 0 speed 13000"}},
      {DeviceAction::back, {1, 10000}, {"device: mode 1 speed -13000"}},
      {DeviceAction::back, {1, -10000}, {}},
      {DeviceAction::stopThenBack, {1, -13000}, {"device: mode 0 speed 0", "device: mode 0 speed -13000"}},
      {static_cast<DeviceAction>(8), {1, 10000}, {"device: mode 1 speed 10000", "session: start"}},
      {static_cast<DeviceAction>(-1), {0, 0}, {"device: mode 1 speed 10000", "session: start"}}};
  return rows;
}

INSTANTIATE_TEST_SUITE_P(Table, RecaptureAction, testing::ValuesIn(actions()));

TEST_P(RecaptureAction, IsCarriedOut) {
  selectDevice(GetParam().before);
  controller_->perform(GetParam().action);
  EXPECT_THAT(journal_.lines(), ElementsAreArray(GetParam().lines));
}

}  // namespace
}  // namespace zq::test

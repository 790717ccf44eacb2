// How a tape is brought back to the start of the clip that it is in, and slowed down before the one that comes.

#include <gmock/gmock.h>

#include "recapture/positioning.h"
#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNote[] = "Clip found, camera will start the recapture";

class FineAdjustment : public RecaptureTest {
 protected:
  FineAdjustment() {
    device_ = selectDevice(kPlaying);
    clip_ = std::make_shared<ZQACClip>(recordOf({120, 5000}));  // to 5249
    controller_->setCurrentClip(clip_);
  }

  Lines commandsAt(int timecode, void (ZQACRecaptureController::*step)()) {
    device_->controls = kPlaying;
    controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, timecode));
    journal_.clear();
    (controller_.get()->*step)();
    return deviceCommands();
  }
  Lines adjustAt(int timecode) { return commandsAt(timecode, &ZQACRecaptureController::tinyAdjustToBeginning); }
  Lines slowDownAt(int timecode) { return commandsAt(timecode, &ZQACRecaptureController::slowDown); }

  std::shared_ptr<FakeCaptureDevice> device_;
  ClipValue clip_;
};

TEST_F(FineAdjustment, GoesSlowlyBackUpTo30FramesBehindTheStart) {
  for (const int behind : {0, 1, 29, 30}) {
    EXPECT_THAT(adjustAt(5000 + behind), ElementsAre("device: mode 1 speed -7000")) << behind;
    EXPECT_EQ(note(), kNote);
  }
}

TEST_F(FineAdjustment, GoesSlowlyBackBeforeTheStartAsWell) {
  for (const int before : {1, 31, 100, 4999}) {
    EXPECT_THAT(adjustAt(5000 - before), ElementsAre("device: mode 1 speed -7000")) << before;
  }
}

TEST_F(FineAdjustment, GoesBackAtNormalSpeedFrom31To99FramesBehindTheStart) {
  for (const int behind : {31, 98, 99}) {
    EXPECT_THAT(adjustAt(5000 + behind), ElementsAre("device: mode 1 speed -10000")) << behind;
  }
}

TEST_F(FineAdjustment, LeavesTheDeckFrom100FramesOn) {
  for (const int behind : {100, 101, 100000}) {
    controller_->setProcessNote("");
    EXPECT_THAT(adjustAt(5000 + behind), IsEmpty()) << behind;
    EXPECT_EQ(note(), kNote);
  }
}

TEST_F(FineAdjustment, LeavesADeckThatWindsForward) {
  device_->controls = {1, 13000};
  controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, 5000));
  journal_.clear();
  controller_->tinyAdjustToBeginning();
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(FineAdjustment, SaysAndDoesNothingToADeckThatCannotBeControlled) {
  device_->readOnly = true;
  EXPECT_THAT(adjustAt(5000), IsEmpty());
  EXPECT_THAT(slowDownAt(5249), IsEmpty());
  EXPECT_EQ(note(), "");
}

TEST_F(FineAdjustment, CountsInTheTimebaseOfTheClip) {
  ClipRecord record = recordOf({120, 5000});
  record.timebase = 50;  // a second more is fifty frames more
  controller_->setCurrentClip(std::make_shared<ZQACClip>(record));
  EXPECT_THAT(adjustAt(5025), ElementsAre("device: mode 1 speed -10000"));
  EXPECT_THAT(adjustAt(5050), IsEmpty());
}

TEST_F(FineAdjustment, SlowsDown99FramesBeforeTheEndOfTheClipAndFewer) {
  EXPECT_THAT(slowDownAt(5249 - 101), IsEmpty());
  EXPECT_THAT(slowDownAt(5249 - 100), IsEmpty());
  EXPECT_THAT(slowDownAt(5249 - 99), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_THAT(slowDownAt(5249), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_THAT(slowDownAt(5249 + 500), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_EQ(note(), "");
}

TEST_F(FineAdjustment, WithoutAClipDoesNoHarm) {
  controller_->setCurrentClip(nullptr);
  EXPECT_THAT(slowDownAt(0), IsEmpty());
  EXPECT_THAT(adjustAt(0), ElementsAre("device: mode 1 speed -7000"));
}

TEST(SpeedToBeginning, HasItsBoundsAt30And99) {
  EXPECT_EQ(speedToBeginning(-1000), -7000);
  EXPECT_EQ(speedToBeginning(30), -7000);
  EXPECT_EQ(speedToBeginning(31), -10000);
  EXPECT_EQ(speedToBeginning(99), -10000);
  EXPECT_EQ(speedToBeginning(100), std::nullopt);
}

TEST(IsNearEnd, From99FramesOn) {
  EXPECT_FALSE(isNearEnd(100));
  EXPECT_TRUE(isNearEnd(99));
  EXPECT_TRUE(isNearEnd(-1));
}

TEST(FramesFromTo, CountsBackwardsAndTakesNoneForZero) {
  const auto at = [](int frame) { return valueWithSMPTETime(timecodeAtFrame(DVSystem::pal625_50, frame)); };
  EXPECT_EQ(framesFromTo(at(100), at(375), 25), 275);
  EXPECT_EQ(framesFromTo(at(375), at(100), 25), -275);
  EXPECT_EQ(framesFromTo(nullptr, at(26), 25), 26);
  EXPECT_EQ(framesFromTo(at(26), nullptr, 25), -26);
}

}  // namespace
}  // namespace zq::test

// When a compression that cannot keep up with a tape is warned about, and with what numbers.

#include "host/speed_check.h"

#include <gtest/gtest.h>

#include <functional>

#include "capture/capture_settings.h"
#include "support/backend_module_fake.h"
#include "support/compression_fakes.h"
#include "support/dv_recording_log.h"
#include "support/scratch_folder.h"
#include "support/tape_script.h"

namespace zq::host {
namespace {

class SpeedCheck : public ::testing::Test {
 protected:
  SpeedCheck() { CaptureSettings::registerDefaults(stored); }

  /// What is told of a tape of so many frames.
  std::vector<test::DVRecordingLog::Line> check(const std::string& compression, int frames,
                                                const std::vector<SettingChange>& changes = {}) {
    const std::string path = folder.file("tape.dv");
    test::writeTape(path, test::framesOf({{frames, StampDateTime{2004, 7, 15, 13, 30, 45}, std::nullopt}}));
    auto tape = backend::TapeImage::open(path);
    EXPECT_TRUE(tape.ok());
    RunSettings settings(runtime, stored, module);
    EXPECT_FALSE(settings.lay(RunSettings::Start::stored, {"", compression, {}, ""}, changes));
    warnIfTooSlow(module, platform, settings, "mov", *tape.value(), log, stopAsked);
    return log.lines;
  }

  std::function<bool()> stopAsked = [] { return false; };
  test::ScratchFolder folder;
  backend::RealRuntime runtime;
  backend::MemorySettings stored{runtime};
  test::FakeBackendModule module;
  test::FakeCompression platform;
  test::DVRecordingLog log;
};

TEST_F(SpeedCheck, OneThatDoesNotKeepUpIsWarnedAboutWithTheNumbers) {
  module.speed = 1.09;
  const auto lines = check("small", 300);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_TRUE(
      lines[0].message.starts_with("Small Film is compressed at 1.09 times the tape's pace on this machine, as "
                                   "50 frames of the tape showed; 1.1 times are needed."))
      << lines[0].message;
  EXPECT_EQ(module.measuredContainer, "mov");
}

TEST_F(SpeedCheck, OneThatKeepsUpIsNoWarning) {
  module.speed = 1.1;
  const auto lines = check("small", 300);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, LogLevel::info);
}

TEST_F(SpeedCheck, AHopelessOneIsTriedOnTwoFramesOnly) {
  module.speed = 0.09;
  const auto lines = check("small", 300);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(
      lines[0].message.starts_with("Small Film is compressed at 0.09 times the tape's pace on this machine, as "
                                   "2 frames of the tape showed; 1.1 times are needed."))
      << lines[0].message;
  EXPECT_EQ(module.measuredFrames, 2U);
}

TEST_F(SpeedCheck, WhoAsksToStopDoesNotWaitForAllGoesAndHearsNothing) {
  stopAsked = [] { return true; };
  module.speed = 0.5;
  EXPECT_TRUE(check("small", 300).empty());
  EXPECT_EQ(module.measuredFrames, 2U);
}

TEST_F(SpeedCheck, AShortTapeIsMeasuredWithWhatItHas) {
  check("custom", 7);
  EXPECT_EQ(module.measuredFrames, 7U);
}

TEST_F(SpeedCheck, WhatCannotBeMeasuredIsTold) {
  module.speed = Error{"no encoder", ""};
  const auto lines = check("large", 10);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_EQ(lines[0].message, "How fast Large Film is compressed on this machine could not be measured: no encoder");
}

TEST_F(SpeedCheck, MoviesAsReceivedAndRunsWithoutMoviesAreNotMeasured) {
  module.speed = 0.1;
  EXPECT_TRUE(check("none", 10).empty());
  EXPECT_TRUE(check("small", 10, {{"captureMovie", false}}).empty());
  EXPECT_EQ(module.measuredFrames, 0U);
}

}  // namespace
}  // namespace zq::host

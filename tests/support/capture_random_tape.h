#pragma once
// Random tapes, settings and users, for comparing the controller with the model.

#include <optional>
#include <random>
#include <variant>
#include <vector>

#include "support/capture_buffers.h"

namespace zq::test {

struct StartStep {};
struct StopStep {};
struct FileChangeStep {};
struct SettingStep {
  const char* key;
  int value;
};
using CaptureStep = std::variant<FrameRecipe, StartStep, StopStep, FileChangeStep, SettingStep>;

/// A seed's tape as it passes, with what the user does meanwhile.
class RandomTape {
 public:
  explicit RandomTape(std::uint64_t seed) : random_(seed) {
    lostDates_ = oneIn(3) ? 10 : 0;
    lostTimecodes_ = oneIn(3) ? 10 : 0;
    userActs_ = oneIn(2);
    longSteps_ = oneIn(2);
    system_ = oneIn(2) ? DVSystem::pal625_50 : DVSystem::ntsc525_60;
    mixed_ = oneIn(6);
  }

  std::vector<CaptureStep> steps() {
    addSetting("detectScene", below(5) != 0);
    addSetting("nbDropFrame", oneIn(3) ? 1 + below(8) : 0);
    addSetting("frameSampling", below(5) != 0);
    addSetting("sampleInterval", below(5));
    addSetting("captureMovie", below(6) != 0);
    steps_.emplace_back(StartStep{});
    const int scenes = 1 + below(8);
    for (int scene = 0; scene < scenes; ++scene) addScene();
    if (!oneIn(10)) steps_.emplace_back(StopStep{});
    return std::move(steps_);
  }

 private:
  int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }
  bool oneIn(int count) { return below(count) == 0; }
  bool percent(int chance) { return below(100) < chance; }
  void addSetting(const char* key, int value) { steps_.emplace_back(SettingStep{key, value}); }

  void addScene() {
    if (mixed_ && oneIn(2)) system_ = oneIn(2) ? DVSystem::pal625_50 : DVSystem::ntsc525_60;
    constexpr int kJumps[] = {0, 1, 2, 3, 100, 1000, -1, -60};
    date_ += kJumps[below(8)];
    const bool undated = oneIn(8);
    const bool constantTimecode = oneIn(8);
    const bool withoutTimecode = oneIn(12);
    bool follows = oneIn(2);
    if (!follows) timecode_ = oneIn(2) ? 0 : below(100000);
    const int frames = oneIn(4) ? 1 : 1 + below(18);
    for (int i = 0; i < frames; ++i) {
      if (userActs_) addUserAct();
      FrameRecipe frame;
      frame.id = nextId_++;
      frame.system = system_;
      frame.aspect = oneIn(2) ? 0 : 1;
      if (!withoutTimecode && !percent(lostTimecodes_)) frame.timecode = timecodeAtFrame(system_, timecode_);
      if (!undated && !percent(lostDates_)) frame.date = dateAt(date_ % 36000);
      if (!follows || constantTimecode || percent(1)) {
        frame.change =
            oneIn(3) ? platform::SceneChangeType::explicitChange : platform::SceneChangeType::timeStampDiscontinuity;
      }
      follows = !percent(2);
      steps_.emplace_back(frame);
      if (!constantTimecode) timecode_ += longSteps_ && oneIn(3) ? 1 + below(60) : 1;
      if (oneIn(20)) ++date_;
    }
  }

  void addUserAct() {
    if (percent(3)) steps_.emplace_back(StopStep{});
    if (percent(6)) steps_.emplace_back(StartStep{});
    if (percent(2)) steps_.emplace_back(FileChangeStep{});
    if (percent(1)) addSetting("detectScene", below(2));
    if (percent(1)) addSetting("nbDropFrame", below(6));
    if (percent(1)) addSetting("frameSampling", below(2));
    if (percent(2)) addSetting("sampleInterval", below(5));
    if (percent(1)) addSetting("captureMovie", below(2));
  }

  std::mt19937_64 random_;
  int lostDates_ = 0;      // percent
  int lostTimecodes_ = 0;  // percent
  bool userActs_ = false;
  bool longSteps_ = false;
  bool mixed_ = false;
  DVSystem system_ = DVSystem::pal625_50;
  int date_ = 5000;
  int timecode_ = 0;
  std::uint32_t nextId_ = 1;
  std::vector<CaptureStep> steps_;
};

}  // namespace zq::test

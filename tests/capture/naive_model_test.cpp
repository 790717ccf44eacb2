// The real controller against the model of it, on random tapes. A failure names its seed; to see it alone, put the seed
// into `first` and 1 into `count` below.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"
#include "support/capture_model.h"
#include "support/capture_random_tape.h"

namespace zq::test {
namespace {

std::optional<ModelTimecode> modelTimecodeOf(const FrameRecipe& frame) {
  if (!frame.timecode) return std::nullopt;
  const SMPTETime& time = *frame.timecode;
  return ModelTimecode{{time.mHours, time.mMinutes, time.mSeconds, time.mFrames}, timebaseOf(frame.system), frame.id};
}

std::optional<int> secondOfDay(const std::optional<StampDateTime>& date) {
  if (!date) return std::nullopt;
  return (date->hours * 60 + date->minutes) * 60 + date->seconds;
}

std::string textOf(const TimecodeValue& value) {
  if (!value) return "none";
  return timecodeText(ModelTimecode{{value->mHours, value->mMinutes, value->mSeconds, value->mFrames}});
}

/// Takes the steps with the controller and with the model.
class SideBySide : public CaptureTest {
 public:
  SideBySide() {
    ZQACControllerDelegate& operations = delegate_.operations;
    operations.accontrollerBeginRecord = [this](ZQACController&) { calls_.emplace_back("begin"); };
    operations.accontrollerEndRecord = [this](ZQACController&) { calls_.emplace_back("end"); };
    operations.accontrollerWillRecord = [this](ZQACController&) {
      calls_.emplace_back("will");
      return pathsOf(++clips_);
    };
    operations.accontrollerDidRecordInfo = [this](ZQACController&, const ClipInfo& info) { keep(info); };
    settings_.setIntegerForKey(ZQACActionAfterRecord, 0);
  }
  void TestBody() override {}

  void take(const CaptureStep& step) {
    std::visit([this](const auto& chosen) { takeStep(chosen); }, step);
  }

  void compare() {
    EXPECT_EQ(calls_, model_.calls);
    for (int clip = 1; clip <= clips_; ++clip) {
      EXPECT_EQ(movieOf(clip), model_.movies[clip]) << "movie of clip " << clip;
      compareThumbnails(clip);
    }
  }

  CaptureModel& model() { return model_; }

 private:
  void takeStep(const StartStep&) {
    controller_->setRecording(true);
    model_.start();
  }
  void takeStep(const StopStep&) {
    controller_->setRecording(false);
    model_.stop();
  }
  void takeStep(const FileChangeStep&) {
    if (!controller_->isRecording()) return;
    movieFileOutput().demandOtherFile();
    model_.fileChange();
  }
  void takeStep(const SettingStep& step) {
    settings_.setIntegerForKey(step.key, step.value);
    const std::string key = step.key;
    if (key == "detectScene") model_.settings.detectScene = step.value != 0;
    if (key == "nbDropFrame") model_.settings.nbDropFrame = step.value;
    if (key == "frameSampling") model_.settings.frameSampling = step.value != 0;
    if (key == "sampleInterval") model_.settings.sampleInterval = step.value;
    if (key == "captureMovie") model_.settings.captureMovie = step.value != 0;
  }
  void takeStep(const FrameRecipe& frame) {
    const platform::QTSampleBuffer buffer = bufferOf(frame);
    frames_[frame.id] = buffer.bytesForAllSamples;
    deliver(buffer);
    model_.frame({frame.id, modelTimecodeOf(frame), secondOfDay(frame.date), frame.aspect.value_or(1),
                  frame.change != platform::SceneChangeType::none});
  }

  ClipPaths pathsOf(int clip) const {
    ClipPaths paths;
    paths.clipId = std::to_string(clip);
    if (clipHasMovie(clip)) paths.moviePath = delegate_.moviePath(clip);
    if (clipHasThumbnails(clip)) paths.thumbnailPath = delegate_.thumbnailsPath(clip);
    return paths;
  }

  void keep(const ClipInfo& info) {
    std::string date = "none";
    if (info.clipRecordingDate) {
      const CalendarDate& when = *info.clipRecordingDate;
      date = std::to_string((when.hourOfDay() * 60 + when.minuteOfHour()) * 60 + when.secondOfMinute());
    }
    calls_.push_back("did clip " + info.clipId.value_or("") + " date " + date + " start " +
                     textOf(info.clipStartTimecode) + " end " + textOf(info.clipEndTimecode) + " duration " +
                     textOf(info.clipDuration) + " aspect " + std::to_string(info.clipAspectRatio));
  }

  std::vector<std::uint32_t> movieOf(int clip) {
    std::vector<std::uint32_t> ids;
    for (const SharedBytes& frame : movieFileOutput().movies[delegate_.moviePath(clip)]) {
      ids.push_back(frameIdOf(frame.bytes()));
    }
    return ids;
  }

  void compareThumbnails(int clip) {
    const std::string path = delegate_.thumbnailsPath(clip);
    const auto expected = model_.thumbnails.find(clip);
    ASSERT_EQ(std::filesystem::exists(path), expected != model_.thumbnails.end()) << path;
    if (expected == model_.thumbnails.end()) return;
    FrameBytes bytes;
    for (const std::uint32_t id : expected->second) {
      const auto frame = frames_.at(id).bytes();
      bytes.insert(bytes.end(), frame.begin(), frame.end());
    }
    EXPECT_TRUE(readFile(path) == bytes) << "thumbnails of clip " << clip << " are not "
                                         << testing::PrintToString(expected->second);
  }

  CaptureModel model_;
  std::vector<std::string> calls_;
  int clips_ = 0;
  std::map<std::uint32_t, SharedBytes> frames_;
};

class NaiveModel : public testing::TestWithParam<std::uint64_t> {};

constexpr std::uint64_t kSeedsATest = 30;

INSTANTIATE_TEST_SUITE_P(FromSeed, NaiveModel, testing::Range<std::uint64_t>(0, 300, kSeedsATest));

TEST_P(NaiveModel, AgreesWithTheControllerOnRandomTapes) {
  const std::uint64_t first = GetParam();
  const std::uint64_t count = kSeedsATest;
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    SideBySide both;
    for (const CaptureStep& step : RandomTape(seed).steps()) both.take(step);
    both.take(StopStep{});
    both.compare();
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace zq::test

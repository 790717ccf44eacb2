// The real controller against the model of it, on random tapes. A failure names its seed; to see it alone, put the seed
// into `first` and 1 into `count` below.

#include "support/recapture_model.h"

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"
#include "support/recapture_random.h"

namespace zq::test {
namespace {

using platform::AVCTransportControls;

std::string text(const std::optional<int>& number) {
  return number ? std::to_string(*number) : "none";
}

/// Takes the same steps with the controller and with the model, and compares after each.
class RecaptureSideBySide : public RecaptureTest {
 public:
  RecaptureSideBySide(const std::vector<std::vector<ClipPlan>>& plans, const AVCTransportControls& controls)
      : model_(modelOf(plans)) {
    device_ = selectDevice(controls);
    model_.mode = static_cast<long>(controls.playbackMode);
    model_.speed = controls.speed;
    load(plans);
    will_ = delegate_.operations.acRecaptureControllerWillRecord;
    did_ = delegate_.operations.acRecaptureControllerDidRecordInfo;
  }
  void TestBody() override {}

  const RecaptureModel& model() const { return model_; }
  bool agrees() const { return agrees_; }

  void frames(int times, std::optional<int> timecode, std::optional<int> date) {
    FrameRecipe recipe;
    recipe.id = nextId_++;
    if (timecode) recipe.timecode = timecodeAtFrame(recipe.system, *timecode);
    if (date) recipe.date = dateAt(*date);
    const platform::QTSampleBuffer buffer = bufferOf(recipe);
    for (int i = 0; i < times && agrees_; ++i) {
      deliver(buffer);
      model_.frame(recipe.id, timecode, date);
      compare("frame");
      if (model_.requested) rest(1500);
    }
  }
  void startButton() {
    controller_->startRecapture();
    model_.startButton();
    compare("start");
  }
  void open() {
    controller_->openRecapture();
    model_.open();
    compare("open");
  }
  void setModeTag(int tag) {
    controller_->setRecaptureModeTag(tag);
    model_.modeTag = tag;
  }
  void deckTurns(const AVCTransportControls& controls) {
    device_->controls = controls;
    model_.deckTurns(static_cast<long>(controls.playbackMode), controls.speed);
    notifications_.post({platform::QTCaptureDeviceAttributeDidChangeNotification, device_.get(), ""});
    compare("deck");
  }
  void setControllable(bool controllable) {
    device_->readOnly = !controllable;
    model_.controllable = controllable;
  }
  void setAlertAnswer(int answer) {
    alerts_.answer = answer;
    model_.alertAnswer = answer;
  }
  void setAnswers(bool will, bool did, ModelAnswer answer) {
    delegate_.operations.acRecaptureControllerWillRecord = will ? will_ : nullptr;
    delegate_.operations.acRecaptureControllerDidRecordInfo = did ? did_ : nullptr;
    delegate_.answer = [answer](int movie) -> std::optional<RecapturePaths> {
      if (answer == ModelAnswer::nothing) return std::nullopt;
      if (answer == ModelAnswer::noPath) return RecapturePaths{};
      return RecapturePaths{RecordingRecaptureDelegate::moviePath(movie)};
    };
    model_.answersWill = will;
    model_.answersDid = did;
    model_.answer = answer;
  }
  void fileFinished() {
    tellThatFileIsFinished(movieFileOutput(), "");
    model_.fileFinished();
    compare("file finished");
  }
  /// Odd times, so that the ends of different waits never fall together.
  void rest(int milliseconds) {
    letPass(std::chrono::milliseconds(milliseconds));
    model_.rest(milliseconds);
    compare("rest");
  }

  void compareAll() {
    EXPECT_EQ(linesOf({"device", "movie", "alert", "delegate", "files"}), model_.lines);
    std::vector<std::string> informative;
    for (const auto& alert : alerts_.shown) informative.push_back(alert.informative);
    EXPECT_EQ(informative, model_.informative);
    std::map<std::string, std::vector<std::uint32_t>> movies;
    for (const auto& [path, written] : movieFileOutput().movies) {
      for (const SharedBytes& frame : written) movies[path].push_back(frameIdOf(frame.bytes()));
    }
    EXPECT_EQ(movies, model_.movies);
  }

 private:
  static std::string describe(const std::string& note, const std::string& where, const std::vector<bool>& flags,
                              const std::vector<int>& counts, const std::string& armed,
                              const std::optional<std::string>& path) {
    std::string all = note + "; " + where + "; flags";
    for (const bool flag : flags) all += flag ? " 1" : " 0";
    all += "; counts";
    for (const int count : counts) all += " " + std::to_string(count);
    return all + "; armed " + armed + "; movie " + path.value_or("none");
  }
  std::string modelState() const {
    const auto name = [this](int clip) {
      return clip < 0 ? "no clip" : "clip " + model_.tape.clips.at(static_cast<std::size_t>(clip)).id;
    };
    const std::string sequence =
        model_.sequence < 0 ? "no sequence" : "sequence " + std::to_string(model_.sequence + 1);
    return describe(model_.note, sequence + " " + name(model_.current) + " " + name(model_.target),
                    {model_.started, model_.recording, model_.prerolling, model_.done},
                    {model_.left, model_.leftInSequence}, text(model_.startAt) + " " + text(model_.endAt),
                    model_.moviePath);
  }
  static std::optional<int> frameOf(const SMPTETime& time) {
    if (time == nullTimecode) return std::nullopt;
    return ((time.mHours * 60 + time.mMinutes) * 60 + time.mSeconds) * 25 + time.mFrames;
  }
  std::string controllerState() {
    const ZQACRecaptureController& c = *controller_;
    return describe(c.processNote(),
                    nameOf(c.sequenceFound()) + " " + nameOf(c.currentClip()) + " " + nameOf(c.clipToBeRecaptured()),
                    {c.isStart(), c.isRecording(), c.isPrerolling(), c.isRecaptureDone()},
                    {c.totalCountOfClipsToBeRecaptured(), c.totalCountOfClipsToBeRecapturedInSequence()},
                    text(frameOf(c.startTimecode())) + " " + text(frameOf(c.endTimecode())), c.moviePath());
  }
  void compare(const char* step) {
    ++steps_;
    if (!agrees_) return;
    agrees_ = controllerState() == modelState() &&
              device_->controls == AVCTransportControls{static_cast<unsigned long>(model_.mode), model_.speed};
    EXPECT_EQ(controllerState(), modelState()) << "after step " << steps_ << ", " << step;
    EXPECT_EQ(device_->controls->speed, model_.speed) << "after step " << steps_ << ", " << step;
  }

  RecaptureModel model_;
  std::shared_ptr<FakeCaptureDevice> device_;
  decltype(ZQACRecaptureControllerDelegate::acRecaptureControllerWillRecord) will_;
  decltype(ZQACRecaptureControllerDelegate::acRecaptureControllerDidRecordInfo) did_;
  std::uint32_t nextId_ = 1;
  int steps_ = 0;
  bool agrees_ = true;
};

class RecaptureNaiveModel : public testing::TestWithParam<std::uint64_t> {};

constexpr std::uint64_t kSeedsATest = 30;

INSTANTIATE_TEST_SUITE_P(FromSeed, RecaptureNaiveModel, testing::Range<std::uint64_t>(0, 300, kSeedsATest));

TEST_P(RecaptureNaiveModel, AgreesWithTheControllerOnRandomTapes) {
  const std::uint64_t first = GetParam();
  const std::uint64_t count = kSeedsATest;
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomChoice choice(seed);
    const auto plans = randomPlans(choice);
    RecaptureSideBySide both(plans, choice.oneIn(2) ? AVCTransportControls{0, 0} : AVCTransportControls{1, 10000});
    RandomRecapture(choice, both).run(25);
    both.compareAll();
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace zq::test

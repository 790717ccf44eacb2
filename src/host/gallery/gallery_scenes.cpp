#include "host/gallery/gallery_scenes.h"

#include <QLabel>
#include <QPixmap>
#include <chrono>

#include "backends/time/virtual_runtime.h"
#include "controls/message_text_view.h"
#include "host/gallery/picture_page.h"
#include "host/gallery/sample_poster.h"
#include "host/gallery/sample_tape.h"
#include "host/gallery/tape_scene.h"
#include "views/timecode_and_date_view.h"

namespace zq::host {

namespace {

using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): literals only

constexpr int kWidth = 640;

/// Runs what is due, and what is due in the next `duration`.
void letPass(platform::Runtime& runtime, platform::Duration duration) {
  runtime.mainLoop().startTimer(duration, [&] { runtime.mainLoop().quit(); });
  runtime.mainLoop().run();
}

/// The views with time of their own. Where clips lie is known once they were drawn.
class Stage {
 public:
  Status open() {
    auto made = TapeScene::make(runtime_);
    if (!made.ok()) return made.error();
    scene_ = std::move(made.value());
    scene_->widget().resize(kWidth, scene_->widget().height());
    return {};
  }

  TapeScene& scene() { return *scene_; }
  void pass(platform::Duration duration) { letPass(runtime_, duration); }
  void drawOnce() { pictureOf(scene_->widget(), 1); }

 private:
  backend::VirtualRuntime runtime_;
  std::unique_ptr<TapeScene> scene_;
};

void pickAndSettle(Stage& stage, const SequenceValue& sequence, std::size_t clip) {
  stage.drawOnce();
  stage.scene().timeline().setCurrentSequence(sequence);
  stage.pass(0ms);
  stage.drawOnce();
  stage.scene().pick(sequence, sequence->allClips().at(clip));
  stage.pass(1100ms);
  stage.drawOnce();
}

}  // namespace

Expected<QImage> tapePage(qreal scale) {
  Stage stage;
  if (Status status = stage.open(); !status.ok()) return status.error();
  TapeScene& scene = stage.scene();
  PicturePage page(scale);
  page.add("Empty", scene.widget());
  const TapeValue tape = sampleTape();
  const SequenceValue& first = tape->allSequences().front();
  scene.show(tape);
  stage.pass(0ms);
  page.add("A tape: the clips that are to be recaptured are blue", scene.widget());
  pickAndSettle(stage, first, 6);
  page.add("A clip is picked: its picture stands in the middle", scene.widget());
  const ClipValue& marked = first->allClips().at(7);
  pickAndSettle(stage, first, 7);
  scene.play(marked, marked->durationInFrame() * 2 / 5, true);
  stage.pass(0ms);
  page.add("Two fifths of a clip are recaptured", scene.widget());
  scene.play(marked, marked->durationInFrame(), true);
  marked->setRecaptureFinished(true);
  stage.pass(0ms);
  page.add("It is recaptured to its end", scene.widget());
  pickAndSettle(stage, tape->allSequences().back(), 1);
  page.add("A sequence of a few clips stands in the middle", scene.widget());
  return page.composed();
}

Expected<QImage> glidingPage(qreal scale) {
  Stage stage;
  if (Status status = stage.open(); !status.ok()) return status.error();
  PicturePage page(scale);
  const TapeValue tape = sampleTape();
  const SequenceValue& first = tape->allSequences().front();
  stage.scene().show(tape);
  pickAndSettle(stage, first, 2);
  stage.scene().pick(first, first->allClips().at(11));
  for (const auto wait : {0ms, 10ms, 20ms, 40ms, 930ms}) {
    stage.pass(wait);
    page.add("Picked; " + QString::number(wait.count()) + " ms later", stage.scene().widget());
  }
  return page.composed();
}

Expected<QImage> rollingPage(qreal scale) {
  Stage stage;
  if (Status status = stage.open(); !status.ok()) return status.error();
  PicturePage page(scale);
  const TapeValue tape = sampleTape();
  stage.scene().show(tape);
  pickAndSettle(stage, tape->allSequences().front(), 0);
  ZQACThumbnailView& strip = stage.scene().strip();
  strip.mouseEntered({static_cast<float>(strip.width()) - 5, 20});
  stage.pass(20ms);
  page.add("The pointer is at the right edge: the strip rolls to the left, the edge comes up", stage.scene().widget());
  stage.pass(80ms);
  page.add("At the end of the strip", stage.scene().widget());
  strip.mouseExited();
  strip.mouseEntered({5, 20});
  stage.pass(30ms);
  page.add("The pointer is at the left edge", stage.scene().widget());
  strip.mouseExited();
  stage.pass(0ms);
  page.add("The pointer is gone", stage.scene().widget());
  return page.composed();
}

Expected<QImage> overlayPage(qreal scale) {
  backend::VirtualRuntime runtime;
  PicturePage page(scale);
  QLabel picture;
  QPixmap landscape;
  const platform::ImageValue poster = samplePoster(11, 640);
  landscape.loadFromData(poster->encoded.data(), static_cast<uint>(poster->encoded.size()));
  picture.setPixmap(landscape.scaled(640, 480, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  picture.resize(640, 480);
  ZQTimecodeAndDateView overlay(runtime, &picture);
  overlay.resize(640, 480);
  page.add("Before the first frame", picture);
  const ClipValue clip =
      sampleTape({.sequences = 1, .clips = 2, .posterWidth = 0})->allSequences().front()->allClips().back();
  overlay.setTimecode(*clip->timecodeStartClip());
  overlay.setDate(clip->dateStartClip());
  letPass(runtime, 0ms);
  ZQAccurateMessageTextView message(&picture);
  message.resize(640, 480);
  message.setMessage("Tape in search");
  page.add("A frame with timecode and recording date, and a message", picture);
  return page.composed();
}

}  // namespace zq::host

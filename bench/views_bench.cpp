// How long the views of a tape take to redraw: 10,000 clips in 500 sequences, and a sequence of 10,000 clips, at two
// pixels a point. Prints JSON: medians in milliseconds, and the posters' memory in bytes.

#include <QApplication>
#include <QImage>
#include <QRegion>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include "backends/time/real_runtime.h"
#include "host/gallery/sample_tape.h"
#include "host/gallery/tape_scene.h"

namespace {

using namespace zq;  // NOLINT(google-build-using-namespace): this file is the program

constexpr int kWidth = 1280;
constexpr int kRedraws = 201;

double medianMilliseconds(platform::Clock& clock, const std::function<void()>& work) {
  std::vector<double> times;
  for (int redraw = 0; redraw < kRedraws; ++redraw) {
    const platform::TimePoint start = clock.now();
    work();
    times.push_back(std::chrono::duration<double, std::milli>(clock.now() - start).count());
  }
  std::ranges::nth_element(times, times.begin() + kRedraws / 2);
  return times[kRedraws / 2];
}

void runPosted(platform::MainLoop& loop) {
  loop.post([&] { loop.quit(); });
  loop.run();
}

/// One tape in the views, drawn into pictures of their size.
class Measurement {
 public:
  Measurement(platform::Runtime& runtime, const host::SampleTapeOptions& options)
      : runtime_(runtime), scene_(std::move(host::TapeScene::make(runtime).value())), tape_(host::sampleTape(options)) {
    scene_->widget().resize(kWidth, scene_->widget().height());
    scene_->show(tape_);
    scene_->timeline().setCurrentSequence(tape_->allSequences().front());
    runPosted(runtime.mainLoop());
    draw(scene_->widget(), {});
  }

  double timeline() {
    return medianMilliseconds(runtime_.clock(), [&] { draw(scene_->timeline(), {}); });
  }
  double strip() {
    return medianMilliseconds(runtime_.clock(), [&] { draw(scene_->strip(), {}); });
  }
  /// What a frame of the deck redraws: where the cursor was and is.
  double cursor() {
    const ClipValue& clip = tape_->allSequences().front()->allClips().front();
    scene_->timeline().setCurrentClip(clip);
    int frame = 0;
    return medianMilliseconds(runtime_.clock(), [&] {
      scene_->play(clip, frame++ % clip->durationInFrame(), false);
      const platform::Rect rect = scene_->timeline().cursorRect();
      draw(scene_->timeline(), QRectF(rect.x, rect.y, rect.width, rect.height).toAlignedRect());
    });
  }

 private:
  void draw(QWidget& widget, const QRegion& region) {
    if (picture_.size() != widget.size() * 2) picture_ = QImage(widget.size() * 2, QImage::Format_RGB32);
    picture_.setDevicePixelRatio(2);
    const QRegion whole(widget.rect());
    widget.render(&picture_, {}, region.isEmpty() ? whole : region & whole);
  }

  platform::Runtime& runtime_;
  const std::unique_ptr<host::TapeScene> scene_;
  const TapeValue tape_;
  QImage picture_;
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  backend::RealRuntime runtime;
  Measurement tape(runtime, {.sequences = 500, .clips = 20, .fewerEach = 0, .posterWidth = 0});
  const double timeline = tape.timeline();
  const double cursor = tape.cursor();
  Measurement sequence(runtime, {.sequences = 1, .clips = 10000, .posterWidth = 180});
  const double strip = sequence.strip();
  std::printf("{\"timeline\": %.3f, \"cursor\": %.3f, \"strip\": %.3f}\n", timeline, cursor, strip);
  return 0;
}

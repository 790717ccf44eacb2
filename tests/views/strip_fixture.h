#pragma once
// A thumbnail strip on a sequence made to order, with a binding area that notes what it is told and a skin of known
// colours.

#include <gtest/gtest.h>

#include <QApplication>
#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QMouseEvent>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "backends/time/virtual_runtime.h"
#include "base/log.h"
#include "outlets/binding_area.h"
#include "support/qt_application.h"
#include "views/thumbnail_view.h"
#include "views/timeline_fixture.h"

namespace zq::test {

/// Notes each call in words. Null is "none".
class NotingBindingArea final : public outlets::BindingArea {
 public:
  void setActiveSequence(SequenceValue sequence) override {
    notes.push_back("sequence " + (sequence ? sequence->sequenceId() : "none"));
  }
  void setActiveClip(ClipValue clip) override { notes.push_back("clip " + (clip ? clip->clipId() : "none")); }
  void refresh() override { notes.emplace_back("refresh"); }

  std::vector<std::string> takeNotes() { return std::exchange(notes, {}); }

  std::vector<std::string> notes;
};

class LineLog final : public Log {
 public:
  void write(LogLevel /*level*/, std::string_view message) override { lines.emplace_back(message); }
  std::vector<std::string> lines;
};

inline platform::ImageValue pngOf(const QImage& picture) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "PNG");
  const QByteArray& bytes = buffer.data();
  return std::make_shared<const platform::Image>(platform::Image{{bytes.begin(), bytes.end()}});
}

/// A poster of one colour.
inline platform::ImageValue flatPoster(const QColor& color, int width = 120, int height = 80) {
  QImage picture(width, height, QImage::Format_RGB32);
  picture.fill(color);
  return pngOf(picture);
}

/// Not a picture in any format.
inline platform::ImageValue brokenPoster() {
  return std::make_shared<const platform::Image>(platform::Image{{1, 2, 3, 4}});
}

/// A clip to make, of 25 frames a second from frame 100 on.
struct StripClip {
  bool marked = false;
  bool trashed = false;
  int frames = 100;
  platform::ImageValue poster = nullptr;
};

inline ClipValue makeStripClip(int index, const StripClip& plan) {
  ClipRecord record;
  record.clipId = std::to_string(index);
  record.clipName = "Clip " + std::to_string(index);
  record.posterImage = plan.poster;
  record.startDate = dateAfter(5);
  record.startTimecode = valueWithSMPTETime(palTimecode(100));
  record.endTimecode = valueWithSMPTETime(palTimecode(100 + plan.frames));
  record.duration = valueWithSMPTETime(palTimecode(plan.frames));
  record.index = index;
  record.recapture = plan.marked;
  record.timebase = 25;
  record.isInTrash = plan.trashed;
  return std::make_shared<ZQACClip>(std::move(record));
}

/// Its clips are named by their places, from "0" on.
inline SequenceValue makeStrip(const std::vector<StripClip>& plans, const std::string& id = "1") {
  std::vector<ClipValue> clips;
  for (const StripClip& plan : plans) clips.push_back(makeStripClip(static_cast<int>(clips.size()), plan));
  return std::make_shared<ZQACSequence>(id, "Sequence " + id, std::move(clips), dateAfter(0));
}

inline SequenceValue stripOf(std::size_t clipCount, const std::string& id = "1") {
  return makeStrip(std::vector<StripClip>(clipCount), id);
}

/// `color` with this alpha over `below`, both opaque.
inline QColor over(const QColor& below, const QColor& color, double alpha) {
  const auto mixed = [alpha](int one, int other) { return static_cast<int>(one * (1 - alpha) + other * alpha + 0.5); };
  return {mixed(below.red(), color.red()), mixed(below.green(), color.green()), mixed(below.blue(), color.blue())};
}

/// Blending rounds differently from one step to the next.
inline bool isNear(const QColor& one, const QColor& other) {
  return std::abs(one.red() - other.red()) <= 2 && std::abs(one.green() - other.green()) <= 2 &&
         std::abs(one.blue() - other.blue()) <= 2;
}

inline constexpr QColor kMarkedLine(112, 147, 188);
inline constexpr QColor kActiveLine(255, 235, 140);
inline constexpr QColor kVeilGrey(128, 128, 128);
inline constexpr QColor kBandGrey(13, 13, 13);

/// A strip of 300 x 50 points. The slices of its progress bars are, from left to right, red, green and blue, dark where
/// the bar is empty and light where it is full.
class StripTest : public QtTest {
 protected:
  static constexpr int kHeight = 50;

  StripTest() {
    skin_.addFlat("progressBarEmptyLeft", "#400000");
    skin_.addFlat("progressBarEmptyMiddle", "#004000");
    skin_.addFlat("progressBarEmptyRight", "#000040");
    skin_.addFlat("progressBarFullLeft", "#ff0000");
    skin_.addFlat("progressBarFullMiddle", "#00ff00");
    skin_.addFlat("progressBarFullRight", "#0000ff");
    skin_.install();
    view_.resize(300, kHeight);
    view_.setBindingAreaView(&bindingArea_);
  }

  /// Makes the sequence active, and draws it once, which lays it out.
  void show(SequenceValue sequence) {
    sequence_ = std::move(sequence);
    view_.setActiveSequence(sequence_);
    runPosted(runtime_);
    draw();
    runPosted(runtime_);
    bindingArea_.takeNotes();
  }
  /// What the view itself draws, on black.
  QImage draw(int scale = 1) {
    QImage image(view_.size() * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    view_.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
  }
  const ClipValue& clip(std::size_t index) const { return sequence_->allClips().at(index); }
  float position() const { return view_.state().firstPosterImagePosX; }

  /// Lets so many milliseconds pass, and the least time more, so that the ticks that are due at the end are through.
  void runTicks(int ticks) {
    const platform::Duration duration = std::chrono::milliseconds(ticks) + std::chrono::nanoseconds(1);
    runtime_.mainLoop().startTimer(duration, [this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }

  /// The pointer moves to this place of the view, from the lower left: an event names the upper edge of its pixel, and
  /// means the middle.
  void movePointer(float x, float y) { movePointerFromTop(x, static_cast<float>(view_.height()) - y - 0.5F); }
  void movePointerFromTop(float x, float y) {
    QMouseEvent event(QEvent::MouseMove, QPointF(x, y), QPointF(x, y), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&view_, &event);
  }
  void movePointerAway() {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&view_, &event);
  }

  /// The colour of the pixel in this column, and this row from the bottom; the lower left one of a point.
  static QColor pixel(const QImage& image, int column, int row) { return colorAt(image, column, kHeight - row - 0.5); }

  backend::VirtualRuntime runtime_;
  ScratchSkin skin_;
  NotingBindingArea bindingArea_;
  ZQACThumbnailView view_{runtime_};
  SequenceValue sequence_;
};

}  // namespace zq::test

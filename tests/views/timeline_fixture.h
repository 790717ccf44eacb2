#pragma once
// A timeline on a tape made to order, with a strip that notes what it is told and a skin of known colours.

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "backends/time/virtual_runtime.h"
#include "outlets/thumbnail_strip.h"
#include "skin/skin.h"
#include "support/qt_application.h"
#include "support/scratch_folder.h"
#include "timecode/timecode_text.h"
#include "views/timeline_view.h"

namespace zq::test {

/// Runs what was posted to the main thread so far.
inline void runPosted(platform::Runtime& runtime) {
  runtime.mainLoop().post([&] { runtime.mainLoop().quit(); });
  runtime.mainLoop().run();
}

/// Notes each call in words. Null is "none".
class NotingStrip final : public outlets::ThumbnailStrip {
 public:
  void setBindingAreaView(outlets::BindingArea* /*view*/) override { notes.emplace_back("binding area"); }
  void setActiveSequence(SequenceValue sequence) override {
    notes.push_back("sequence " + (sequence ? sequence->sequenceId() : "none"));
  }
  void setActiveClip(ClipValue clip) override { notes.push_back("clip " + (clip ? clip->clipId() : "none")); }
  void setClipBeingRecap(ClipValue /*clip*/) override { notes.emplace_back("clip being recaptured"); }
  void setCursorTimecode(const SMPTETime& timecode) override { notes.push_back("cursor " + timecodeText(timecode)); }
  void setIsMouseDownActive(bool active) override { notes.emplace_back(active ? "mouse on" : "mouse off"); }
  void triggerRelocationTimerWithOffset(float offset) override { notes.push_back("glide " + std::to_string(offset)); }
  void findFirstPosterImagePosWithClipCount(int count) override { notes.push_back("place " + std::to_string(count)); }

  /// What was noted since the last call.
  std::vector<std::string> takeNotes() { return std::exchange(notes, {}); }

  std::vector<std::string> notes;
};

inline SMPTETime palTimecode(int frames) {
  SMPTETime time;
  time.mType = 1;
  time.mFrames = static_cast<std::int16_t>(frames % 25);
  time.mSeconds = static_cast<std::int16_t>(frames / 25 % 60);
  time.mMinutes = static_cast<std::int16_t>(frames / (25 * 60) % 60);
  time.mHours = static_cast<std::int16_t>(frames / (25 * 3600));
  return time;
}

/// 15 July 2004, 13:00:00 and so many seconds.
inline DateValue dateAfter(int seconds) {
  return std::make_shared<const CalendarDate>(2004, 7, 15, 13, 0, seconds);
}

/// A clip to make. Its timecodes count on from `firstFrame`, 25 a second; its date is that of its first frame.
struct TimelineClip {
  int frames = 25;
  bool marked = false;
  int date = 0;
  int firstFrame = 0;
};

inline ClipValue makeTimelineClip(const std::string& id, int index, const TimelineClip& plan) {
  ClipRecord record;
  record.clipId = id;
  record.clipName = "Clip " + id;
  record.startDate = dateAfter(plan.date);
  record.startTimecode = valueWithSMPTETime(palTimecode(plan.firstFrame));
  record.endTimecode = valueWithSMPTETime(palTimecode(plan.firstFrame + plan.frames - 1));
  record.duration = valueWithSMPTETime(palTimecode(plan.frames));
  record.index = index;
  record.recapture = plan.marked;
  record.timebase = 25;
  return std::make_shared<ZQACClip>(std::move(record));
}

/// Its clips are named by its id and their place, from "1.1" on.
inline SequenceValue makeTimelineSequence(const std::string& id, const std::vector<TimelineClip>& plans) {
  std::vector<ClipValue> clips;
  for (const TimelineClip& plan : plans) {
    const int index = static_cast<int>(clips.size());
    clips.push_back(makeTimelineClip(id + "." + std::to_string(index + 1), index, plan));
  }
  return std::make_shared<ZQACSequence>(id, "Sequence " + id, std::move(clips), dateAfter(0));
}

/// Its sequences are named by their places, from "1" on.
inline TapeValue makeTimelineTape(const std::vector<std::vector<TimelineClip>>& plans) {
  std::vector<SequenceValue> sequences;
  for (const auto& clips : plans) {
    sequences.push_back(makeTimelineSequence(std::to_string(sequences.size() + 1), clips));
  }
  return std::make_shared<ZQACTape>(1, "Holiday", std::move(sequences));
}

inline ClipValue clipAt(const TapeValue& tape, std::size_t sequence, std::size_t clip) {
  return tape->allSequences().at(sequence)->allClips().at(clip);
}

/// The user's skin for as long as it lives: pictures are what is written here.
class ScratchSkin {
 public:
  ScratchSkin() = default;
  ~ScratchSkin() { static_cast<void>(Skin::current().setFolder(QString())); }
  ScratchSkin(const ScratchSkin&) = delete;
  ScratchSkin& operator=(const ScratchSkin&) = delete;

  /// `content`: SVG elements in a picture of 10 x 10 points.
  void add(const std::string& name, const std::string& content) {
    const std::string document =
        "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10' viewBox='0 0 10 10'>" + content + "</svg>";
    QFile file(QString::fromStdString(folder_.file(name + ".svg")));
    if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("no skin file");
    file.write(document.data(), static_cast<qint64>(document.size()));
  }
  void addFlat(const std::string& name, const std::string& color) {
    add(name, "<rect width='10' height='10' fill='" + color + "'/>");
  }
  void addTransparent(const std::string& name) { add(name, "<rect width='1' height='1' fill-opacity='0'/>"); }

  void install() {
    const Status status = Skin::current().setFolder(QString::fromStdString(folder_.path()));
    if (!status.ok()) throw std::runtime_error(status.error().message);
  }

 private:
  ScratchFolder folder_;
};

/// A timeline of 218 x 46 points: a bar of 200 points, whose track is 40 points high. Its frame is red, its shadow
/// clear.
class TimelineTest : public QtTest {
 protected:
  TimelineTest() {
    for (const char* name : {"timelineLeft", "timelineMiddle", "timelineRight"}) skin_.addFlat(name, "#ff0000");
    skin_.addTransparent("timelineShadow");
    skin_.install();
    view_.resize(218, 46);
    view_.setThumbnailView(&strip_);
  }

  /// Shows the tape, and draws it once, which lays it out.
  void show(TapeValue tape) {
    tape_ = std::move(tape);
    view_.refreshWithTape(tape_);
    runPosted(runtime_);
    draw();
  }
  QImage draw(qreal scale = 1) { return pictureOf(view_, scale); }

  backend::VirtualRuntime runtime_;
  ScratchSkin skin_;
  NotingStrip strip_;
  ZQACTimelineView view_{runtime_};
  TapeValue tape_;
};

}  // namespace zq::test

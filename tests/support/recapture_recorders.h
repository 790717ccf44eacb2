#pragma once
// Recording ends of what the recapture controller talks to beside what the capture controller does: the timeline, the
// strip, the message, files, delegate.

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "outlets/binding_area.h"
#include "outlets/button.h"
#include "outlets/panel.h"
#include "outlets/text_field.h"
#include "outlets/thumbnail_strip.h"
#include "outlets/timeline.h"
#include "platform/file_manager.h"
#include "recapture/controller.h"
#include "support/capture_journal.h"
#include "timecode/timecode_text.h"

namespace zq::test {

inline std::string nameOf(const ClipValue& clip) {
  return clip ? "clip " + clip->clipId() : "no clip";
}
inline std::string nameOf(const SequenceValue& sequence) {
  return sequence ? "sequence " + sequence->sequenceId() : "no sequence";
}

class RecordingTimeline final : public outlets::Timeline {
 public:
  explicit RecordingTimeline(CaptureJournal& journal) : journal_(journal) {}

  void setThumbnailView(outlets::ThumbnailStrip* view) override {
    journal_.add("timeline", view != nullptr ? "strip" : "no strip");
  }
  void refreshWithTape(TapeValue tape) override { journal_.add("timeline", tape ? tape->tapeName() : "no tape"); }
  void setCurrentSequence(SequenceValue sequence) override { journal_.add("timeline", nameOf(sequence)); }
  void setCurrentClip(ClipValue clip) override { journal_.add("timeline", nameOf(clip)); }
  void setCursorTimecode(const SMPTETime& timecode) override {
    journal_.add("timeline", "cursor " + timecodeText(timecode));
  }
  void setCursorDate(DateValue date) override {
    journal_.add("timeline", "cursor " + (date ? date->isoString() : "undated"));
  }
  void setCursorRect(const platform::Rect& rect) override {
    journal_.add("timeline", rect == platform::Rect{} ? "no cursor" : "cursor at a place");
  }
  void refresh() override { journal_.add("timeline", "refresh"); }
  void setIsMouseDownActive(bool active) override { journal_.add("timeline", active ? "mouse on" : "mouse off"); }
  void myMethodeWhenClipClicked() override { journal_.add("timeline", "clicked"); }

 private:
  CaptureJournal& journal_;
};

class RecordingStrip final : public outlets::ThumbnailStrip {
 public:
  explicit RecordingStrip(CaptureJournal& journal) : journal_(journal) {}

  void setBindingAreaView(outlets::BindingArea* view) override {
    journal_.add("strip", view != nullptr ? "binding area" : "no binding area");
  }
  void setActiveSequence(SequenceValue sequence) override { journal_.add("strip", nameOf(sequence)); }
  void setActiveClip(ClipValue clip) override { journal_.add("strip", nameOf(clip)); }
  void setClipBeingRecap(ClipValue clip) override { journal_.add("strip", "recapturing " + nameOf(clip)); }
  void setCursorTimecode(const SMPTETime& timecode) override {
    journal_.add("strip", "cursor " + timecodeText(timecode));
  }
  void setIsMouseDownActive(bool active) override { journal_.add("strip", active ? "mouse on" : "mouse off"); }
  void triggerRelocationTimerWithOffset(float offset) override {
    journal_.add("strip", "glides " + std::to_string(offset));
  }
  void findFirstPosterImagePosWithClipCount(int clipCount) override {
    journal_.add("strip", "places " + std::to_string(clipCount) + " clips");
  }

 private:
  CaptureJournal& journal_;
};

class RecordingTextField final : public outlets::TextField {
 public:
  explicit RecordingTextField(CaptureJournal& journal) : journal_(journal) {}

  void setStringValue(const std::string& text) override { journal_.add("note", text); }
  void setBackgroundColor(const platform::Color& color) override {
    background = color;
    journal_.add("note", "background");
  }

  std::optional<platform::Color> background;

 private:
  CaptureJournal& journal_;
};

/// Known by its name in the journal.
class RecordingPanel final : public outlets::Panel {
 public:
  RecordingPanel(CaptureJournal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

  void setShown(bool shown) override {
    shown_ = shown;
    journal_.add(name_, shown ? "show" : "hide");
  }
  bool isShown() const override { return shown_; }

 private:
  CaptureJournal& journal_;
  const std::string name_;
  std::atomic<bool> shown_ = false;
};

class RecordingButton final : public outlets::Button {
 public:
  explicit RecordingButton(CaptureJournal& journal) : journal_(journal) {}

  void setState(bool on) override {
    on_ = on;
    journal_.add("button", on ? "on" : "off");
  }
  bool state() const override { return on_; }

 private:
  CaptureJournal& journal_;
  std::atomic<bool> on_ = false;
};

/// Files that all exist. Each member may be set at any time.
class RecordingFiles final : public platform::FileManager {
 public:
  explicit RecordingFiles(CaptureJournal& journal) : journal_(journal) {}

  Status removeFile(const std::string& path) override {
    journal_.add("files", "remove " + path);
    if (removeError) return *removeError;
    return {};
  }
  std::unique_ptr<platform::FileAlias> aliasWithPath(const std::string& path) override {
    journal_.add("files", "alias of " + path);
    if (!canAlias) return nullptr;
    return std::make_unique<Alias>(*this);
  }

  bool canAlias = true;
  std::optional<Error> writeError;
  std::optional<Error> removeError;

 private:
  class Alias final : public platform::FileAlias {
   public:
    explicit Alias(RecordingFiles& files) : files_(files) {}
    Status writeToFile(const std::string& path) const override {
      files_.journal_.add("files", "write alias " + path);
      if (files_.writeError) return *files_.writeError;
      return {};
    }

   private:
    RecordingFiles& files_;
  };

  CaptureJournal& journal_;
};

/// A delegate that answers everything; the movie of the n-th recording goes to moviePath(n). A test may empty any
/// operation of `operations` or change what is answered.
class RecordingRecaptureDelegate {
 public:
  explicit RecordingRecaptureDelegate(CaptureJournal& journal) : journal_(journal) {
    answer = [](int movie) { return RecapturePaths{moviePath(movie)}; };
    operations.acRecaptureControllerDidStartRecapture = [this] { journal_.add("delegate", "did start"); };
    operations.acRecaptureControllerDidEndRecapture = [this] { journal_.add("delegate", "did end"); };
    operations.acRecaptureControllerWillRecord = [this](ZQACRecaptureController&) {
      journal_.add("delegate", "will record");
      return answer(++movies);
    };
    operations.acRecaptureControllerDidRecordInfo = [this](ZQACRecaptureController&, const RecaptureInfo& info) {
      journal_.add("delegate", "did record " + info.clipId.value_or("no clip"));
      infos.push_back(info);
    };
    operations.acRecaptureControllerEndRecordAllClipsInfo = [this](ZQACRecaptureController&,
                                                                   const std::vector<RecaptureInfo>& all) {
      journal_.add("delegate", "end record of " + std::to_string(all.size()));
      allInfos = all;
      if (onEnd) onEnd();
    };
  }
  RecordingRecaptureDelegate(const RecordingRecaptureDelegate&) = delete;
  RecordingRecaptureDelegate& operator=(const RecordingRecaptureDelegate&) = delete;

  static std::string moviePath(int movie) { return "/movies/" + std::to_string(movie) + ".mov"; }

  ZQACRecaptureControllerDelegate operations;
  std::function<std::optional<RecapturePaths>(int movie)> answer;
  std::function<void()> onEnd;
  int movies = 0;
  /// Of the clips that were recorded, one by one, and as told at the end.
  std::vector<RecaptureInfo> infos;
  std::vector<RecaptureInfo> allInfos;

 private:
  CaptureJournal& journal_;
};

}  // namespace zq::test

#pragma once
// Recording ends of everything else that the capture controller talks to: alerts, strings, log, screen, delegate.

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/log.h"
#include "capture/controller.h"
#include "outlets/capture_view.h"
#include "outlets/overlay.h"
#include "platform/alerts.h"
#include "platform/strings.h"
#include "support/capture_journal.h"
#include "timecode/timecode_text.h"

namespace zq::test {

class RecordingAlerts final : public platform::Alerts {
 public:
  struct Alert {
    std::string message;
    std::string informative;
    bool operator==(const Alert&) const = default;
  };

  explicit RecordingAlerts(CaptureJournal& journal) : journal_(journal) {}

  int runModal(const std::string& messageText, const std::string& informativeText) override {
    journal_.add("alert", messageText);
    shown.push_back({messageText, informativeText});
    if (whileShown) whileShown();
    return answer;
  }

  std::vector<Alert> shown;
  std::function<void()> whileShown;
  int answer = kDefaultButton;

 private:
  CaptureJournal& journal_;
};

/// Answers the key itself, unless told another text.
class FakeStrings final : public platform::Strings {
 public:
  std::string localizedString(const std::string& key, const std::string& table) const override {
    const auto found = texts.find(key);
    return table.empty() && found != texts.end() ? found->second : key;
  }

  std::map<std::string, std::string> texts;
};

/// From any thread.
class CaptureLog final : public Log {
 public:
  void write(LogLevel level, std::string_view message) override {
    const std::lock_guard guard(mutex_);
    lines_.emplace_back(level, std::string(message));
  }

  std::vector<std::string> messages() const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> messages;
    for (const auto& [level, message] : lines_) messages.push_back(message);
    return messages;
  }

  std::vector<std::string> messages(LogLevel wanted) const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> messages;
    for (const auto& [level, message] : lines_) {
      if (level == wanted) messages.push_back(message);
    }
    return messages;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::pair<LogLevel, std::string>> lines_;
};

/// From any thread. Shown at first.
class RecordingOverlay final : public outlets::TimecodeOverlay {
 public:
  explicit RecordingOverlay(CaptureJournal& journal) : journal_(journal) {}

  void setTimecode(const SMPTETime& timecode) override { journal_.add("overlay", timecodeText(timecode)); }
  void setDate(DateValue date) override { journal_.add("overlay", date ? date->isoString() : "no date"); }
  void setHidden(bool hidden) override { journal_.add("overlay", hidden ? "hide" : "show"); }

 private:
  CaptureJournal& journal_;
};

class RecordingCaptureView final : public outlets::CaptureView {
 public:
  explicit RecordingCaptureView(CaptureJournal& journal) : journal_(journal) {}

  void setCaptureSession(platform::QTCaptureSession* session) override {
    journal_.add("view", session != nullptr ? "session" : "no session");
  }
  void addOverlayView(outlets::TimecodeOverlay& /*overlay*/) override { journal_.add("view", "add overlay"); }
  void removeOverlayView(outlets::TimecodeOverlay& /*overlay*/) override { journal_.add("view", "remove overlay"); }
  void addOverlayView(outlets::Panel& /*panel*/) override { journal_.add("view", "add panel"); }
  void removeOverlayView(outlets::Panel& /*panel*/) override { journal_.add("view", "remove panel"); }

 private:
  CaptureJournal& journal_;
};

/// A delegate that answers everything: clip n is "clip n", with a movie and a thumbnails file in `folder`. A test may
/// empty any operation of `operations` or change what is answered.
class RecordingDelegate {
 public:
  RecordingDelegate(CaptureJournal& journal, std::string folder) : folder_(std::move(folder)), journal_(journal) {
    answer = [this](int clip) {
      return ClipPaths{"clip " + std::to_string(clip), moviePath(clip), thumbnailsPath(clip)};
    };
    operations.accontrollerBeginRecord = [this](ZQACController&) { journal_.add("delegate", "begin"); };
    operations.accontrollerWillRecord = [this](ZQACController&) {
      journal_.add("delegate", "will");
      return answer(++clips);
    };
    operations.accontrollerDidRecordInfo = [this](ZQACController&, const ClipInfo& info) {
      journal_.add("delegate", "did " + info.clipId.value_or("without id"));
      infos.push_back(info);
    };
    operations.accontrollerEndRecord = [this](ZQACController&) { journal_.add("delegate", "end"); };
  }
  RecordingDelegate(const RecordingDelegate&) = delete;
  RecordingDelegate& operator=(const RecordingDelegate&) = delete;

  std::string moviePath(int clip) const { return folder_ + "/clip-" + std::to_string(clip) + ".mov"; }
  std::string thumbnailsPath(int clip) const { return folder_ + "/clip-" + std::to_string(clip) + ".thumbs"; }

  ZQACControllerDelegate operations;
  std::function<ClipPaths(int clip)> answer;
  int clips = 0;
  /// Of the clips that ended.
  std::vector<ClipInfo> infos;

 private:
  const std::string folder_;
  CaptureJournal& journal_;
};

}  // namespace zq::test

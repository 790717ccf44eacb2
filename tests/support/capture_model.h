#pragma once
// The rules of a capture once more, told straight from top to bottom and sharing no code with the controller: which
// frames belong to which clip, movie and thumbnails file.

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zq::test {

/// Hours, minutes, seconds, frames of a frame's timecode. `made` tells apart equal timecodes of different frames.
struct ModelTimecode {
  std::array<int, 4> fields{};
  int rate = 24;
  std::uint32_t made = 0;

  bool operator==(const ModelTimecode&) const = default;
};

struct ModelFrame {
  std::uint32_t id = 0;
  std::optional<ModelTimecode> timecode;
  std::optional<int> date;  // seconds
  int aspect = 1;
  bool doesNotFollow = false;
};

struct ModelSettings {
  bool detectScene = true;
  int nbDropFrame = 0;
  bool frameSampling = true;
  int sampleInterval = 1;
  bool captureMovie = true;
};

/// What the host of both the model and the real controller answers for clip `number`: not every clip has every file.
inline bool clipHasMovie(int number) {
  return number % 7 != 3;
}
inline bool clipHasThumbnails(int number) {
  return number % 5 != 4;
}

inline std::string timecodeText(const std::optional<ModelTimecode>& timecode) {
  if (!timecode) return "none";
  std::string text;
  for (const int field : timecode->fields) text += (text.empty() ? "" : ":") + std::to_string(field);
  return text;
}

class CaptureModel {
 public:
  ModelSettings settings;

  // What came of it: calls of the delegate, and per clip number the ids of the frames in its files.
  std::vector<std::string> calls;
  std::map<int, std::vector<std::uint32_t>> movies;
  std::map<int, std::vector<std::uint32_t>> thumbnails;

  void start() {
    waiting_ = false;
    startAt_ = endAfter_ = std::nullopt;
    date_.reset();
    if (recording_) return;
    recording_ = true;
    calls.push_back("begin");
    openClip();
  }

  void stop() {
    waiting_ = false;
    startAt_ = endAfter_ = std::nullopt;
    date_.reset();
    if (!recording_) return;
    recording_ = false;
    movie_ = 0;
    writingMovie_ = 0;
    closeThumbnails();
    closeClip(timecode_);
    calls.push_back("end");
  }

  void fileChange() {
    if (settings.detectScene) return;
    movie_ = 0;
    closeThumbnails();
    closeClip(lastTimecode_);
    openClip();
  }

  void frame(const ModelFrame& frame) {
    if (frame.timecode) timecode_ = frame.timecode;
    if (recording_) {
      const ModelTimecode at = frame.timecode.value_or(ModelTimecode{});
      if (waiting_ && waitFor_.fields <= at.fields) {
        waiting_ = false;
        openClip();
        clip_.start = startAt_ = timecode_;
        writeThumbnail(frame.id, at);
      }
      if (!waiting_) sortIntoClip(frame, at);
      cutMovie(frame, at);
    }
    if (writingMovie_ != 0) movies[writingMovie_].push_back(frame.id);
  }

 private:
  struct Clip {
    int number = 0;
    std::optional<int> date;
    std::optional<ModelTimecode> start, end;
    std::string duration = "none";
    int aspect = 0;
  };

  static ModelTimecode later(ModelTimecode timecode, int frames) {
    auto& [hours, minutes, seconds, count] = timecode.fields;
    int total = ((hours * 60 + minutes) * 60 + seconds) * timecode.rate + count + frames;
    count = total % timecode.rate;
    total /= timecode.rate;
    timecode.fields = {total / 3600, total / 60 % 60, total % 60, count};
    return timecode;
  }

  static std::string difference(const ModelTimecode& start, const ModelTimecode& end) {
    std::array<int, 4> result{};
    for (std::size_t i = 0; i < 4; ++i) result[i] = end.fields[i] - start.fields[i];
    const std::array<int, 4> whole{0, 60, 60, start.rate};
    for (std::size_t i = 3; i > 0; --i) {
      if (result[i] >= 0) continue;
      result[i] += whole[i];
      --result[i - 1];
    }
    return timecodeText(ModelTimecode{result, 0, 0});
  }

  void openClip() {
    clip_.date.reset();
    clip_.start.reset();
    clip_.end.reset();
    calls.push_back("will");
    clip_.number = ++clips_;
    if (settings.captureMovie) movie_ = clipHasMovie(clips_) ? clips_ : 0;
    closeThumbnails();
    if (clipHasThumbnails(clips_)) thumbnails[thumbnailsOf_ = clips_];
  }

  void closeClip(const std::optional<ModelTimecode>& end) {
    if (end != clip_.end) {
      clip_.end = end;
      if (clip_.start) clip_.duration = difference(*clip_.start, end.value_or(ModelTimecode{}));
    }
    endAfter_ = end;
    calls.push_back("did clip " + std::to_string(clip_.number) + " date " +
                    (clip_.date ? std::to_string(*clip_.date) : "none") + " start " + timecodeText(clip_.start) +
                    " end " + timecodeText(clip_.end) + " duration " + clip_.duration + " aspect " +
                    std::to_string(clip_.aspect));
  }

  void closeThumbnails() {
    if (thumbnailsOf_ != 0 && held_) writeThumbnail(*held_, lastTimecode_.value_or(ModelTimecode{}));
    thumbnailsOf_ = 0;
  }

  void writeThumbnail(std::uint32_t id, const ModelTimecode& at) {
    const std::array<int, 5> seconds{1, 2, 5, 10, 20};
    if (thumbnailsOf_ != 0) thumbnails[thumbnailsOf_].push_back(id);
    nextThumbnail_ = later(at, at.rate * seconds.at(static_cast<std::size_t>(settings.sampleInterval)));
  }

  void sortIntoClip(const ModelFrame& frame, const ModelTimecode& at) {
    const bool jump = frame.date && (!date_ || *frame.date < *date_ || *frame.date > *date_ + 1);
    if (settings.detectScene && jump) {
      movie_ = 0;
      closeThumbnails();
      closeClip(lastTimecode_);
      if (settings.nbDropFrame != 0) {
        waitFor_ = later(at, settings.nbDropFrame);
        waiting_ = true;
      } else {
        openClip();
      }
    }
    if (frame.date) date_ = frame.date;
    if (!clip_.date) {
      clip_.date = date_;
      clip_.aspect = frame.aspect;
    }
    const bool first = !clip_.start;
    if (first) clip_.start = startAt_ = timecode_;
    if (first || (settings.frameSampling && nextThumbnail_.fields <= at.fields)) {
      writeThumbnail(frame.id, at);
      held_.reset();
    } else {
      held_ = frame.id;
    }
    lastTimecode_ = frame.timecode;
  }

  void cutMovie(const ModelFrame& frame, const ModelTimecode& at) {
    if (endAfter_ && (at.fields > endAfter_->fields || frame.doesNotFollow)) {
      writingMovie_ = 0;
      endAfter_.reset();
    }
    if (startAt_ && at.fields >= startAt_->fields) {
      writingMovie_ = movie_;
      startAt_.reset();
    }
  }

  bool recording_ = false;
  bool waiting_ = false;
  ModelTimecode waitFor_;
  std::optional<ModelTimecode> timecode_, lastTimecode_, startAt_, endAfter_;
  std::optional<int> date_;
  Clip clip_;
  int clips_ = 0;
  int movie_ = 0;         // the clip whose movie is to be written; 0 for none
  int writingMovie_ = 0;  // the clip whose movie is being written
  int thumbnailsOf_ = 0;  // the clip whose thumbnails file is open
  ModelTimecode nextThumbnail_;
  std::optional<std::uint32_t> held_;
};

}  // namespace zq::test

#pragma once
// A random tape, frame by frame: scenes whose dates rise along the tape, with gaps between some of them.

#include <fmt/format.h>

#include <cstdint>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/capture_buffers.h"
#include "timecode/timecode_text.h"

namespace zq::test {

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : random_(seed) {}
  /// From `first` to `last`, both included.
  int from(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }
  bool oneIn(int count) { return from(1, count) == 1; }
  template <typename T>
  T oneOf(std::initializer_list<T> values) {
    return *(values.begin() + from(0, static_cast<int>(values.size()) - 1));
  }

 private:
  std::mt19937_64 random_;
};

/// How timecodes go on from one scene to the next.
enum class TimecodeCourse { runOn, someBeginAgain, allBeginAgain };

class TapePlan {
 public:
  explicit TapePlan(Dice& dice)
      : system_(dice.oneOf({DVSystem::pal625_50, DVSystem::ntsc525_60})),
        course_(dice.oneOf({TimecodeCourse::runOn, TimecodeCourse::runOn, TimecodeCourse::someBeginAgain,
                            TimecodeCourse::allBeginAgain})),
        hasGaps_(dice.oneIn(3)),
        second_(dice.from(-10 * kYear, 10 * kYear)),
        timecode_(dice.oneIn(2) ? 0 : dice.from(0, 80000)) {
    const int scenes = dice.oneIn(5) ? 1 : dice.oneIn(15) ? dice.from(20, 40) : dice.from(2, 9);
    if (hasGaps_ && dice.oneIn(2)) addGap(dice);
    for (int scene = 0; scene < scenes; ++scene) {
      addScene(dice, scenes > 9);
      if (hasGaps_ && dice.oneIn(3)) addGap(dice);
    }
  }

  DVSystem system() const { return system_; }
  bool timecodesRunOn() const { return course_ == TimecodeCourse::runOn; }
  const std::vector<FrameRecipe>& frames() const { return frames_; }

  /// A line for each run of frames.
  std::string text() const {
    std::string lines;
    for (std::size_t first = 0, end = 0; first < frames_.size(); first = end) {
      while (end < frames_.size() && isLike(frames_[end], frames_[first], end - first)) ++end;
      const FrameRecipe& frame = frames_[first];
      lines += fmt::format("  {} to {}: {} {}\n", first, end - 1,
                           frame.date ? calendarDateOf(*frame.date).isoString() : "undated",
                           frame.timecode ? timecodeText(*frame.timecode) : "without timecode");
    }
    return lines;
  }

  /// Moves every date by this much: another tape that looks the same.
  void shiftDates(int seconds) {
    for (FrameRecipe& frame : frames_) {
      if (frame.date) frame.date = stampAt(secondsOf(*frame.date) + seconds);
    }
  }

  /// The tape from this frame on.
  void writeTo(const std::string& path, std::size_t first = 0) const {
    std::ofstream file(path, std::ios::binary);
    for (std::size_t place = first; place < frames_.size(); ++place) {
      const FrameBytes bytes = frameBytesOf(frames_[place]);
      file.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
  }

 private:
  static constexpr int kDay = 86400;
  static constexpr int kYear = 365 * kDay;

  /// Seconds from the beginning of 2005 on.
  static StampDateTime stampAt(int second) {
    const auto date = epoch().dateByAdding(0, 0, 0, 0, 0, second);
    return {date.yearOfCommonEra(), date.monthOfYear(),  date.dayOfMonth(),
            date.hourOfDay(),       date.minuteOfHour(), date.secondOfMinute()};
  }
  static int secondsOf(const StampDateTime& stamp) {
    return static_cast<int>(calendarDateOf(stamp).timeIntervalSinceDate(epoch()));
  }
  static CalendarDate epoch() { return {2005, 1, 1, 0, 0, 0}; }

  /// Whether a frame belongs to the same scene or gap as another that many frames before it.
  bool isLike(const FrameRecipe& frame, const FrameRecipe& other, std::size_t distance) const {
    if (frame.date.has_value() != other.date.has_value()) return false;
    if (frame.timecode.has_value() != other.timecode.has_value()) return false;
    const auto rate = static_cast<std::size_t>(timebaseOf(system_));
    return !frame.date || secondsOf(*frame.date) - secondsOf(*other.date) <= static_cast<int>(distance / rate) + 1;
  }

  void addScene(Dice& dice, bool isShort) {
    const int rate = timebaseOf(system_);
    const bool beginsAgain =
        course_ == TimecodeCourse::allBeginAgain || (course_ == TimecodeCourse::someBeginAgain && dice.oneIn(3));
    if (beginsAgain) timecode_ = 0;
    const int seconds = isShort ? dice.from(1, 3) : dice.oneIn(8) ? dice.from(6, 12) : dice.from(1, 5);
    const int frames = seconds * rate + (dice.oneIn(2) ? 0 : dice.from(0, rate - 1));
    // The clock's second turns anywhere in the frames.
    const int phase = dice.oneIn(2) ? 0 : dice.from(0, rate - 1);
    for (int i = 0; i < frames; ++i) add(stampAt(second_ + (i + phase) / rate), timecode_++);
    second_ += (frames - 1 + phase) / rate;
    second_ += dice.oneOf({2, 2, 3, dice.from(2, 60), dice.from(60, 3600), dice.from(1, 20) * kDay});
  }

  void addGap(Dice& dice) {
    const int frames = dice.from(1, 60);
    const bool blank = dice.oneIn(2);
    for (int i = 0; i < frames; ++i) add(std::nullopt, blank ? std::nullopt : std::optional(timecode_++));
  }

  void add(std::optional<StampDateTime> date, std::optional<int> timecode) {
    FrameRecipe frame;
    frame.system = system_;
    frame.id = static_cast<std::uint32_t>(frames_.size());
    frame.date = date;
    if (timecode) frame.timecode = timecodeAtFrame(system_, *timecode);
    frames_.push_back(frame);
  }

  const DVSystem system_;
  const TimecodeCourse course_;
  const bool hasGaps_;
  int second_;
  int timecode_;
  std::vector<FrameRecipe> frames_;
};

}  // namespace zq::test

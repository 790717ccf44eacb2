#include "host/gallery/sample_tape.h"

#include <algorithm>
#include <random>
#include <string>

#include "host/gallery/sample_poster.h"

namespace zq::host {

namespace {

constexpr int kFramesPerSecond = 25;

SMPTETime timecodeOf(int frames) {
  SMPTETime time;
  time.mType = 1;  // 25 frames a second
  time.mFrames = static_cast<std::int16_t>(frames % kFramesPerSecond);
  time.mSeconds = static_cast<std::int16_t>(frames / kFramesPerSecond % 60);
  time.mMinutes = static_cast<std::int16_t>(frames / kFramesPerSecond / 60 % 60);
  time.mHours = static_cast<std::int16_t>(frames / kFramesPerSecond / 3600);
  return time;
}

/// Makes one clip after the other, as a camcorder records them.
class ClipMaker {
 public:
  ClipMaker(const SampleTapeOptions& options, std::uint32_t sequence)
      : options_(options), random_(options.seed + sequence), day_(CalendarDate(2004, 7, 3, 9, 30, 0)) {
    day_ = day_.dateByAdding(0, 0, static_cast<int>(sequence) * 9, 0, static_cast<int>(random_() % 300), 0);
  }

  ClipValue next(int index) {
    const int frames = static_cast<int>(3 + random_() % 40) * kFramesPerSecond;
    const int number = static_cast<int>(random_() % 1000);
    ClipRecord record;
    record.clipId = day_.isoString();
    record.clipName = "Clip " + std::to_string(index + 1);
    if (options_.posterWidth > 0) record.posterImage = samplePoster(number, options_.posterWidth);
    record.startDate = std::make_shared<const CalendarDate>(day_);
    record.startTimecode = valueWithSMPTETime(timecodeOf(position_));
    record.endTimecode = valueWithSMPTETime(timecodeOf(position_ + frames));
    record.duration = valueWithSMPTETime(timecodeOf(frames));
    record.index = index;
    record.recapture = index % 3 == 1;
    auto clip = std::make_shared<ZQACClip>(std::move(record));
    clip->setRecaptureFinished(index == 1);
    position_ += frames;
    day_ = day_.dateByAdding(0, 0, 0, 0, 4, frames / kFramesPerSecond);
    return clip;
  }

 private:
  const SampleTapeOptions& options_;
  std::minstd_rand random_;
  CalendarDate day_;
  int position_ = 0;
};

}  // namespace

TapeValue sampleTape(const SampleTapeOptions& options) {
  std::vector<SequenceValue> sequences;
  for (int number = 0; number < options.sequences; ++number) {
    ClipMaker maker(options, static_cast<std::uint32_t>(number));
    const int count = number == 0 ? options.clips : std::max(2, options.clips - options.fewerEach * number);
    std::vector<ClipValue> clips;
    clips.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) clips.push_back(maker.next(index));
    const std::string name = "Recording " + std::to_string(number + 1);
    sequences.push_back(std::make_shared<ZQACSequence>(name, name, std::move(clips),
                                                       std::make_shared<const CalendarDate>(2026, 1, 1, 0, 0, 0)));
  }
  return std::make_shared<ZQACTape>(1, "Sample tape", std::move(sequences));
}

}  // namespace zq::host

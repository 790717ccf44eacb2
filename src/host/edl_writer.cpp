#include "host/edl_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "host/batch_list_text.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

// Drop frame skips the numbers 0 and 1 of each minute but every tenth.
constexpr std::int64_t kDropFrameMinute = 60 * 30 - 2;
constexpr std::int64_t kDropFrameTenMinutes = 10 * 60 * 30 - 9 * 2;

bool isSkipped(const SMPTETime& time) {
  return time.mFrames < 2 && time.mSeconds == 0 && time.mMinutes % 10 != 0;
}

/// How the frames of a list are numbered.
class FrameNumbers {
 public:
  FrameNumbers(int timebase, bool dropFrame) : timebase_(timebase), dropFrame_(dropFrame) {}

  std::int64_t framesAt(const SMPTETime& time) const {
    const std::int64_t minutes = std::int64_t{time.mHours} * 60 + time.mMinutes;
    return framesTo(time, timebase_) - (dropFrame_ ? 2 * (minutes - minutes / 10) : 0);
  }

  SMPTETime at(std::int64_t frames) const {
    if (!dropFrame_) return timecodeAt(frames, timebase_);
    const std::int64_t rest = frames % kDropFrameTenMinutes;
    // The first minute of ten is whole.
    const std::int64_t skipped = rest < 2 ? 0 : (rest - 2) / kDropFrameMinute * 2;
    return timecodeAt(frames + frames / kDropFrameTenMinutes * 18 + skipped, timebase_);
  }

  std::int64_t inADay() const { return dropFrame_ ? 144 * kDropFrameTenMinutes : std::int64_t{24} * 3600 * timebase_; }

 private:
  const int timebase_;
  const bool dropFrame_;
};

std::string oneLine(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
  return text;
}

}  // namespace

std::string edlText(const std::string& tape, const std::string& reel, int timebase,
                    const std::vector<EdlEvent>& events) {
  const bool dropFrame = timebase == 30 && std::ranges::none_of(events, [](const EdlEvent& event) {
                           return isSkipped(event.first) || isSkipped(event.last);
                         });
  const FrameNumbers numbers(timebase, dropFrame);
  std::string text = fmt::format("TITLE: {}\nFCM: {}\n", oneLine(tape), dropFrame ? "DROP FRAME" : "NON-DROP FRAME");
  if (reel != tape) text += fmt::format("* REEL {} IS {}\n", reel, oneLine(tape));
  std::int64_t record = numbers.framesAt(timecodeAt(std::int64_t{3600} * timebase, timebase));
  int number = 0;
  for (const EdlEvent& event : events) {
    const std::int64_t in = numbers.framesAt(event.first);
    const std::int64_t out = numbers.framesAt(event.last) + 1;
    const std::int64_t recordOut = record + out - in;
    text += fmt::format("{:03}  {:<8} AA/V  C        {} {} {} {}\n", ++number, reel, timecodeText(event.first),
                        timecodeText(numbers.at(out)), timecodeText(numbers.at(record % numbers.inADay())),
                        timecodeText(numbers.at(recordOut % numbers.inADay())));
    if (!event.name.empty()) text += fmt::format("* FROM CLIP NAME: {}\n", oneLine(event.name));
    record = recordOut;
  }
  return text;
}

}  // namespace zq::host

// Where the cursor stands: the place, in the current sequence, of the frame that the camcorder plays.

#include <algorithm>
#include <cmath>
#include <mutex>

#include "timecode/timecode_utils.h"
#include "views/timeline_view.h"

namespace zq {
namespace {

constexpr float kCursorMargin = 2;  // Drawn anew left and right of the line, which is 2 points wide.

bool holdsDate(const ZQACClip& clip, const CalendarDate& date) {
  if (!clip.dateStartClip() || !clip.dateEndClip()) return false;
  return date.timeIntervalSinceDate(*clip.dateStartClip()) >= 0 && date.timeIntervalSinceDate(*clip.dateEndClip()) <= 0;
}

struct HeldClip {
  const ZQACClip* clip = nullptr;
  /// Frames of the sequence before it.
  double framesBefore = 0;
};

/// The first clip of the sequence that holds the date; null when none does.
HeldClip clipThatHolds(const ZQACSequence& sequence, const CalendarDate& date) {
  HeldClip held;
  for (const ClipValue& clip : sequence.allClips()) {
    if (holdsDate(*clip, date)) {
      held.clip = clip.get();
      return held;
    }
    held.framesBefore += clip->durationInFrame();
  }
  return held;
}

SMPTETime startOf(const ZQACClip& clip) {
  return clip.timecodeStartClip() ? *clip.timecodeStartClip() : nullTimecode;
}

int framesIntoClip(const ZQACClip& clip, const SMPTETime& timecode) {
  const TimecodeValue difference = ZQACTimecodeUtils::subTimecodeFromTimecodeWithTimebase(
      clip.timecodeStartClip(), valueWithSMPTETime(timecode), clip.timebase());
  return ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(difference, clip.timebase());
}

/// In the whole width of the sequence, not in that of its clips, which are drawn 3 points further to the right.
float headInSequence(const ZQACSequence& sequence, double frames) {
  const platform::Rect place = sequence.posInTimeline();
  if (sequence.totalDurationInFrame() == 0) return place.x;
  return static_cast<float>(place.x + frames * place.width / sequence.totalDurationInFrame());
}

}  // namespace

void ZQACTimelineView::computeCursorHeadPos() {
  std::optional<platform::Rect> area;
  {
    const std::lock_guard guard(*mutex_);
    area = moveCursor();
  }
  postCursor(area);
}

// A tape that is paused sends no frame that would move the cursor along when its sequence is laid out anew.
void ZQACTimelineView::bringCursorToItsSequence() {
  std::optional<platform::Rect> area;
  {
    const std::lock_guard guard(*mutex_);
    if (cursorRect_ != platform::Rect{}) area = moveCursor();
  }
  postCursor(area);
}

void ZQACTimelineView::postCursor(const std::optional<platform::Rect>& area) {
  if (area) mainThread_.post([this, rect = *area] { refreshCursorInRect(rect); });
}

/// Under the mutex. The area to draw anew; none when the cursor stays. The first one reaches from the view's left edge,
/// where the cursor is taken to have been before.
std::optional<platform::Rect> ZQACTimelineView::moveCursor() {
  if (!cursorDate_ || !activeSequence_) return std::nullopt;
  const HeldClip held = clipThatHolds(*activeSequence_, *cursorDate_);
  if (held.clip == nullptr) return std::nullopt;

  // Not told to the strip, which shows the timecode of the tape.
  const SMPTETime start = startOf(*held.clip);
  if (ZQACTimecodeUtils::timecodeCompareWith(cursorTimecode_, start) < 0) cursorTimecode_ = start;

  const double frames = held.framesBefore + framesIntoClip(*held.clip, cursorTimecode_);
  cursorHeadPos_ = {headInSequence(*activeSequence_, frames), bounds_.y};
  cursorRect_ = {std::min(cursorHeadPos_.x, previousCursorHeadPos_.x) - kCursorMargin, bounds_.y,
                 std::abs(cursorHeadPos_.x - previousCursorHeadPos_.x) + 2 * kCursorMargin, bounds_.height};
  previousCursorHeadPos_ = cursorHeadPos_;
  return cursorRect_;
}

}  // namespace zq

#include "views/progress_bar.h"

#include <QPainter>
#include <algorithm>
#include <cstdint>

#include "timecode/timecode_utils.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr float kCapWidth = 2;
constexpr float kBarHeight = 6;
/// Intended: past this part of the clip the bar is closed, a little before the clip is done.
constexpr float kClosedFrom = 0.99F;

SkinImage skinImage(const char* name) {
  return imageNamedInFrameworkForClass(name, "ZQACThumbnailView");
}

/// For all bars.
const ProgressBarSlices& emptySlices() {
  static const ProgressBarSlices slices{skinImage("progressBarEmptyLeft"), skinImage("progressBarEmptyMiddle"),
                                        skinImage("progressBarEmptyRight")};
  return slices;
}

const ProgressBarSlices& fullSlices() {
  static const ProgressBarSlices slices{skinImage("progressBarFullLeft"), skinImage("progressBarFullMiddle"),
                                        skinImage("progressBarFullRight")};
  return slices;
}

platform::Rect leftOf(const platform::Rect& bar) {
  return {bar.x, bar.y, kCapWidth, kBarHeight};
}

platform::Rect middleOf(const platform::Rect& bar) {
  return {bar.x + kCapWidth, bar.y, bar.width - 2 * kCapWidth, kBarHeight};
}

platform::Rect rightOf(const platform::Rect& bar) {
  return {bar.x + bar.width - kCapWidth, bar.y, kCapWidth, kBarHeight};
}

const SMPTETime& recordOf(const TimecodeValue& value) {
  return value ? *value : nullTimecode;
}

bool isWithin(const ZQACClip& clip, const SMPTETime& cursor) {
  return ZQACTimecodeUtils::timecodeCompareWith(cursor, recordOf(clip.timecodeStartClip())) != -1 &&
         ZQACTimecodeUtils::timecodeCompareWith(cursor, recordOf(clip.timecodeEndClip())) != 1;
}

}  // namespace

float fractionDone(const ZQACClip& clip, const SMPTETime& cursor) {
  if (clip.durationInFrame() == 0) return 0;
  const auto frames = [&clip](const TimecodeValue& timecode) {
    return std::int64_t{ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(timecode, clip.timebase())};
  };
  const std::int64_t done = frames(valueWithSMPTETime(cursor)) - frames(clip.timecodeStartClip());
  return static_cast<float>(done) / static_cast<float>(clip.durationInFrame());
}

void ProgressBarDrawing::initialize() {
  emptySlices();
  fullSlices();
}

void ProgressBarDrawing::drawProgressBarInClip(const ZQACClip& clip, const ZQACClip* clipBeingRecap,
                                               const SMPTETime& cursor) const {
  if (!clip.isRecapture()) return;
  const platform::Rect bar = clip.progressBar();
  if (clip.isRecaptureFinished()) {
    drawWhole(fullSlices(), bar);
    return;
  }
  drawWhole(emptySlices(), bar);
  if (&clip == clipBeingRecap && isWithin(clip, cursor)) drawPart(bar, fractionDone(clip, cursor));
}

void ProgressBarDrawing::drawWhole(const ProgressBarSlices& slices, const platform::Rect& bar) const {
  draw(slices.left, leftOf(bar));
  draw(slices.middle, middleOf(bar));
  draw(slices.right, rightOf(bar));
}

// The fraction is of the whole bar, caps included, of which the middle shows its own part.
void ProgressBarDrawing::drawPart(const platform::Rect& bar, float fraction) const {
  const ProgressBarSlices& slices = fullSlices();
  draw(slices.left, leftOf(bar));
  platform::Rect filled = middleOf(bar);
  const float end = std::min(filled.x + filled.width, bar.x + bar.width * fraction);
  filled.width = end - filled.x;
  draw(slices.middle, filled);
  if (fraction > kClosedFrom) draw(slices.right, rightOf(bar));
}

void ProgressBarDrawing::draw(const SkinImage& image, const platform::Rect& rect) const {
  if (rect.width > 0) image.draw(painter_, pixels_.snapped(toQt(rect, viewHeight_)));
}

}  // namespace zq

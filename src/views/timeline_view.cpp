#include "views/timeline_view.h"

#include <mutex>
#include <utility>

#include "outlets/thumbnail_strip.h"
#include "views/poster_size.h"
#include "views/replace_object.h"
#include "views/timeline_drawing.h"

namespace zq {
ZQACTimelineView::ZQACTimelineView(platform::Runtime& runtime, QWidget* parent)
    : QWidget(parent),
      mutex_(runtime.makeMutex("timeline")),
      mainLoop_(runtime.mainLoop()),
      mainThread_(mainLoop_),
      bounds_(fromQt(rect(), static_cast<float>(height()))) {
  TimelineDrawing::initialize();
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(tr("Timeline"));
}

void ZQACTimelineView::setThumbnailView(outlets::ThumbnailStrip* view) {
  const std::lock_guard guard(*mutex_);
  thumbnailView_ = view;
}

void ZQACTimelineView::refreshWithTape(TapeValue tape) {
  replaceObject(*mutex_, currentTape_, std::move(tape));
  postRefresh();
}

void ZQACTimelineView::setCurrentSequence(SequenceValue sequence) {
  if (!replaceObject(*mutex_, activeSequence_, sequence)) return;
  if (outlets::ThumbnailStrip* strip = thumbnailView()) strip->setActiveSequence(std::move(sequence));
  postRefresh();
}

void ZQACTimelineView::setCurrentClip(ClipValue clip) {
  if (!replaceObject(*mutex_, activeClip_, clip)) return;
  if (outlets::ThumbnailStrip* strip = thumbnailView()) strip->setActiveClip(std::move(clip));
  mainThread_.post([this] {
    refresh();
    describeCurrentClip();
  });
}

void ZQACTimelineView::highLightTheClip(ClipValue clip) {
  setCurrentClip(std::move(clip));
  postRefresh();
}

void ZQACTimelineView::setCursorTimecode(const SMPTETime& timecode) {
  outlets::ThumbnailStrip* strip = nullptr;
  {
    const std::lock_guard guard(*mutex_);
    cursorTimecode_ = timecode;
    strip = thumbnailView_;
  }
  if (strip != nullptr) strip->setCursorTimecode(timecode);
}

void ZQACTimelineView::setCursorDate(DateValue date) {
  if (replaceObject(*mutex_, cursorDate_, std::move(date))) computeCursorHeadPos();
}

void ZQACTimelineView::setCursorRect(const platform::Rect& rect) {
  const std::lock_guard guard(*mutex_);
  cursorRect_ = rect;
}

void ZQACTimelineView::setIsMouseDownActive(bool active) {
  outlets::ThumbnailStrip* strip = nullptr;
  {
    const std::lock_guard guard(*mutex_);
    isMouseDownActive_ = active;
    strip = thumbnailView_;
  }
  if (strip != nullptr) strip->setIsMouseDownActive(active);
}

void ZQACTimelineView::refresh() {
  if (!mainLoop_.isCurrent()) {
    postRefresh();
    return;
  }
  update();
}

void ZQACTimelineView::postRefresh() {
  mainThread_.post([this] { refresh(); });
}

void ZQACTimelineView::refreshCursorInRect(const platform::Rect& rect) {
  update(wholePointsInView(rect, size()));
}

outlets::ThumbnailStrip* ZQACTimelineView::thumbnailView() const {
  const std::lock_guard guard(*mutex_);
  return thumbnailView_;
}

TapeValue ZQACTimelineView::currentTape() const {
  const std::lock_guard guard(*mutex_);
  return currentTape_;
}

SequenceValue ZQACTimelineView::currentSequence() const {
  const std::lock_guard guard(*mutex_);
  return activeSequence_;
}

ClipValue ZQACTimelineView::currentClip() const {
  const std::lock_guard guard(*mutex_);
  return activeClip_;
}

DateValue ZQACTimelineView::cursorDate() const {
  const std::lock_guard guard(*mutex_);
  return cursorDate_;
}

SMPTETime ZQACTimelineView::cursorTimecode() const {
  const std::lock_guard guard(*mutex_);
  return cursorTimecode_;
}

platform::Rect ZQACTimelineView::cursorRect() const {
  const std::lock_guard guard(*mutex_);
  return cursorRect_;
}

bool ZQACTimelineView::isMouseDownActive() const {
  const std::lock_guard guard(*mutex_);
  return isMouseDownActive_;
}

// The strip is taken to be as wide as this view: the window lays them out so.
void ZQACTimelineView::myMethodeWhenClipClicked() {
  const ClipValue clip = currentClip();
  if (!clip) return;
  const SequenceValue sequence = currentSequence();
  const int clipCount = sequence ? static_cast<int>(sequence->allClips().size()) : 0;
  const auto viewWidth = static_cast<float>(width());
  outlets::ThumbnailStrip* strip = thumbnailView();

  if (static_cast<float>(clipCount) * ZQACPosterImageWidth > viewWidth) {
    constexpr int kHalfPicture = ZQACPosterImageWidth / 2;
    const float offset = clip->posterImagePos().x + kHalfPicture - viewWidth / 2;
    if (strip != nullptr) strip->triggerRelocationTimerWithOffset(offset);
  } else {
    if (strip != nullptr) strip->findFirstPosterImagePosWithClipCount(clipCount);
    postRefresh();
  }
}

}  // namespace zq

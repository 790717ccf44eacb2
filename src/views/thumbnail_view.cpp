#include "views/thumbnail_view.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <mutex>
#include <utility>

#include "outlets/binding_area.h"
#include "views/progress_bar.h"
#include "views/replace_object.h"
#include "views/strip_scroll.h"
#include "views/thumbnail_drawing.h"
#include "views/view_coordinates.h"

// Set-up, setters and drawing. What moves the strip is in thumbnail_view_moving.cpp, what the user does in
// thumbnail_view_events.cpp.

namespace zq {
namespace {

constexpr float kBandWidth = 10;
constexpr float kBandHeight = 40;

}  // namespace

ZQACThumbnailView::ZQACThumbnailView(platform::Runtime& runtime, QWidget* parent)
    : QWidget(parent), runtime_(runtime), mutex_(runtime.makeMutex("thumbnail view")), mainThread_(runtime.mainLoop()) {
  ProgressBarDrawing::initialize();
  setMouseTracking(true);
  setAccessibleName(QStringLiteral("Thumbnail strip"));
  takeBounds();
}

ZQACThumbnailView::~ZQACThumbnailView() {
  endGlide();
  endRolling();
}

void ZQACThumbnailView::setBindingAreaView(outlets::BindingArea* view) {
  const std::lock_guard guard(*mutex_);
  state_.bindingAreaView = view;
}

void ZQACThumbnailView::setActiveSequence(SequenceValue sequence) {
  if (runtime_.mainLoop().isCurrent()) takeBounds();
  SequenceValue previous;  // goes after the lock
  outlets::BindingArea* bindingArea = nullptr;
  {
    const std::lock_guard guard(*mutex_);
    if (sequence == state_.activeSequence) return;
    previous = std::exchange(state_.activeSequence, sequence);
    const StripScroll scroll = state_.scroll();
    state_.firstPosterImagePosX = scroll.centred();
    if (scroll.overflows()) state_.installAreas();
    bindingArea = state_.bindingAreaView;
  }
  postRefresh();
  if (bindingArea != nullptr) bindingArea->setActiveSequence(std::move(sequence));
}

void ZQACThumbnailView::setActiveClip(ClipValue clip) {
  if (!replaceObject(*mutex_, state_.activeClip, clip)) return;
  if (outlets::BindingArea* bindingArea = bindingAreaView()) bindingArea->setActiveClip(std::move(clip));
  postRefresh();
}

void ZQACThumbnailView::setClipBeingRecap(ClipValue clip) {
  if (replaceObject(*mutex_, state_.clipBeingRecap, std::move(clip))) postRefresh();
}

void ZQACThumbnailView::setCursorTimecode(const SMPTETime& timecode) {
  ClipValue clip;
  {
    const std::lock_guard guard(*mutex_);
    state_.cursorTimecode = timecode;
    clip = state_.clipBeingRecap;
  }
  if (clip) mainThread_.post([this, bar = clip->progressBar()] { refreshInRect(bar); });
}

void ZQACThumbnailView::setIsMouseDownActive(bool active) {
  const std::lock_guard guard(*mutex_);
  state_.isMouseDownActive = active;
}

ThumbnailStripState ZQACThumbnailView::state() const {
  const std::lock_guard guard(*mutex_);
  return state_;
}

void ZQACThumbnailView::refresh() {
  if (!runtime_.mainLoop().isCurrent()) {
    postRefresh();
    return;
  }
  update();
  describeActiveClip();
  if (outlets::BindingArea* bindingArea = bindingAreaView()) bindingArea->refresh();
}

void ZQACThumbnailView::refreshInRect(const platform::Rect& rect) {
  update(wholePointsInView(rect, size()));
}

void ZQACThumbnailView::postRefresh() {
  mainThread_.post([this] { refresh(); });
}

void ZQACThumbnailView::describeActiveClip() {
  const ClipValue clip = activeClip();
  const QString name = clip ? QString::fromStdString(clip->clipName()) : QString();
  if (name != accessibleDescription()) setAccessibleDescription(name);
}

ClipValue ZQACThumbnailView::findThumbnailForPoint(Point point) {
  const SequenceValue sequence = activeSequence();
  if (!sequence) return nullptr;
  const auto& clips = sequence->allClips();
  const auto found = std::ranges::find_if(
      clips, [point](const ClipValue& clip) { return contains(clip->posterImagePos(), point.x, point.y); });
  if (found == clips.end()) return nullptr;
  if (animationTimer_ && animationTimer_->isValid()) endGlide();
  return *found;
}

// A view has its size only when it is laid out, long after it was made, and may change it then: the bands follow, as
// one that is not at the edge would be of no use. A strip that comes to overflow gets them as if it was set anew.
void ZQACThumbnailView::takeBounds() {
  const platform::Rect bounds{0, 0, static_cast<float>(width()), static_cast<float>(height())};
  bool fits = false;
  {
    const std::lock_guard guard(*mutex_);
    if (bounds == state_.bounds) return;
    const bool sameWidth = bounds.width == state_.bounds.width;
    state_.bounds = bounds;
    state_.rollingToRightArea.setRect({bounds.x, bounds.height - kBandHeight, kBandWidth, kBandHeight});
    state_.rollingToLeftArea.setRect({bounds.width - kBandWidth, bounds.height - kBandHeight, kBandWidth, kBandHeight});
    if (sameWidth || !state_.activeSequence) return;
    const StripScroll scroll = state_.scroll();
    fits = !scroll.overflows();
    if (!fits) state_.installAreas();
    // A glide is placed for the new width by its next tick.
    if (fits) {
      state_.firstPosterImagePosX = scroll.centred();
    } else if (!animationTimer_) {
      state_.firstPosterImagePosX = scroll.withinEnds(state_.firstPosterImagePosX);
    }
  }
  if (fits) endGlide();
}

void ZQACThumbnailView::paintEvent(QPaintEvent* event) {
  takeBounds();
  const ThumbnailStripState shown = state();
  QPainter painter(this);
  ThumbnailDrawing(painter, posters_, shown).drawRect(fromQt(event->region().boundingRect(), shown.bounds.height));
  tellWhereClipsAre(shown);
}

// The binding area may have been drawn before this view was, with the places that the clips had until now.
void ZQACThumbnailView::tellWhereClipsAre(const ThumbnailStripState& drawn) {
  if (drawn.activeSequence == drawnSequence_ && drawn.firstPosterImagePosX == drawnPosition_) return;
  drawnSequence_ = drawn.activeSequence;
  drawnPosition_ = drawn.firstPosterImagePosX;
  mainThread_.post([this] {
    if (outlets::BindingArea* bindingArea = bindingAreaView()) bindingArea->refresh();
  });
}

void ZQACThumbnailView::resizeEvent(QResizeEvent* /*event*/) {
  takeBounds();
}

}  // namespace zq

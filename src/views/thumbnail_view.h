#pragma once
// The strip of the active sequence's poster images, which rolls under the pointer and glides to a clip that was picked.

#include <QWidget>
#include <memory>
#include <vector>

#include "outlets/thumbnail_strip.h"
#include "platform/runtime.h"
#include "views/main_thread_tasks.h"
#include "views/poster_cache.h"
#include "views/repeating_timer.h"
#include "views/thumbnail_strip_state.h"

namespace zq {

/// Made, destroyed and drawn on the main thread. What outlets::ThumbnailStrip allows, the getters of values and
/// refresh() may be called from any thread, all else on the main thread. Coordinates have their origin at the lower
/// left corner.
class ZQACThumbnailView final : public QWidget, public outlets::ThumbnailStrip {
  Q_OBJECT

 public:
  struct Point {
    float x = 0;
    float y = 0;
  };

  explicit ZQACThumbnailView(platform::Runtime& runtime, QWidget* parent = nullptr);
  /// Invalidates the timers, whoever else holds them.
  ~ZQACThumbnailView() override;

  /// The band between the timeline and this view. It is not owned: it stays until another one, or null, is set.
  void setBindingAreaView(outlets::BindingArea* view) override;
  void setActiveSequence(SequenceValue sequence) override;
  void setActiveClip(ClipValue clip) override;
  void setClipBeingRecap(ClipValue clip) override;
  void setCursorTimecode(const SMPTETime& timecode) override;
  void setIsMouseDownActive(bool active) override;
  /// Where posters that cannot be decoded are told; null tells nobody. The log must outlive its being set.
  void setLog(Log* log) { posters_.setLog(log); }

  outlets::BindingArea* bindingAreaView() const { return state().bindingAreaView; }
  SequenceValue activeSequence() const { return state().activeSequence; }
  ClipValue activeClip() const { return state().activeClip; }
  ClipValue clipBeingRecap() const { return state().clipBeingRecap; }
  SMPTETime cursorTimecode() const { return state().cursorTimecode; }
  bool isMouseDownActive() const { return state().isMouseDownActive; }
  /// All of it as it is now.
  ThumbnailStripState state() const;
  /// Null when nothing moves.
  const std::shared_ptr<RepeatingTimer>& animationTimer() const { return animationTimer_; }
  const std::shared_ptr<RepeatingTimer>& rollingTimer() const { return rollingTimer_; }

  /// Draws this view and the binding area anew.
  void refresh();
  void refreshInRect(const platform::Rect& rect);

  /// The clip whose poster is at the point. Finding one ends a glide.
  ClipValue findThumbnailForPoint(Point point);
  void findFirstPosterImagePosWithClipCount(int clipCount) override;
  /// Puts the active clip's poster this far to the right of the middle. For strips that overflow.
  void findFirstPosterImagePosWithActivePosterImagePos(float offset);

  void triggerRelocationTimerWithOffset(float offset) override;
  void myRelocationTimerFireMethod();
  void triggerRollingTimer();
  void myRollingTimerFireMethod();
  /// The pointer came into a band at an edge of the view, at this point of the view.
  void mouseEntered(Point point);
  void mouseExited();

  QSize sizeHint() const override { return {480, 50}; }
  QSize minimumSizeHint() const override { return {60, 50}; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  Point toPoint(const QPointF& position) const;
  void postRefresh();
  void takeBounds();
  void describeActiveClip();
  void tellWhereClipsAre(const ThumbnailStripState& drawn);
  void pointerMoved(const QPointF& position);
  void pointerLeft();
  void endGlide();
  void endRolling();
  bool centreStripThatFits();
  bool scrollBy(float points);
  ClipValue clipShownAt(Point point) const;

  // Constant after construction.
  platform::Runtime& runtime_;
  const std::unique_ptr<platform::Mutex> mutex_;
  const MainThreadTasks mainThread_;

  // Guarded by mutex_, which is never held while another object is told.
  ThumbnailStripState state_;

  // Main thread only.
  PosterCache posters_;
  /// What was drawn last.
  SequenceValue drawnSequence_;
  float drawnPosition_ = 0;
  /// What is left of the way of the glide, and when it began.
  float glideOffset_ = 0;
  platform::TimePoint glideStart_;
  std::shared_ptr<RepeatingTimer> animationTimer_;
  std::shared_ptr<RepeatingTimer> rollingTimer_;
  /// Those that rollingTimer_ held before.
  std::vector<std::shared_ptr<RepeatingTimer>> olderRollingTimers_;
  /// Of the wheel: less than a point.
  float unscrolled_ = 0;
};

}  // namespace zq

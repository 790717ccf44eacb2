#pragma once
// The bar that shows one tape as a row of sequences and their clips, as wide as they are long, and picks a clip.

#include <QWidget>
#include <memory>
#include <optional>

#include "outlets/timeline.h"
#include "platform/runtime.h"
#include "views/main_thread_tasks.h"
#include "views/view_coordinates.h"

namespace zq {

/// Made, destroyed, drawn and clicked on the main thread. Setters, getters, refresh() and computeCursorHeadPos() may be
/// called from any thread. Coordinates have their origin at the lower left corner.
class ZQACTimelineView final : public QWidget, public outlets::Timeline {
  Q_OBJECT

 public:
  struct Point {
    float x = 0;
    float y = 0;
  };

  explicit ZQACTimelineView(platform::Runtime& runtime, QWidget* parent = nullptr);

  /// The strip that follows this view. It is not owned: it stays until another one, or null, is set.
  void setThumbnailView(outlets::ThumbnailStrip* view) override;
  void refreshWithTape(TapeValue tape) override;
  void setCurrentSequence(SequenceValue sequence) override;
  void setCurrentClip(ClipValue clip) override;
  /// As setCurrentClip(), but draws anew even when the clip was current already.
  void highLightTheClip(ClipValue clip);
  void setCursorTimecode(const SMPTETime& timecode) override;
  void setCursorDate(DateValue date) override;
  void setCursorRect(const platform::Rect& rect) override;
  void setIsMouseDownActive(bool active) override;
  void refresh() override;

  outlets::ThumbnailStrip* thumbnailView() const;
  /// Nothing ever sets it.
  TimecodeValue timecodeValue() const { return nullptr; }
  SequenceValue currentSequence() const;
  ClipValue currentClip() const;
  DateValue cursorDate() const;
  SMPTETime cursorTimecode() const;
  platform::Rect cursorRect() const;
  bool isMouseDownActive() const;

  /// Moves the cursor to where the cursor's date and timecode are in the current sequence; leaves it where no clip
  /// holds the date.
  void computeCursorHeadPos();
  /// Main thread, as all that follows: draws this part anew.
  void refreshCursorInRect(const platform::Rect& rect);
  /// Makes the clip at the point current, and its sequence; whether there is one. The sequence at the point stays
  /// current even where it has no clip.
  bool findClipAndSequenceForPoint(Point point);
  void myMethodeWhenClipClicked() override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  TapeValue currentTape() const;
  void postRefresh();
  platform::Rect placeOfCurrentSequence() const;
  void bringCursorToItsSequence();
  void postCursor(const std::optional<platform::Rect>& area);
  std::optional<platform::Rect> moveCursor();
  void drawFocus(QPainter& painter) const;
  void mouseDown(Point point);
  bool pickClipOfCurrentSequence(Point point);
  ClipValue clipAt(Point point) const;
  void describeCurrentClip();
  Point toPoint(const QPointF& position) const;

  // Constant after construction.
  const std::unique_ptr<platform::Mutex> mutex_;
  platform::Executor& mainLoop_;
  const MainThreadTasks mainThread_;

  // Guarded by mutex_, which is never held while another object is told.
  outlets::ThumbnailStrip* thumbnailView_ = nullptr;
  TapeValue currentTape_;
  SequenceValue activeSequence_;
  ClipValue activeClip_;
  bool isMouseDownActive_ = true;
  Point cursorHeadPos_;
  platform::Rect cursorRect_;
  Point previousCursorHeadPos_;
  DateValue cursorDate_;
  SMPTETime cursorTimecode_ = nullTimecode;
  /// A copy for the threads that may not ask the widget.
  platform::Rect bounds_;
};

}  // namespace zq
